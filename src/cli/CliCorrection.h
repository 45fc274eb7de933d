#pragma once

#include "image/FCObjImage.h"
#include "image/ProcessSwitches.h"

#include <QRect>
#include <QString>

#include <memory>
#include <optional>

class CliParser;
class FlatField;
struct ChannelGains;

// The picture corrections of the command line: --flat-field BLANK with an
// optional --dark DARK, and --white-balance X,Y,W,H (a region made gray).
// The flat field applies first, then the white balance, then --process.
class CliCorrection
{
public:
    // whiteBalance: whether the command takes --white-balance too.
    static void AddOptions(CliParser& parser, bool whiteBalance);

    // Reads the pictures the options name: bad usage for a malformed region
    // or --dark without --flat-field, a failure for a file that cannot be read.
    explicit CliCorrection(const CliParser& parser);

    bool Any() const { return m_blank.IsValidImage() || m_region.has_value(); }

    // The flat field for frames of this size; null without --flat-field.
    // A failure when the blank field or the dark frame is of another size.
    std::shared_ptr<const FlatField> FlatFor(unsigned width, unsigned height) const;

    // The correction of a stream of frames like raw, applied in the
    // processing element: the flat field with the white balance measured on
    // raw folded in, a uniform field for white balance alone; null for
    // neither. Failures as Apply's.
    std::shared_ptr<const FlatField> ForStream(FCObjImage raw) const;

    // Corrects a picture, which becomes 24-bit when it is not. A failure for
    // a size that does not match or a region outside the picture or black in
    // a channel there.
    void Apply(FCObjImage& picture) const;

    // The still picture as the program processes a picture: the corrections,
    // then the chain of operations over an unprocessed copy.
    FCObjImage Processed(FCObjImage raw, const ProcessSwitches& switches) const;

private:
    // The gains that make the region of a flat-field corrected picture gray.
    ChannelGains RegionGains(const FCObjImage& picture) const;

    QString m_blankPath;
    QString m_darkPath;
    FCObjImage m_blank;
    FCObjImage m_dark;
    std::optional<QRect> m_region;
};
