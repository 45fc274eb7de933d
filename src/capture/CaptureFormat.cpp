#include "capture/CaptureFormat.h"

#include <algorithm>
#include <utility>

namespace {

// Sizes a range of frame sizes is sampled at: what cameras commonly offer.
constexpr std::pair<int, int> kCommonSizes[] = {
    { 320, 240 },
    { 640, 480 },
    { 800, 600 },
    { 1024, 768 },
    { 1280, 720 },
    { 1280, 960 },
    { 1280, 1024 },
    { 1600, 1200 },
    { 1920, 1080 },
    { 2048, 1536 },
    { 2592, 1944 },
    { 3840, 2160 },
};

// Largest size taken from an open-ended range.
constexpr int kMaxRangeSize = 8192;

QString FourccOf(const QString& mediaType, const QString& rawFormat)
{
    if (mediaType == QLatin1String("image/jpeg"))
        return QStringLiteral("MJPG");
    static const std::pair<const char*, const char*> names[] = {
        { "GRAY8", "Y800" },
        { "RGB", "RGB3" },
        { "BGR", "BGR3" },
        { "BGRx", "BGR4" },
        { "RGB16", "RGBP" },
    };
    for (const auto& [gst, fourcc] : names)
        if (rawFormat == QLatin1String(gst))
            return QString::fromLatin1(fourcc);
    return rawFormat.left(4);
}

std::vector<int> IntValues(const GValue* v, bool& isRange, int& rangeMin, int& rangeMax, int& step)
{
    std::vector<int> out;
    isRange = false;
    if (!v)
        return out;
    if (G_VALUE_HOLDS_INT(v)) {
        out.push_back(g_value_get_int(v));
    } else if (GST_VALUE_HOLDS_LIST(v)) {
        for (guint i = 0; i < gst_value_list_get_size(v); ++i) {
            const GValue* e = gst_value_list_get_value(v, i);
            if (G_VALUE_HOLDS_INT(e))
                out.push_back(g_value_get_int(e));
        }
    } else if (GST_VALUE_HOLDS_INT_RANGE(v)) {
        isRange = true;
        rangeMin = gst_value_get_int_range_min(v);
        rangeMax = std::min(gst_value_get_int_range_max(v), kMaxRangeSize);
        step = std::max(1, gst_value_get_int_range_step(v));
    }
    return out;
}

bool InRange(int value, int lo, int hi, int step)
{
    return value >= lo && value <= hi && (value - lo) % step == 0;
}

// The frame rate kept for a structure: the fastest, 30 when a range holds it.
void FrameRate(const GstStructure* st, int& num, int& den)
{
    num = 0;
    den = 1;
    const GValue* v = gst_structure_get_value(st, "framerate");
    if (!v)
        return;
    auto better = [&](int n, int d) {
        if (d > 0 && n > 0 && (num == 0 || gint64(n) * den > gint64(num) * d)) {
            num = n;
            den = d;
        }
    };
    if (GST_VALUE_HOLDS_FRACTION(v)) {
        better(gst_value_get_fraction_numerator(v), gst_value_get_fraction_denominator(v));
    } else if (GST_VALUE_HOLDS_LIST(v)) {
        for (guint i = 0; i < gst_value_list_get_size(v); ++i) {
            const GValue* e = gst_value_list_get_value(v, i);
            if (GST_VALUE_HOLDS_FRACTION(e))
                better(gst_value_get_fraction_numerator(e), gst_value_get_fraction_denominator(e));
        }
    } else if (GST_VALUE_HOLDS_FRACTION_RANGE(v)) {
        const GValue* lo = gst_value_get_fraction_range_min(v);
        const GValue* hi = gst_value_get_fraction_range_max(v);
        GValue thirty = G_VALUE_INIT;
        g_value_init(&thirty, GST_TYPE_FRACTION);
        gst_value_set_fraction(&thirty, 30, 1);
        const bool holds30 = gst_value_compare(lo, &thirty) != GST_VALUE_GREATER_THAN
            && gst_value_compare(hi, &thirty) != GST_VALUE_LESS_THAN;
        g_value_unset(&thirty);
        if (holds30)
            better(30, 1);
        else
            better(gst_value_get_fraction_numerator(hi), gst_value_get_fraction_denominator(hi));
    }
}

std::vector<QString> RawFormats(const GstStructure* st)
{
    std::vector<QString> out;
    const GValue* v = gst_structure_get_value(st, "format");
    if (!v)
        return out;
    if (G_VALUE_HOLDS_STRING(v)) {
        out.push_back(QString::fromUtf8(g_value_get_string(v)));
    } else if (GST_VALUE_HOLDS_LIST(v)) {
        for (guint i = 0; i < gst_value_list_get_size(v); ++i) {
            const GValue* e = gst_value_list_get_value(v, i);
            if (G_VALUE_HOLDS_STRING(e))
                out.push_back(QString::fromUtf8(g_value_get_string(e)));
        }
    }
    return out;
}

void AddSizes(const GstStructure* st, const CaptureFormat& base, std::vector<CaptureFormat>& out)
{
    bool wRange = false;
    bool hRange = false;
    int wMin = 0, wMax = 0, wStep = 1, hMin = 0, hMax = 0, hStep = 1;
    const std::vector<int> widths
        = IntValues(gst_structure_get_value(st, "width"), wRange, wMin, wMax, wStep);
    const std::vector<int> heights
        = IntValues(gst_structure_get_value(st, "height"), hRange, hMin, hMax, hStep);

    auto add = [&](int w, int h) {
        if (w <= 0 || h <= 0)
            return;
        CaptureFormat f = base;
        f.width = unsigned(w);
        f.height = unsigned(h);
        for (CaptureFormat& known : out) {
            if (known.fourcc == f.fourcc && known.width == f.width && known.height == f.height) {
                if (gint64(f.fpsNum) * known.fpsDen > gint64(known.fpsNum) * f.fpsDen) {
                    known.fpsNum = f.fpsNum;
                    known.fpsDen = f.fpsDen;
                }
                return;
            }
        }
        out.push_back(f);
    };

    if (!wRange && !hRange) {
        // Lists of widths and heights mean every combination.
        for (int w : widths)
            for (int h : heights)
                add(w, h);
        return;
    }
    auto fitsW = [&](int w) {
        return wRange ? InRange(w, wMin, wMax, wStep)
                      : std::find(widths.begin(), widths.end(), w) != widths.end();
    };
    auto fitsH = [&](int h) {
        return hRange ? InRange(h, hMin, hMax, hStep)
                      : std::find(heights.begin(), heights.end(), h) != heights.end();
    };
    for (const auto& [w, h] : kCommonSizes)
        if (fitsW(w) && fitsH(h))
            add(w, h);
    const int maxW = wRange ? wMax - (wMax - wMin) % wStep : (widths.empty() ? 0 : widths.back());
    const int maxH = hRange ? hMax - (hMax - hMin) % hStep : (heights.empty() ? 0 : heights.back());
    add(maxW, maxH);
}

} // namespace

std::vector<CaptureFormat> NormaliseCaps(const GstCaps* caps)
{
    std::vector<CaptureFormat> out;
    if (!caps || gst_caps_is_any(caps))
        return out;
    for (guint i = 0; i < gst_caps_get_size(caps); ++i) {
        const GstStructure* st = gst_caps_get_structure(caps, i);
        const QString media = QString::fromUtf8(gst_structure_get_name(st));
        CaptureFormat base;
        base.mediaType = media;
        FrameRate(st, base.fpsNum, base.fpsDen);
        if (media == QLatin1String("image/jpeg")) {
            base.fourcc = FourccOf(media, {});
            AddSizes(st, base, out);
        } else if (media == QLatin1String("video/x-raw")) {
            for (const QString& raw : RawFormats(st)) {
                CaptureFormat f = base;
                f.rawFormat = raw;
                f.fourcc = FourccOf(media, raw);
                AddSizes(st, f, out);
            }
        }
    }
    return out;
}

GstCaps* CapsForFormat(const CaptureFormat& f)
{
    GstStructure* st = gst_structure_new_empty(f.mediaType.toUtf8().constData());
    if (!f.rawFormat.isEmpty())
        gst_structure_set(st, "format", G_TYPE_STRING, f.rawFormat.toUtf8().constData(), nullptr);
    gst_structure_set(st, "width", G_TYPE_INT, int(f.width), "height", G_TYPE_INT, int(f.height), nullptr);
    if (f.fpsNum > 0)
        gst_structure_set(st, "framerate", GST_TYPE_FRACTION, f.fpsNum, f.fpsDen, nullptr);
    GstCaps* caps = gst_caps_new_empty();
    gst_caps_append_structure(caps, st);
    return caps;
}
