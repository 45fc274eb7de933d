#pragma once

class CXCapGraph;
class FCObjImage;

// The grabber's current frame as a 24-bit picture, as the live document
// freezes it. False (picture unchanged) before the first frame or without a
// preview.
bool GrabPicture(CXCapGraph& graph, FCObjImage& picture);
