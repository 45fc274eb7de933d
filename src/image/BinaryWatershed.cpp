#include "image/BinaryWatershed.h"

#include <queue>

#include <algorithm>
#include <cstddef>
#include <opencv2/imgproc.hpp>

namespace {

constexpr float kTolerance = 0.5f;
constexpr int kDx[8] = { -1, 0, 1, -1, 1, -1, 0, 1 };
constexpr int kDy[8] = { -1, -1, -1, 0, 0, 1, 1, 1 };

struct Grid
{
    int width;
    int height;
    bool Inside(int x, int y) const { return x >= 0 && y >= 0 && x < width && y < height; }
};

// Labels the region of each maximum that stands out by more than the
// tolerance: from the highest pixel down, the pixels connected to it above
// its value minus the tolerance. A region that runs into one already seen
// leads to a higher or equal maximum and is no maximum of its own.
std::vector<int> Seeds(const cv::Mat& distance, const std::vector<std::uint8_t>& mask, Grid grid, int* count)
{
    const std::size_t n = mask.size();
    std::vector<std::size_t> order;
    for (std::size_t i = 0; i < n; ++i)
        if (mask[i])
            order.push_back(i);
    const auto* d = distance.ptr<float>();
    std::stable_sort(order.begin(), order.end(), [d](std::size_t a, std::size_t b) { return d[a] > d[b]; });

    std::vector<int> seed(n, 0);
    std::vector<std::uint8_t> seen(n, 0);
    std::vector<std::size_t> region;
    std::vector<std::size_t> stack;
    *count = 0;
    for (const std::size_t start : order) {
        if (seen[start])
            continue;
        const float floor = d[start] - kTolerance;
        region.clear();
        stack.assign(1, start);
        seen[start] = 1;
        bool merged = false;
        while (!stack.empty()) {
            const std::size_t p = stack.back();
            stack.pop_back();
            region.push_back(p);
            const int x = int(p % std::size_t(grid.width));
            const int y = int(p / std::size_t(grid.width));
            for (int k = 0; k < 8; ++k) {
                const int nx = x + kDx[k];
                const int ny = y + kDy[k];
                if (!grid.Inside(nx, ny))
                    continue;
                const std::size_t q = std::size_t(ny) * std::size_t(grid.width) + std::size_t(nx);
                if (!mask[q] || d[q] <= floor)
                    continue;
                if (seen[q] == 2) {
                    merged = true;
                    continue;
                }
                if (!seen[q]) {
                    seen[q] = 1;
                    stack.push_back(q);
                }
            }
        }
        if (!merged) {
            ++*count;
            for (const std::size_t p : region)
                seed[p] = *count;
        }
        for (const std::size_t p : region)
            seen[p] = 2;
    }
    return seed;
}

} // namespace

int SplitTouchingParticles(std::vector<std::uint8_t>& mask, int width, int height)
{
    if (width <= 0 || height <= 0 || mask.size() != std::size_t(width) * std::size_t(height))
        return 0;
    cv::Mat binary(height, width, CV_8U, mask.data());
    cv::Mat distance;
    cv::distanceTransform(binary, distance, cv::DIST_L2, cv::DIST_MASK_PRECISE, CV_32F);
    const Grid grid { width, height };
    int seeds = 0;
    std::vector<int> label = Seeds(distance, mask, grid, &seeds);
    if (seeds < 2)
        return 0;

    // Flood from the seeds, the farthest from the background first; a pixel
    // that two floods reach becomes the line between them.
    const auto* d = distance.ptr<float>();
    using Entry = std::pair<float, std::size_t>;
    std::priority_queue<Entry> queue;
    constexpr int kQueued = -1;
    constexpr int kLine = -2;
    const auto pushNeighbours = [&](std::size_t p) {
        const int x = int(p % std::size_t(width));
        const int y = int(p / std::size_t(width));
        for (int k = 0; k < 8; ++k) {
            const int nx = x + kDx[k];
            const int ny = y + kDy[k];
            if (!grid.Inside(nx, ny))
                continue;
            const std::size_t q = std::size_t(ny) * std::size_t(width) + std::size_t(nx);
            if (mask[q] && label[q] == 0) {
                label[q] = kQueued;
                queue.emplace(d[q], q);
            }
        }
    };
    for (std::size_t p = 0; p < mask.size(); ++p)
        if (label[p] > 0)
            pushNeighbours(p);
    int lines = 0;
    while (!queue.empty()) {
        const std::size_t p = queue.top().second;
        queue.pop();
        const int x = int(p % std::size_t(width));
        const int y = int(p / std::size_t(width));
        int found = 0;
        bool twoFloods = false;
        for (int k = 0; k < 8; ++k) {
            const int nx = x + kDx[k];
            const int ny = y + kDy[k];
            if (!grid.Inside(nx, ny))
                continue;
            const int l = label[std::size_t(ny) * std::size_t(width) + std::size_t(nx)];
            if (l <= 0)
                continue;
            if (found && l != found)
                twoFloods = true;
            found = l;
        }
        if (twoFloods || !found) {
            label[p] = kLine;
            mask[p] = 0;
            ++lines;
            continue;
        }
        label[p] = found;
        pushNeighbours(p);
    }
    return lines;
}
