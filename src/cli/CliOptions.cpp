#include "cli/CliOptions.h"

#include "calibration/MeasureTables.h"
#include "image/ProcessOperations.h"

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

// The operation named, or null.
const ProcessOperation* FindOperation(const QString& name)
{
    for (const ProcessOperation& op : kProcessOperations)
        if (name == QLatin1String(op.name))
            return &op;
    return nullptr;
}

// The operations joined: with briefValues as in "binary=L", else as in
// "binary=LEVEL (0-255)".
QString OperationList(bool briefValues)
{
    QStringList names;
    for (const ProcessOperation& op : kProcessOperations) {
        QString name = QLatin1String(op.name);
        if (!op.parameters.empty())
            name += briefValues ? QStringLiteral("=%1").arg(QLatin1String(op.syntax.brief))
                                : QStringLiteral("=%1 (%2)")
                                      .arg(QLatin1String(op.syntax.full), QLatin1String(op.syntax.range));
        names << name;
    }
    return names.join(QStringLiteral(", "));
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
        const ProcessOperation* op = FindOperation(name);
        if (!op || (hasValue && op->parameters.empty())) {
            *error = QStringLiteral("unknown --process item \"%1\" (%2)").arg(items[i], OperationList(true));
            return false;
        }
        s.*op->on = true;
        // The first value follows the '='; each further one is the next item.
        const auto count = qsizetype(op->parameters.size());
        bool ok = count == 0 || (hasValue && i + count - 1 < items.size());
        for (qsizetype k = 0; ok && k < count; ++k)
            ok = ParseInt(k == 0 ? value : items[i + k], op->syntax.low, op->syntax.high,
                &(s.*op->parameters[std::size_t(k)].value));
        if (!ok) {
            // A value spread over several items is named by the operation alone.
            *error = QStringLiteral("bad --process item \"%1\": %2=%3 takes %4")
                         .arg(count > 1 ? QString::fromLatin1(op->name) : items[i], QLatin1String(op->name),
                             QLatin1String(op->syntax.full), QLatin1String(op->syntax.takes));
            return false;
        }
        if (count > 1)
            i += count - 1;
    }
    *switches = s;
    return true;
}

QString ProcessSpecHelp()
{
    return OperationList(false);
}

bool ParseRegion(const QString& text, QRect* region, QString* error)
{
    const QStringList parts = text.split(QLatin1Char(','));
    int v[4] = {};
    bool good = parts.size() == 4;
    for (int i = 0; good && i < 4; ++i) {
        v[i] = parts[i].trimmed().toInt(&good);
        good = good && v[i] >= (i < 2 ? 0 : 1) && v[i] <= 1'000'000;
    }
    if (!good) {
        *error = QStringLiteral("a region is X,Y,W,H in pixels (X, Y from 0; W, H from 1), not \"%1\"")
                     .arg(text);
        return false;
    }
    *region = QRect(v[0], v[1], v[2], v[3]);
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

bool ParseThreshold(const QString& text, ParticleOptions* options, QString* error)
{
    const QString wanted = text.trimmed().toLower();
    static const std::pair<const char*, GrayThreshold::Method> kMethods[] = {
        { "otsu", GrayThreshold::Method::Otsu },
        { "default", GrayThreshold::Method::Default },
        { "triangle", GrayThreshold::Method::Triangle },
    };
    for (const auto& [name, method] : kMethods) {
        if (wanted == QLatin1String(name)) {
            options->method = method;
            return true;
        }
    }
    static const QRegularExpression range(QStringLiteral(R"(^(\d{1,3})\s*:\s*(\d{1,3})$)"));
    const QRegularExpressionMatch m = range.match(wanted);
    const int low = m.captured(1).toInt();
    const int high = m.captured(2).toInt();
    if (!m.hasMatch() || low > 255 || high > 255 || low > high) {
        *error
            = QStringLiteral("bad --threshold \"%1\": expected LOW:HIGH (gray levels 0 to 255, LOW not above "
                             "HIGH), otsu, default or triangle")
                  .arg(text);
        return false;
    }
    options->method.reset();
    options->low = low;
    options->high = high;
    return true;
}
