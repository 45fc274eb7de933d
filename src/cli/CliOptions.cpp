#include "cli/CliOptions.h"

#include "calibration/MeasureTables.h"

#include <QRegularExpression>
#include <QStringList>

#include <cmath>

bool ParseFormatSpec(const QString& text, FormatRequest* request, QString* error)
{
    static const QRegularExpression pattern(
        QStringLiteral(R"(^(\d{1,5})[xX](\d{1,5})(?:@(\d+(?:\.\d+)?))?(?::([A-Za-z0-9]{4}))?$)"));
    const QRegularExpressionMatch m = pattern.match(text.trimmed());
    FormatRequest r;
    if (m.hasMatch()) {
        r.width = m.captured(1).toUInt();
        r.height = m.captured(2).toUInt();
        r.fps = m.captured(3).isEmpty() ? 0 : m.captured(3).toDouble();
        r.fourcc = m.captured(4).toUpper();
    }
    if (!m.hasMatch() || r.width == 0 || r.height == 0 || (!m.captured(3).isEmpty() && r.fps <= 0)) {
        *error = QStringLiteral(
            "bad format \"%1\": expected WIDTHxHEIGHT[@FPS][:YUY2|MJPG], e.g. 1280x1024@30:YUY2")
                     .arg(text);
        return false;
    }
    *request = r;
    return true;
}

double FormatFps(const CaptureFormat& format)
{
    return format.fpsNum > 0 && format.fpsDen > 0 ? double(format.fpsNum) / format.fpsDen : 0;
}

int FindFormat(const std::vector<CaptureFormat>& formats, const FormatRequest& request)
{
    for (std::size_t i = 0; i < formats.size(); ++i) {
        const CaptureFormat& f = formats[i];
        if (f.width != request.width || f.height != request.height)
            continue;
        if (!request.fourcc.isEmpty() && f.fourcc.compare(request.fourcc, Qt::CaseInsensitive) != 0)
            continue;
        if (request.fps > 0 && std::fabs(FormatFps(f) - request.fps) > 0.01)
            continue;
        return int(i);
    }
    return -1;
}

QString FormatSpecText(const CaptureFormat& format)
{
    QString text = QStringLiteral("%1x%2").arg(format.width).arg(format.height);
    if (const double fps = FormatFps(format); fps > 0)
        text += QLatin1Char('@') + QString::number(fps, 'g', 6);
    return text + QLatin1Char(':') + format.fourcc;
}

namespace {

bool ParseInt(const QString& text, int low, int high, int* value)
{
    bool ok = false;
    const int v = text.trimmed().toInt(&ok);
    if (!ok || v < low || v > high)
        return false;
    *value = v;
    return true;
}

} // namespace

bool ParseProcessSpec(const QString& text, ProcessSwitches* switches, QString* error)
{
    ProcessSwitches s;
    const QStringList items = text.split(QLatin1Char(','));
    for (qsizetype i = 0; i < items.size(); ++i) {
        const QString item = items[i].trimmed().toLower();
        const QString name = item.section(QLatin1Char('='), 0, 0);
        const QString value = item.section(QLatin1Char('='), 1);
        const bool hasValue = item.contains(QLatin1Char('='));
        bool ok = true;
        if (name == QLatin1String("binary")) {
            s.binary = true;
            ok = hasValue && ParseInt(value, 0, 255, &s.binaryLevel);
            if (!ok) {
                *error = QStringLiteral("bad --process item \"%1\": binary=LEVEL takes a level from 0 to 255")
                             .arg(items[i]);
                return false;
            }
        } else if (name == QLatin1String("rgb")) {
            // rgb=R,G,B spans three items of the list.
            s.rgb = true;
            ok = hasValue && i + 2 < items.size() && ParseInt(value, -255, 255, &s.red)
                && ParseInt(items[i + 1], -255, 255, &s.green) && ParseInt(items[i + 2], -255, 255, &s.blue);
            if (!ok) {
                *error = QStringLiteral(
                    "bad --process item \"rgb\": rgb=R,G,B takes three offsets from -255 to 255");
                return false;
            }
            i += 2;
        } else if (!hasValue && name == QLatin1String("flip")) {
            s.flip = true;
        } else if (!hasValue && name == QLatin1String("mirror")) {
            s.mirror = true;
        } else if (!hasValue && name == QLatin1String("gray")) {
            s.gray = true;
        } else if (!hasValue && name == QLatin1String("negative")) {
            s.negative = true;
        } else if (!hasValue && name == QLatin1String("emboss")) {
            s.emboss = true;
        } else if (!hasValue && name == QLatin1String("sharpen")) {
            s.sharpen = true;
        } else {
            *error = QStringLiteral("unknown --process item \"%1\" (flip, mirror, gray, negative, binary=L, "
                                    "emboss, sharpen, rgb=R,G,B)")
                         .arg(items[i]);
            return false;
        }
    }
    *switches = s;
    return true;
}

bool ParseSeconds(const QString& text, double minimum, double* seconds)
{
    bool ok = false;
    const double v = text.trimmed().toDouble(&ok);
    if (!ok || !std::isfinite(v) || v < minimum || v > 1e7)
        return false;
    *seconds = v;
    return true;
}

bool ParseDivision(const QString& text, Division* division, QString* error)
{
    static const QRegularExpression pattern(
        QStringLiteral(R"(^(\d+(?:\.\d*)?|\.\d+)(?:[eE][-+]?\d+)?\s*([A-Za-zµμ]+)$)"));
    const QRegularExpressionMatch m = pattern.match(text.trimmed());
    QString unitText = m.captured(2).toLower();
    // The micro sign, or the Greek letter mu that looks the same.
    if (unitText == QStringLiteral("µm") || unitText == QStringLiteral("μm"))
        unitText = QStringLiteral("um");
    int unit = -1;
    for (int i = 0; i < MeasureTables::kUnitCount; ++i)
        if (unitText == QLatin1String(MeasureTables::kUnitTexts[std::size_t(i)]))
            unit = i;
    const QString number = text.trimmed().left(text.trimmed().size() - m.captured(2).size()).trimmed();
    bool ok = false;
    const double value = number.toDouble(&ok);
    if (!m.hasMatch() || unit < 0 || !ok || !std::isfinite(value) || value <= 0) {
        *error = QStringLiteral(
            "bad --division \"%1\": expected a length with its unit (um, mm, cm, dm, inch), e.g. 0.01mm")
                     .arg(text);
        return false;
    }
    division->micrometres = value * MeasureTables::MicrometresPer(unit);
    division->unit = unit;
    return true;
}
