#pragma once

#include <QRect>
#include <QtGlobal>

#include <optional>

// White balance from a neutral region: the gains that make the region's mean
// colour gray. Pictures are 24-bit bottom-up with padded rows
// (ImageProcess.h); regions are in picture coordinates, (0, 0) the top-left
// pixel.
struct ChannelGains
{
    double blue = 1;
    double green = 1;
    double red = 1;
};

struct ChannelMeans
{
    double blue = 0;
    double green = 0;
    double red = 0;
};

// The mean of each channel over the region clipped to the picture; nothing
// when no pixel is left.
std::optional<ChannelMeans> RegionMeans(
    const uchar* bits, unsigned width, unsigned height, const QRect& region);

// The gains that bring each channel's mean to the mean of the three, so the
// region turns gray and keeps its brightness; nothing when a channel is black.
std::optional<ChannelGains> GainsToGray(const ChannelMeans& means);

// The colour offsets (the processing element's RGB gains, added to each
// channel) that make a region gray, given its means measured with the
// current offsets applied: each channel is raised to the brightest one's
// mean. Offsets stay within 0 and maxOffset; reached is false when one had
// to stop there, the region then as gray as the offsets allow.
struct ChannelOffsets
{
    int blue = 0;
    int green = 0;
    int red = 0;
    bool reached = true;
};
ChannelOffsets OffsetsToGray(const ChannelMeans& means, const ChannelOffsets& current, int maxOffset);

// Multiplies each channel by its gain, rounding and stopping at 255.
void ApplyGains(uchar* bits, unsigned width, unsigned height, const ChannelGains& gains);
