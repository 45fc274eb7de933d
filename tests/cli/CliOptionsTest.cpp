#include "cli/CliOptions.h"

#include "image/ProcessOperations.h"

#include <QStringList>

#include <gtest/gtest.h>
#include <vector>

namespace {

CaptureFormat Fmt(unsigned w, unsigned h, const char* fourcc, int fps)
{
    CaptureFormat f;
    f.width = w;
    f.height = h;
    f.fourcc = QString::fromLatin1(fourcc);
    f.fpsNum = fps;
    f.fpsDen = 1;
    return f;
}

} // namespace

TEST(CliOptions, FormatSpecsParseAndPickTheListedFormat)
{
    const std::vector<CaptureFormat> formats
        = { Fmt(640, 480, "YUY2", 30), Fmt(1280, 1024, "YUY2", 30), Fmt(1280, 1024, "MJPG", 30) };
    struct Case
    {
        QString text;
        bool valid;
        int index; // in formats, -1: none fits
    };
    const Case cases[] = {
        { "640x480", true, 0 },
        { "1280x1024:MJPG", true, 2 },
        { "1280X1024:mjpg", true, 2 },
        { "1280x1024@30", true, 1 },
        { "1280x1024@30:YUY2", true, 1 },
        { "1280x1024@15", true, -1 }, // a rate the camera does not list
        { "800x600", true, -1 },
        { " 640x480 ", true, 0 },
        { "640", false, -1 },
        { "0x480", false, -1 },
        { "640x480@", false, -1 },
        { "640x480@0", false, -1 },
        { "640x480:MJPEG", false, -1 },
        { "-640x480", false, -1 },
    };
    for (const Case& c : cases) {
        FormatRequest request;
        QString error;
        EXPECT_EQ(ParseFormatSpec(c.text, &request, &error), c.valid) << c.text.toStdString();
        EXPECT_EQ(error.isEmpty(), c.valid) << c.text.toStdString();
        if (c.valid) {
            EXPECT_EQ(FindFormat(formats, request), c.index) << c.text.toStdString();
        }
    }
    EXPECT_EQ(FormatSpecText(formats[2]), "1280x1024@30:MJPG");
    CaptureFormat open = Fmt(320, 240, "YUY2", 0);
    EXPECT_EQ(FormatSpecText(open), "320x240:YUY2");
    // What the listing prints is what --format takes.
    FormatRequest again;
    QString error;
    ASSERT_TRUE(ParseFormatSpec(FormatSpecText(formats[1]), &again, &error));
    EXPECT_EQ(FindFormat(formats, again), 1);
}

TEST(CliOptions, ProcessListsSetTheStillPictureSwitches)
{
    ProcessSwitches s;
    QString error;
    ASSERT_TRUE(
        ParseProcessSpec("flip,mirror,gray,negative,binary=100,emboss,sharpen,rgb=10,-20,30", &s, &error))
        << error.toStdString();
    EXPECT_TRUE(s.flip && s.mirror && s.gray && s.negative && s.binary && s.emboss && s.sharpen && s.rgb);
    EXPECT_EQ(s.binaryLevel, 100);
    EXPECT_EQ(std::make_tuple(s.red, s.green, s.blue), std::make_tuple(10, -20, 30));

    ASSERT_TRUE(ParseProcessSpec("rgb=1,2,3,Gray", &s, &error));
    EXPECT_TRUE(s.rgb && s.gray && !s.flip);
    EXPECT_EQ(std::make_tuple(s.red, s.green, s.blue), std::make_tuple(1, 2, 3));

    for (const char* bad : { "blur", "binary", "binary=256", "binary=x", "rgb=1,2", "rgb=1,2,300", "gray=1",
             "", "flip,,gray" }) {
        ProcessSwitches untouched;
        untouched.red = 77;
        error.clear();
        EXPECT_FALSE(ParseProcessSpec(bad, &untouched, &error)) << bad;
        EXPECT_FALSE(error.isEmpty()) << bad;
        EXPECT_EQ(untouched.red, 77) << "a bad list changes nothing: " << bad;
    }
}

// Each operation by its name, in any case, with its values at their bounds
// (a different one for each parameter), before and after every operation
// that takes none; a value out of bounds is refused, and so is a value for an
// operation that takes none.
TEST(CliOptions, EveryOperationParsesToItsSwitchAndParameters)
{
    for (const ProcessOperation& op : kProcessOperations) {
        for (const bool atHigh : { false, true }) {
            QStringList values;
            std::vector<int> expected;
            for (std::size_t k = 0; k < op.parameters.size(); ++k) {
                expected.push_back(atHigh ? op.syntax.high - int(k) : op.syntax.low + int(k));
                values << QString::number(expected.back());
            }
            const QString item = QString::fromLatin1(op.name).toUpper()
                + (values.isEmpty() ? QString() : QLatin1Char('=') + values.join(QLatin1Char(',')));
            for (const ProcessOperation& other : kProcessOperations) {
                if (!other.parameters.empty())
                    continue;
                const QString name = QLatin1String(other.name);
                for (const QString& list :
                    { item + QLatin1Char(',') + name, name + QLatin1Char(',') + item }) {
                    ProcessSwitches s;
                    QString error;
                    ASSERT_TRUE(ParseProcessSpec(list, &s, &error)) << qPrintable(list) << qPrintable(error);
                    for (const ProcessOperation& each : kProcessOperations)
                        EXPECT_EQ(s.*each.on, each.op == op.op || each.op == other.op)
                            << qPrintable(list) << " " << each.name;
                    for (std::size_t k = 0; k < op.parameters.size(); ++k)
                        EXPECT_EQ(s.*op.parameters[k].value, expected[k]) << qPrintable(list) << " " << k;
                }
            }
        }
        ProcessSwitches s;
        QString error;
        if (op.parameters.empty()) {
            EXPECT_FALSE(ParseProcessSpec(QString::fromLatin1(op.name) + QStringLiteral("=1"), &s, &error));
            continue;
        }
        for (std::size_t k = 0; k < op.parameters.size(); ++k)
            for (const int bad : { op.syntax.low - 1, op.syntax.high + 1 }) {
                QStringList values;
                for (std::size_t j = 0; j < op.parameters.size(); ++j)
                    values << QString::number(j == k ? bad : op.syntax.low);
                const QString item
                    = QString::fromLatin1(op.name) + QLatin1Char('=') + values.join(QLatin1Char(','));
                error.clear();
                EXPECT_FALSE(ParseProcessSpec(item, &s, &error)) << qPrintable(item);
                EXPECT_TRUE(error.contains(QStringLiteral("%1=%2 takes").arg(op.name, op.syntax.full)))
                    << qPrintable(error);
            }
    }
}

TEST(CliOptions, SecondsAreLocaleFreeAndBounded)
{
    double s = -1;
    EXPECT_TRUE(ParseSeconds("2.5", 0.1, &s));
    EXPECT_DOUBLE_EQ(s, 2.5);
    EXPECT_TRUE(ParseSeconds("0", 0, &s));
    for (const char* bad : { "2,5", "-1", "0.05", "nan", "inf", "", "1e9", "3s" })
        EXPECT_FALSE(ParseSeconds(bad, 0.1, &s)) << bad;
}

TEST(CliOptions, DivisionsTakeTheirUnit)
{
    struct Case
    {
        const char* text;
        double micrometres; // 0: rejected
        int unit;
    };
    const Case cases[] = {
        { "0.01mm", 10, 1 },
        { "10um", 10, 0 },
        { "10 µm", 10, 0 },
        { "10μm", 10, 0 },
        { " .5 UM ", 0.5, 0 },
        { "0.001cm", 10, 2 },
        { "1e-4dm", 10, 3 },
        { "0.001inch", 25.4, 4 },
        { "0.01", 0, 0 },
        { "mm", 0, 0 },
        { "0.01 m", 0, 0 },
        { "0,01mm", 0, 0 },
        { "-0.01mm", 0, 0 },
        { "0mm", 0, 0 },
        { "0.01mm2", 0, 0 },
    };
    for (const Case& c : cases) {
        Division d;
        QString error;
        const bool ok = ParseDivision(QString::fromUtf8(c.text), &d, &error);
        EXPECT_EQ(ok, c.micrometres > 0) << c.text;
        EXPECT_EQ(error.isEmpty(), ok) << c.text;
        if (ok) {
            EXPECT_NEAR(d.micrometres, c.micrometres, 1e-9) << c.text;
            EXPECT_EQ(d.unit, c.unit) << c.text;
        }
    }
}
