#pragma once

#include "image/FocusStack.h"

#include <opencv2/core.hpp>
#include <vector>

// Finds where a frame of a focus series lies over the series' first frame:
// a shift and the small magnification change of focus breathing, to a
// fraction of a pixel. Gauss-Newton on the brightness difference, coarse to
// fine on a pyramid, with a phase correlation at the coarsest level to catch
// shifts beyond the reach of the gradient. Both pictures' gradients steer the
// step (efficient second-order minimisation), which keeps it straight when
// one of the two is out of focus.
class FrameAligner
{
public:
    // The reference, 8-bit gray.
    explicit FrameAligner(const cv::Mat& reference);

    // The frame (8-bit gray, the reference's size), starting from `start`,
    // usually the previous frame's warp: drift and breathing change slowly.
    // A frame without texture gives `start` back.
    FrameWarp Align(const cv::Mat& frame, const FrameWarp& start) const;
    // The same, then the frame becomes the reference: a focus series is
    // aligned neighbour to neighbour, where the two frames' blur is nearly
    // the same, and the warps are chained.
    FrameWarp AlignAndAdvance(const cv::Mat& frame, const FrameWarp& start);

private:
    // Pyramid levels from the finest one used (index 0) to the coarsest.
    std::vector<cv::Mat> Pyramid(const cv::Mat& gray) const;
    FrameWarp AlignPyramid(const std::vector<cv::Mat>& moving, const FrameWarp& start) const;
    void SetReference(std::vector<cv::Mat> pyramid);

    std::vector<cv::Mat> m_reference;
    std::vector<cv::Mat> m_gradX;
    std::vector<cv::Mat> m_gradY;
    // Halvings from full resolution to the finest level used: big pictures
    // are aligned at about a megapixel, where 0.05 level pixel is still well
    // inside a tenth of a full-resolution pixel.
    int m_skip = 0;
    cv::Size m_size;
    cv::Point2d m_centre;
};
