#pragma once

// Translation between two overlapping views of one specimen, for the
// stitcher. OpenCV types: include only from sources of the core.

#include <cstddef>
#include <opencv2/core.hpp>
#include <vector>

namespace Registration {

// A view prepared once for every pair it takes part in: the log of its
// brightness with the slow shading taken away (so vignetting and exposure
// barely move the optimum), as a pyramid, plus a small copy for the search.
struct Prepared
{
    std::vector<cv::Mat> levels; // CV_32F, [0] full size, each next half the size
    std::vector<cv::Mat> gradX, gradY; // of each level
    cv::Mat reduced; // CV_32F, at most kSearchSide on its longer side
    double reducedScale = 1.0; // reduced pixels per full pixel
    // The reduced copy's spectrum at the last padded size the coarse search
    // asked for: a frame is searched against many, a tile by many frames.
    mutable cv::Mat spectrum;
    mutable cv::Size spectrumSize;
    cv::Size size; // of the view
    cv::Size Size() const { return size; }
    // Whether the pyramid is there: Refine and Agreement need it, Coarse
    // only the reduced copy of its reference.
    bool Full() const { return !levels.empty(); }
};

// The longer side of the frames the coarse search compares.
constexpr int kSearchSide = 256;

// `gray` is CV_8U or CV_32F brightness.
Prepared Prepare(const cv::Mat& gray);

// Drops all but what a reference needs in Coarse: a small part of the
// whole, for a view that is rarely compared in full any more.
void Reduce(Prepared& view);

// The memory the view holds.
std::size_t Bytes(const Prepared& view);

struct Match
{
    bool ok = false;
    cv::Point2d shift; // the moving view's top-left in the reference's pixels
    double ncc = 0.0; // agreement of the overlap, -1..1
    double weight = 0.0; // confidence for averaging several estimates
};

// Searches the whole range of shifts that leave at least `minOverlap` of the
// smaller view in common: phase correlation of the reduced frames, the
// strongest peaks checked by normalised correlation of their overlap.
// Accurate to about one reduced pixel.
Match Coarse(const Prepared& reference, const Prepared& moving, double minOverlap);

// Refines a shift known to a few pixels to a fraction of a pixel
// (Lucas-Kanade on the overlap, coarse to fine). Not ok when it wanders
// off, the overlap is too small or the views disagree there.
Match Refine(const Prepared& reference, const Prepared& moving, cv::Point2d start, double minOverlap);

// The share of the overlap's blocks in which the views agree at `shift`: a
// chance likeness of one strong feature (a scale repeated on the specimen)
// agrees in the blocks that hold it, a true match in nearly all of them.
double Agreement(const Prepared& reference, const Prepared& moving, cv::Point2d shift);

// The frame (any depth and channels) sampled on a grid of `size` whose first
// point is `at`, by cubic convolution with exact weights, as float:
// warpAffine rounds positions to 1/32 pixel, too coarse for the refinement
// to settle on. Outside the frame its edge is repeated.
cv::Mat Sampled(const cv::Mat& frame, cv::Point2d at, cv::Size size);

// Fraction of the smaller view that the two share at that shift.
double OverlapFraction(cv::Size reference, cv::Size moving, cv::Point2d shift);

} // namespace Registration
