#pragma once

#include <QImage>
#include <QPointF>
#include <QRect>
#include <QSize>
#include <QString>

#include <cstddef>
#include <memory>
#include <optional>

// Assembles overlapping pictures of one specimen, taken by moving the stage,
// into one picture in the first picture's scale and orientation. Each picture
// is placed by registration against those already placed (a coarse search on
// reduced frames, then sub-pixel refinement at full size against every placed
// neighbour it overlaps), kept as its own tile, and blended only when a part
// of the result is asked for: feathered seams, with the lens's shading and
// each picture's exposure estimated from the overlaps and evened out.
class Stitcher
{
public:
    struct Options
    {
        // The least share of a picture that must overlap a placed one.
        double minOverlap = 0.1;
        // The least share of an overlap's blocks in which a picture must agree
        // with a neighbour (Registration::Agreement); 0: the agreement of the
        // whole overlap alone decides. A scale or pattern repeated on the
        // specimen can pass the whole overlap's test, never this one.
        double minAgreement = 0.0;
        // Even out vignetting and exposure before blending.
        bool evenShading = true;
        // Pictures that keep their full registration data (about five times
        // the picture's own size), the ones most recently compared in full;
        // the rest keep a reduced copy for the search and are prepared again
        // when a frame comes back over them.
        int preparedPictures = 8;
    };

    Stitcher();
    explicit Stitcher(const Options& options);
    ~Stitcher();
    Stitcher(const Stitcher&) = delete;
    Stitcher& operator=(const Stitcher&) = delete;

    // Places the picture. False, with `why`, when it overlaps no placed
    // picture convincingly: it is then left out and nothing changes.
    bool Add(const QImage& picture, QString* why = nullptr);

    // A frame of a live scan: where it lies in the first picture's pixels,
    // searched first against the pictures that `near` (its expected place)
    // overlaps. It is kept as a picture of its own only when at least
    // `newGround` of it lies outside every placed picture, so a stage at
    // rest adds nothing. Not found (with `why`): nothing changes.
    struct Tracked
    {
        bool found = false;
        bool added = false;
        QPointF position;
    };
    Tracked Track(const QImage& frame, double newGround, std::optional<QPointF> near, QString* why = nullptr);

    int Count() const;
    // The union of the placed pictures: its size in whole pixels, and each
    // picture's top-left corner in it (sub-pixel, as placed).
    QSize Size() const;
    QPointF Position(int index) const;
    // The memory the placed pictures hold, in bytes.
    std::size_t HeldBytes() const;

    // The blended union, or a part of it in the same coordinates (pixels the
    // pictures do not cover are black). Only the part asked for is held in
    // memory while blending.
    QImage Compose();
    QImage Compose(const QRect& region);

    // The shading estimated from the overlaps: the brightness of a picture's
    // corner relative to its centre (1 without vignetting).
    double CornerShading();

    // Where `moving`'s top-left lies in `reference`'s pixels, when the two
    // overlap by at least `minOverlap` and agree there.
    static std::optional<QPointF> PairShift(
        const QImage& reference, const QImage& moving, double minOverlap = 0.1);

private:
    Tracked TrackFrame(const QImage& frame, double newGround, std::optional<QPointF> near, QString* why);

    struct Impl;
    std::unique_ptr<Impl> m_impl;
};
