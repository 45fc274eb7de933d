#include "cli/CliCorrection.h"

#include "cli/CliOptions.h"
#include "cli/CliOutput.h"
#include "cli/CliParser.h"
#include "cli/CliSave.h"
#include "image/FlatField.h"
#include "image/ProcessChain.h"
#include "image/WhiteBalance.h"

#include <algorithm>

namespace {

QString SizeText(int width, int height)
{
    return QStringLiteral("%1 x %2").arg(width).arg(height);
}

} // namespace

void CliCorrection::AddOptions(CliParser& parser, bool whiteBalance)
{
    parser.AddOption({ QStringLiteral("flat-field"),
        QStringLiteral("Even out the shading with a picture of an empty field of the same size, taken with "
                       "the same camera, light and objective."),
        QStringLiteral("BLANK") });
    parser.AddOption({ QStringLiteral("dark"),
        QStringLiteral("With --flat-field: a picture taken with the light off, subtracted first."),
        QStringLiteral("DARK") });
    if (whiteBalance)
        parser.AddOption({ QStringLiteral("white-balance"),
            QStringLiteral(
                "Make this region of the picture gray: X,Y,W,H in pixels from the top-left corner, "
                "over something neutral."),
            QStringLiteral("X,Y,W,H") });
}

CliCorrection::CliCorrection(const CliParser& parser)
{
    const QString region = QStringLiteral("white-balance");
    if (parser.IsSet(region)) {
        QRect rect;
        QString error;
        if (!ParseRegion(parser.Value(region), &rect, &error))
            ThrowUsage(QStringLiteral("--white-balance: ") + error);
        m_region = rect;
    }
    if (parser.IsSet(QStringLiteral("dark")) && !parser.IsSet(QStringLiteral("flat-field")))
        ThrowUsage(QStringLiteral("--dark goes with --flat-field"));
    if (parser.IsSet(QStringLiteral("flat-field"))) {
        m_blankPath = parser.Value(QStringLiteral("flat-field"));
        m_blank = ReadPictureFile(m_blankPath);
    }
    if (parser.IsSet(QStringLiteral("dark"))) {
        m_darkPath = parser.Value(QStringLiteral("dark"));
        m_dark = ReadPictureFile(m_darkPath);
        if (m_dark.Width() != m_blank.Width() || m_dark.Height() != m_blank.Height())
            ThrowFailure(QStringLiteral("the dark frame %1 is %2, the blank field %3")
                             .arg(m_darkPath, SizeText(m_dark.Width(), m_dark.Height()),
                                 SizeText(m_blank.Width(), m_blank.Height())));
    }
}

std::shared_ptr<const FlatField> CliCorrection::FlatFor(unsigned width, unsigned height) const
{
    if (!m_blank.IsValidImage())
        return nullptr;
    if (unsigned(m_blank.Width()) != width || unsigned(m_blank.Height()) != height)
        ThrowFailure(QStringLiteral("the blank field %1 is %2, the picture %3")
                         .arg(m_blankPath, SizeText(m_blank.Width(), m_blank.Height()),
                             SizeText(int(width), int(height))));
    const uchar* blank = m_blank.GetMemStart();
    auto field = std::make_shared<FlatField>(FlatField::FromFrames(
        { &blank, 1 }, m_dark.IsValidImage() ? m_dark.GetMemStart() : nullptr, width, height));
    if (field->IsNull())
        ThrowFailure(QStringLiteral("the blank field %1 is black in a colour%2")
                         .arg(m_blankPath,
                             m_dark.IsValidImage() ? QStringLiteral(" after the dark frame") : QString()));
    return field;
}

void CliCorrection::Apply(FCObjImage& picture) const
{
    if (!Any())
        return;
    if (picture.ColorBits() != 24 && !picture.ConvertTo24Bit())
        ThrowFailure(QStringLiteral("the picture cannot be corrected: not enough memory"));
    const auto width = unsigned(picture.Width());
    const auto height = unsigned(picture.Height());
    if (const auto field = FlatFor(width, height))
        field->Apply(picture.GetMemStart(), width, height);
    if (m_region)
        ApplyGains(picture.GetMemStart(), width, height, RegionGains(picture));
}

ChannelGains CliCorrection::RegionGains(const FCObjImage& picture) const
{
    const auto width = unsigned(picture.Width());
    const auto height = unsigned(picture.Height());
    const auto means = RegionMeans(picture.GetMemStart(), width, height, *m_region);
    if (!means)
        ThrowFailure(QStringLiteral("the white-balance region %1,%2,%3,%4 lies outside the %5 picture")
                         .arg(m_region->x())
                         .arg(m_region->y())
                         .arg(m_region->width())
                         .arg(m_region->height())
                         .arg(SizeText(int(width), int(height))));
    const auto gains = GainsToGray(*means);
    if (!gains)
        ThrowFailure(
            QStringLiteral("the white-balance region is black in a colour; choose a lit, neutral area"));
    return *gains;
}

std::shared_ptr<const FlatField> CliCorrection::ForStream(FCObjImage raw) const
{
    if (!Any())
        return nullptr;
    if (raw.ColorBits() != 24 && !raw.ConvertTo24Bit())
        ThrowFailure(QStringLiteral("the picture cannot be corrected: not enough memory"));
    const auto width = unsigned(raw.Width());
    const auto height = unsigned(raw.Height());
    auto flat = FlatFor(width, height);
    if (!m_region)
        return flat;
    std::shared_ptr<FlatField> field;
    if (flat) {
        field = std::make_shared<FlatField>(*flat);
        field->Apply(raw.GetMemStart(), width, height);
    } else {
        // An even blank field gives every pixel the gain 1.
        FCObjImage even(int(width), int(height), 24);
        std::fill_n(even.GetMemStart(), std::size_t(even.GetPitch()) * height, uchar(128));
        const uchar* blank = even.GetMemStart();
        field = std::make_shared<FlatField>(FlatField::FromFrames({ &blank, 1 }, nullptr, width, height));
    }
    const ChannelGains gains = RegionGains(raw);
    field->Scale(gains.blue, gains.green, gains.red);
    return field;
}

FCObjImage CliCorrection::Processed(FCObjImage raw, const ProcessSwitches& switches) const
{
    Apply(raw);
    FCObjImage out = raw;
    RunProcessChain(
        raw.GetMemStart(), out.GetMemStart(), unsigned(raw.Width()), unsigned(raw.Height()), switches);
    return out;
}
