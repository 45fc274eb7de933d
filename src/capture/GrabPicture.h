#pragma once

#include <chrono>

class CXCapGraph;
class FCObjImage;

// The grabber's current frame as a 24-bit picture, as the live document
// freezes it. False (picture unchanged) before the first frame or without a
// preview.
bool GrabPicture(CXCapGraph& graph, FCObjImage& picture);

// The first frame the grabber holds that the processing element took after
// this call began, so one processed with the switches as they are now: a
// frame taken right after a switch changed may predate it. Waits at most
// `timeout`; false (picture unchanged) when none came in time, the stream
// failed, or without a preview.
bool GrabNextPicture(CXCapGraph& graph, FCObjImage& picture, std::chrono::milliseconds timeout);
