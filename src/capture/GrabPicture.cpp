#include "capture/GrabPicture.h"

#include "capture/CXCapGraph.h"
#include "image/FCObjImage.h"

#include <cstring>
#include <vector>

bool GrabPicture(CXCapGraph& graph, FCObjImage& picture)
{
    long size = 0;
    if (graph.GetCurrentBuffer(&size, nullptr) != S_OK || size <= 0)
        return false;
    std::vector<uchar> sample(std::size_t(size), 0);
    if (graph.GetCurrentBuffer(&size, sample.data()) != S_OK)
        return false;
    unsigned width = 0, height = 0;
    graph.GetVideoSize(&width, &height);
    if (width == 0 || height == 0)
        return false;
    const int bits = int(std::size_t(size) * 8 / (std::size_t(width) * height));
    FCObjImage frame;
    if (!frame.Create(int(width), int(height), bits))
        return false;
    // The sample is bottom-up and unpadded; the picture pads its rows.
    const std::size_t rowBytes = std::size_t(width) * std::size_t(bits) / 8;
    for (unsigned row = 0; row < height; ++row)
        std::memcpy(frame.GetMemStart() + std::size_t(row) * std::size_t(frame.GetPitch()),
            sample.data() + row * rowBytes, rowBytes);
    if (!frame.ConvertTo24Bit())
        return false;
    picture = std::move(frame);
    return true;
}

bool GrabNextPicture(CXCapGraph& graph, FCObjImage& picture, std::chrono::milliseconds timeout)
{
    int frames = 0;
    if (graph.GetStateB(&frames) != S_OK || !graph.WaitGrabbedAfter(frames, timeout))
        return false;
    return GrabPicture(graph, picture);
}
