// Linked into the thread tests built under ThreadSanitizer only.
//
// Qt hands large image work (conversions, smooth scaling, fills) to its own
// thread pool and waits for it inside the same call, through futex-based
// locks the checker cannot see; the pool's threads run nothing but Qt's
// image code. Their accesses are ignored, so the checker does not take that
// hand-over for races. No code of ours runs on those threads (we start no
// Qt pool work), and every thread that does run our code stays checked.

#include <cstring>
#include <dlfcn.h>
#include <linux/prctl.h>

extern "C" void __tsan_ignore_thread_begin();

extern "C" void __tsan_ignore_thread_end();

namespace {

// The name Qt gives every thread of a QThreadPool as it starts.
constexpr const char* kQtPoolThread = "Thread (pooled)";

// Ignores the thread's accesses from here to its end (a thread must not end
// with ignores still on).
struct IgnoreThread
{
    IgnoreThread() { __tsan_ignore_thread_begin(); }
    ~IgnoreThread() { __tsan_ignore_thread_end(); }
};

} // namespace

// Qt names each new thread through prctl on that thread; this definition
// comes first in the lookup and passes the call on to the checker's own.
extern "C" int prctl(int option, unsigned long a2, unsigned long a3, unsigned long a4, unsigned long a5)
{
    using Prctl = int (*)(int, unsigned long, unsigned long, unsigned long, unsigned long);
    static const auto next = reinterpret_cast<Prctl>(dlsym(RTLD_NEXT, "prctl"));
    const int result = next(option, a2, a3, a4, a5);
    if (option == PR_SET_NAME && a2 && std::strcmp(reinterpret_cast<const char*>(a2), kQtPoolThread) == 0) {
        thread_local IgnoreThread ignore;
        (void)ignore;
    }
    return result;
}
