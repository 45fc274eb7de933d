#pragma once

#include "image/FocusStack.h"

#include <QImage>

#include <cstdint>
#include <memory>
#include <vector>

namespace cv {
class Mat;
}

// A specimen with relief under a microscope with a focus knob, for focus
// stacking: a textured surface with a known height map, seen through a lens
// whose defocus blur grows with the distance between the surface and the
// focus, whose magnification changes slightly with focus (breathing), on a
// stage that drifts. The ground truth (the height map, the picture sharp
// everywhere, each frame's warp) is reachable, as docs/SimulatedCamera.md
// describes.
class SimDepthScene
{
public:
    enum class Relief {
        Steps, // flat terraces at different heights: depth steps everywhere
        Slope, // a tilted, gently rippled surface: depth changes smoothly
        Particles, // round particles and fibres lying on a tilted textured surface
    };

    struct Options
    {
        Relief relief = Relief::Particles;
        unsigned seed = 1;
        // The height range of the relief, micrometres.
        double depthUm = 60.0;
        // The blur's spread (Gaussian sigma, pixels) where the surface is
        // depthUm away from the focus; 0: width / 120.
        double blurAtDepth = 0.0;
        // The magnification change from the lowest focus to the highest.
        double breathing = 0.01;
        // The stage's drift per frame, pixels.
        double driftX = 0.12;
        double driftY = -0.08;
        // Sensor noise, in levels (normal spread); 0 for none.
        double noise = 1.5;
    };

    SimDepthScene(int width, int height, const Options& options);
    ~SimDepthScene();
    SimDepthScene(const SimDepthScene&) = delete;
    SimDepthScene& operator=(const SimDepthScene&) = delete;

    int Width() const;
    int Height() const;
    const Options& GetOptions() const;

    // Frame number `frame` taken with the focus at focusUm (0 is the lowest
    // point of the relief, depthUm the highest), RGB888.
    QImage Frame(double focusUm, std::uint64_t frame) const;
    // Where that frame lies over the scene (FrameWarp's convention: the
    // frame's pixel showing the scene's point p).
    FrameWarp Warp(double focusUm, std::uint64_t frame) const;

    // Ground truth in the geometry of a frame with the given warp (the
    // identity: the scene's own): the picture sharp everywhere, and the
    // height of the surface per pixel, micrometres, row by row.
    QImage AllInFocus(const FrameWarp& warp = {}) const;
    std::vector<float> HeightMap(const FrameWarp& warp = {}) const;
    // Per pixel of the same geometry: the texture varies there enough for
    // sharpness to be told (pixels of uniform colour have no depth to find).
    std::vector<bool> Textured(const FrameWarp& warp = {}) const;

private:
    // The scene with each point blurred as at that focus, CV_32FC3; never
    // written to once returned.
    cv::Mat Focused(double focusUm) const;

    struct State;
    std::unique_ptr<State> m;
};
