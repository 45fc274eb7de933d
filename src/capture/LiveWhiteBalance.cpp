#include "capture/LiveWhiteBalance.h"

#include "capture/CXCapGraph.h"
#include "capture/GrabPicture.h"
#include "capture/ILiveDocument.h"
#include "image/FCObjImage.h"
#include "image/ProcessSwitches.h"
#include "image/WhiteBalance.h"

namespace {

// The RGB dialog's sliders stop here.
constexpr int kMaxOffset = 63;
// The grabbed frame has the rectangle's outline and handles in it: the
// region is taken this far inside them.
constexpr int kOutline = 4;

} // namespace

LiveWhiteBalance BalanceLiveRegion(ILiveDocument& document, const QRect& drawn)
{
    const QRect region = drawn.normalized().adjusted(kOutline, kOutline, -kOutline, -kOutline);
    if (region.width() < 2 || region.height() < 2)
        return LiveWhiteBalance::TooSmall;
    FCObjImage frame;
    if (!GrabPicture(document.GetGraph(), frame))
        return LiveWhiteBalance::NoPicture;
    const auto means
        = RegionMeans(frame.GetMemStart(), unsigned(frame.Width()), unsigned(frame.Height()), region);
    if (!means)
        return LiveWhiteBalance::Outside;
    ProcessSwitches& s = document.LiveSwitches();
    const ChannelOffsets current
        = s.rgb ? ChannelOffsets { s.blue, s.green, s.red, true } : ChannelOffsets {};
    const ChannelOffsets offsets = OffsetsToGray(*means, current, kMaxOffset);
    s.rgb = true;
    s.red = offsets.red;
    s.green = offsets.green;
    s.blue = offsets.blue;
    document.GetGraph().SetRgbGain(1, s.red, s.green, s.blue);
    return offsets.reached ? LiveWhiteBalance::Done : LiveWhiteBalance::Partial;
}
