#include "cli/CliInterrupt.h"

#include <csignal>

namespace {

volatile std::sig_atomic_t g_interrupted = 0;

void OnSignal(int)
{
    g_interrupted = 1;
}

} // namespace

void WatchInterrupt()
{
    struct sigaction action
    {
    };
    action.sa_handler = &OnSignal;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESETHAND;
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
}

bool Interrupted()
{
    return g_interrupted != 0;
}
