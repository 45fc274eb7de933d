#pragma once

#include <QRect>

class ILiveDocument;
struct ChannelMeans;
struct ProcessSwitches;

// White balance of the live picture from a rectangle drawn over something
// neutral: through the camera's own red and blue gains where it has them
// (kept for its next start, the element's offsets switched off), else the
// element's RGB offsets are set so the rectangle turns gray, through the
// document's switches, so the RGB dialog shows them.
enum class LiveWhiteBalance {
    Done,
    Partial, // a cast beyond the largest offset: as gray as they allow
    TooSmall, // nothing left inside the rectangle's outline
    NoPicture, // no frame from the camera yet
    Outside, // the rectangle misses the picture
};

// drawn: the rectangle in picture coordinates, outline included.
LiveWhiteBalance BalanceLiveRegion(ILiveDocument& document, const QRect& drawn);

// Sets the RGB operation's offsets in s (switching it on) so a region whose
// means were measured with s applied turns gray, within the RGB dialog's
// range; false when an offset stopped at its end.
bool SetOffsetsToGray(ProcessSwitches& s, const ChannelMeans& means);
