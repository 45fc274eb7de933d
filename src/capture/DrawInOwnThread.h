#pragma once

#include <thread>
#include <utility>

// Runs a drawing that puts text on a picture in a thread of its own and waits
// for it. Text leaves font caches in the thread that draws it, freed when that
// thread ends; GStreamer keeps its streaming threads in a pool that can
// outlive the application object, whose end those caches must precede.
template <typename Draw> void DrawInOwnThread(Draw&& draw)
{
    std::thread drawing(std::forward<Draw>(draw));
    drawing.join();
}
