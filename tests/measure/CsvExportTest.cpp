#include "MeasureTestSupport.h"
#include "RequiredTools.h"
#include "calibration/MeasureTables.h"
#include "measure/CGVLCircle.h"
#include "measure/CGVLCircleT.h"
#include "measure/CGVLLine.h"

#include <clocale>
#include <cstdio>
#include <functional>

using namespace MeasureTest;

namespace {

struct CsvFixture : MeasureFixture
{
    CsvFixture()
    {
        mgr.SetTextInput([](QObject*, QStringList& lines) {
            lines = QStringList { "no row" };
            return true;
        });
    }
    QByteArray Csv(bool semicolon = false) { return ExportCsv(mgr, semicolon); }
    // Elements that measure nothing, between the measuring ones.
    void Annotate(QPoint at)
    {
        Click(mgr, 1, at);
        Click(mgr, 202, at + QPoint(5, 5));
        Drag(mgr, 203, at, { at + QPoint(1, 1), at + QPoint(40, 30) });
        Click(mgr, 205, at + QPoint(10, 0));
    }
};

} // namespace

TEST_F(CsvFixture, EveryMeasuringShapeGivesItsRowsInCreationOrderAndNoneNothing)
{
    // The same rows and labels as ever when "Snap to edges" is off (no hook,
    // or no picture) and when it finds no edge on a flat picture.
    QImage flat(400, 300, QImage::Format_Grayscale8);
    flat.fill(90);
    const std::function<QImage()> snaps[] = { {}, [] { return QImage(); }, [flat] { return flat; } };
    std::vector<QStringList> labels;
    for (const auto& snap : snaps) {
        mgr.DeleteAll();
        mgr.SetSnapSource(snap);
        EXPECT_EQ(Csv(), "") << "the ruler alone";
        Annotate({ 100, 100 });
        EXPECT_EQ(Csv(true), "No.;Type;Result;Unit\n") << "only elements that measure nothing";
        mgr.DeleteAll();
        EXPECT_EQ(Csv(), "") << "after Delete all, not even the header";
        mgr.SetUnit({ 1, 0.1, 0.1, 0, 0 });
        EditAppearance(mgr, [](auto& a) { a.precision = 3; });
        Drag(mgr, 2, { 0, 0 }, { { 0, 0 }, { 30, 40 } });
        Annotate({ 300, 20 });
        Clicks(mgr, 3, { { 150, 100 }, { 100, 100 }, { 150, 150 } });
        Drag(mgr, 4, { 50, 50 }, { { 51, 51 }, { 150, 120 } });
        Annotate({ 300, 200 });
        Clicks(mgr, 5, { { 100, 100 }, { 110, 100 }, { 100, 110 } });
        RightClick(mgr, 5, { 0, 0 });
        Drag(mgr, 6, { 100, 100 }, { { 101, 101 }, { 130, 140 } });
        Clicks(mgr, 7, { { 100, 100 }, { 110, 100 }, { 100, 110 } });
        ASSERT_EQ(mgr.m_arShape.size(), 15u);
        const QByteArray comma = "No.,Type,Result,Unit\n"
                                 "1,Line distance,5.000, mm\n"
                                 "2,Angle,45.000,degree\n"
                                 "3,Rect area,70.000, mm2\n"
                                 "4,Ploygon area,0.500, mm2\n"
                                 "5,Circle radius,5.000, mm\n"
                                 "5,Circle area,78.540, mm2\n"
                                 "6,Tri-circle radius,0.700, mm\n"
                                 "6,Tri-circle area,1.539, mm2\n";
        EXPECT_EQ(Csv(), comma);
        QByteArray semicolon = comma;
        EXPECT_EQ(Csv(true), semicolon.replace(',', ';'));
        QStringList texts;
        for (const auto& shape : mgr.m_arShape) {
            if (const auto* line = dynamic_cast<const CGVLLine*>(shape.get()); line && line->GetType() == 2)
                texts << line->LabelText();
            else if (const auto* circle = dynamic_cast<const CGVLCircle*>(shape.get()))
                texts << circle->RadiusText() << circle->AreaText();
            else if (const auto* tri = dynamic_cast<const CGVLCircleT*>(shape.get()))
                texts << tri->RadiusText() << tri->AreaText();
        }
        labels.push_back(texts);
    }
    EXPECT_EQ(
        labels[0], (QStringList { "L=5.000mm", "R=5.000mm", "S=78.540mm2", "R=0.700mm", "S=1.539mm2" }));
    EXPECT_EQ(labels[1], labels[0]);
    EXPECT_EQ(labels[2], labels[0]);
}

TEST_F(CsvFixture, EveryPrecisionAndUnitWithTheUnitsLeadingSpace)
{
    AddLine(mgr, { 0, 0 }, { 1, 0 });
    CGVLShape* rect = mgr.CreateShape(4);
    for (QPoint p : { QPoint(0, 0), QPoint(1, 0), QPoint(0, 1), QPoint(1, 1) })
        rect->AddOneCoord(p);
    const char* numbers[] = { "12.3", "12.35", "12.346", "12.3456", "12.34560" };
    const char* units[] = { "um", "mm", "cm", "dm", "inch" };
    for (int unit = 0; unit < 5; ++unit)
        for (int precision = 1; precision <= 5; ++precision) {
            mgr.SetUnit({ unit, 12.3456, 1.0, 0, 0 });
            EditAppearance(mgr, [&](auto& a) { a.precision = precision; });
            const QByteArray n = numbers[precision - 1];
            const QByteArray u = units[unit];
            EXPECT_EQ(Csv(),
                "No.,Type,Result,Unit\n1,Line distance," + n + ", " + u + "\n2,Rect area," + n + ", " + u
                    + "2\n");
        }
    for (int precision : { 0, 6 }) {
        EditAppearance(mgr, [&](auto& a) { a.precision = precision; });
        EXPECT_EQ(Csv(), "No.,Type,Result,Unit\n") << "rows stay empty";
    }
    EditAppearance(mgr, [](auto& a) { a.precision = 5; });
    EditUnit(mgr, [](auto& u) { u.m_dcxPerPixel = 1e300; }); // a row past its 255 bytes is cut there
    const QByteArray csv = Csv();
    const QByteArray last = csv.mid(csv.lastIndexOf('\n') + 1);
    EXPECT_EQ(last.size(), 255) << "no line feed left";
    EXPECT_TRUE(last.startsWith("2,Rect area,1000000000"));
}

TEST_F(CsvFixture, NumbersKeepAPeriodUnderACommaLocale)
{
    REQUIRE_TOOL(UseCommaLocale(), "a locale with a decimal comma (localedef, package locales)");
    char probe[8];
    std::snprintf(probe, sizeof probe, "%.1f", 1.5);
    EXPECT_STREQ(probe, "1,5");
    EditAppearance(mgr, [](auto& a) { a.precision = 2; });
    Clicks(mgr, 3, { { 150, 100 }, { 100, 100 }, { 150, 150 } });
    const QByteArray semicolon = Csv(true);
    const QByteArray comma = Csv();
    // The labels on the picture keep it too.
    const QString label = MeasureTables::FormatLabel(MeasureTables::kLengthFormats, 2, 1.5, "mm");
    std::setlocale(LC_NUMERIC, "C");
    EXPECT_EQ(label, "L=1.50mm");
    EXPECT_EQ(semicolon, "No.;Type;Result;Unit\n1;Angle;45.00;degree\n");
    EXPECT_EQ(comma, "No.,Type,Result,Unit\n1,Angle,45.00,degree\n");
}
