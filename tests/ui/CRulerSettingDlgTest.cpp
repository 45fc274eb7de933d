#include "ui/CRulerSettingDlg.h"

#include "TestFiles.h"
#include "platform/AppPaths.h"
#include "platform/MessageBox.h"
#include "platform/NumberText.h"
#include "ui/FakeMeasureDocument.h"

#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QGroupBox>
#include <QGuiApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QTemporaryDir>
#include <QTest>

#include <functional>
#include <gtest/gtest.h>

using NumberText::LeadingReal;

namespace {

struct DialogFixture : ::testing::Test
{
    DialogFixture()
    {
        AppPaths paths = previousPaths;
        paths.m_calibrationFolder = dir.filePath(QStringLiteral("data/svrdata/"));
        paths.m_factoryCalibrationFolder = QStringLiteral(OCULIX_SOURCE_DIR "/resources/svrdata/");
        SetCurrentAppPaths(paths);
        doc.mgr.SetRulerShown(true);
        doc.dialog = std::make_unique<CRulerSettingDlg>(doc);
    }
    ~DialogFixture() override
    {
        CRulerSettingDlg::SetFileDialogHandler({});
        SetCurrentAppPaths(previousPaths);
    }

    CRulerSettingDlg& Dlg() { return *doc.dialog; }
    QLineEdit* Edit(const char* name) { return Dlg().findChild<QLineEdit*>(QString::fromLatin1(name)); }
    QString Text(const char* name) { return Edit(name)->text(); }
    // X-Start, X-End, X-Lenth / Y-Start, Y-End, Y-Lenth as the dialog shows them.
    QString Extents()
    {
        return Text("xStart") + ' ' + Text("xEnd") + ' ' + Text("xLenth") + " / " + Text("yStart") + ' '
            + Text("yEnd") + ' ' + Text("yLenth");
    }
    void Type(const char* name, const char* text)
    {
        Edit(name)->selectAll();
        QTest::keyClicks(Edit(name), QString::fromLatin1(text));
    }
    void Click(const char* name)
    {
        QTest::mouseClick(Dlg().findChild<QPushButton*>(QString::fromLatin1(name)), Qt::LeftButton);
    }
    // A and B of the dialog: the ends of the vertical and horizontal arms.
    void PlaceRuler(QPoint a, QPoint b) { doc.Ruler()->SetArms(a, b); }
    std::pair<QPoint, QPoint> Arms() { return doc.Ruler()->GetArms(); }
    // The file dialogs answer `path` and remember what they were asked.
    void AnswerFileDialog(const QString& path)
    {
        CRulerSettingDlg::SetFileDialogHandler([this, path](const CRulerSettingDlg::FileRequest& request) {
            requests.push_back(request);
            return path;
        });
    }

    const AppPaths previousPaths = CurrentAppPaths();
    QTemporaryDir dir;
    std::vector<QString> messages;
    ScopedMessageBoxHandler box { [this](const MessageBoxRequest& r) {
        messages.push_back(r.text);
        return int(IDOK);
    } };
    std::vector<CRulerSettingDlg::FileRequest> requests;
    FakeMeasureDocument doc;
    FakeView view { doc };
};

} // namespace

TEST_F(DialogFixture, StartsWithTheRulerReadTheRecordsLengthsAndUnitAndShowsTheRuler)
{
    EXPECT_EQ(Dlg().windowTitle(), "Ruler Setting");
    EXPECT_FALSE(Dlg().isVisible());
    EXPECT_FALSE(Dlg().isModal());
    EXPECT_TRUE(Dlg().windowFlags() & Qt::WindowStaysOnTopHint);
    const QRect screen = QGuiApplication::primaryScreen()->geometry();
    EXPECT_EQ(Dlg().pos(), QPoint(screen.right() + 1 - 440, 130));
    EXPECT_EQ(Dlg().UnitSelection(), 0);
    EXPECT_EQ(Dlg().PerPixelUnitLabel(), "um/pixel");
    EXPECT_EQ(Dlg().UnitLabel(), "um");
    auto* magnification = Dlg().findChild<QComboBox*>(QStringLiteral("magnification"));
    EXPECT_EQ(magnification->count(), 5);
    EXPECT_EQ(magnification->currentText(), "40X");
    EXPECT_TRUE(magnification->isVisibleTo(&Dlg())) << "shown, so the factory calibrations can be picked";
    EXPECT_TRUE(Dlg().findChild<QPushButton*>(QStringLiteral("default"))->isVisibleTo(&Dlg()));
    // The ruler as constructed: A (50, 100), B (100, 50); the manager's 10.
    EXPECT_EQ(Extents(), "50 100 50 / 50 100 50");
    EXPECT_EQ(Text("xReal"), "10");
    EXPECT_EQ(Text("xPerPixel"), "0.2000");
    EXPECT_TRUE(Edit("xPerPixel")->isReadOnly());

    // Activation puts the ruler on screen.
    doc.mgr.SetRulerShown(false);
    QEvent activate(QEvent::WindowActivate);
    QCoreApplication::sendEvent(&Dlg(), &activate);
    EXPECT_TRUE(doc.mgr.IsRulerShown());
}

// Typing and Recompute show the scale; the unit changes only the labels;
// nothing reaches the manager until committed.
TEST_F(DialogFixture, RecomputeRealLengthsAndUnitUntilCommitted)
{
    const CalibrationRecord before = doc.mgr.m_unit;
    PlaceRuler({ 100, 300 }, { 300, 100 });
    Type("xReal", "2");
    EXPECT_EQ(Text("xPerPixel"), "0.0400") << "typing uses the stored length, not the moved ruler";
    EXPECT_EQ(Text("yPerPixel"), "0.2000") << "only its own axis";
    Type("yReal", "3");
    Dlg().Recompute();
    EXPECT_EQ(Extents(), "100 300 200 / 100 300 200");
    EXPECT_EQ(Text("xPerPixel"), "0.0100");
    EXPECT_EQ(Text("yPerPixel"), "0.0150");

    auto* unit = Dlg().findChild<QComboBox*>(QStringLiteral("unit"));
    unit->setFocus();
    QTest::keyClick(unit, Qt::Key_Down);
    EXPECT_EQ(Dlg().UnitSelection(), 1);
    EXPECT_EQ(Dlg().PerPixelUnitLabel(), "mm/pixel");
    EXPECT_EQ(Dlg().UnitLabel(), "mm");
    EXPECT_EQ(Text("xPerPixel"), "0.0100") << "nothing is rescaled";
    EXPECT_EQ(doc.mgr.m_unit, before);
    Dlg().Commit();
    EXPECT_EQ(doc.mgr.m_unit, (CalibrationRecord { 1, 0.01, 0.015, 2.0, 3.0 }));

    Type("xReal", "abc");
    EXPECT_EQ(Text("xPerPixel"), "0.0000") << "not a number counts 0";
    PlaceRuler({ 100, 100 }, { 100, 100 });
    Dlg().Recompute();
    EXPECT_TRUE(Text("xPerPixel").contains(QStringLiteral("nan")))
        << "a ruler of no length is shown as it is";
}

TEST_F(DialogFixture, YEqualsXCopiesTheXArmMovesTheRulerAndCommits)
{
    PlaceRuler({ 100, 300 }, { 300, 200 });
    Type("xReal", "2");
    Type("yReal", "5");
    Dlg().Recompute();
    EXPECT_EQ(Text("yLenth"), "100");
    Click("yEqualX");
    EXPECT_EQ(Arms(), std::make_pair(QPoint(100, 400), QPoint(300, 200)));
    EXPECT_EQ(Text("yLenth"), "200");
    EXPECT_EQ(Text("yReal"), "2");
    EXPECT_EQ(Text("yPerPixel"), "0.0100");
    EXPECT_EQ(doc.mgr.m_unit, (CalibrationRecord { 0, 0.01, 0.01, 2.0, 2.0 }));
}

TEST_F(DialogFixture, OkCancelAndEscapeAllCommitAndClose)
{
    PlaceRuler({ 100, 300 }, { 300, 100 });
    const auto closeWith = [&](const char* real, const std::function<void()>& close) {
        Dlg().show();
        Type("xReal", real);
        close();
        return !Dlg().isVisible() && doc.mgr.m_unit.m_dcxReal == LeadingReal(QString::fromLatin1(real))
            && doc.mgr.m_unit.m_dcxPerPixel == LeadingReal(QString::fromLatin1(real)) / 200;
    };
    EXPECT_TRUE(closeWith("4", [&] { Click("cancel"); })) << "Cancel keeps the new calibration";
    EXPECT_TRUE(closeWith("6", [&] { Click("ok"); }));
    EXPECT_TRUE(closeWith("8", [&] { QTest::keyClick(&Dlg(), Qt::Key_Escape); }));

    // Each applied calibration is an undo step; the dialog shows what undo
    // brought back, so closing it again does not reapply the undone one.
    ASSERT_TRUE(doc.history.Undo());
    Dlg().ReadRecord();
    EXPECT_EQ(doc.mgr.m_unit.m_dcxReal, 6.0);
    EXPECT_EQ(Text("xReal"), "6");
    Click("ok");
    EXPECT_EQ(doc.mgr.m_unit.m_dcxPerPixel, 6.0 / 200);
    EXPECT_TRUE(doc.history.CanRedo()) << "closing changed nothing";
}

// "Save To" writes the ruler moved to the corner under a name without
// ".svr"; "Load From" reads any line ends, moves the ruler and commits, or
// reports a file it cannot read and changes nothing.
TEST_F(DialogFixture, SaveToAndLoadFrom)
{
    QDir().mkpath(dir.filePath(QStringLiteral("data/svrdata")));
    PlaceRuler({ 250, 400 }, { 450, 380 });
    Type("xReal", "2");
    Type("yReal", "2");
    Dlg().Recompute();
    AnswerFileDialog(dir.filePath(QStringLiteral("a.svr")));
    Click("saveTo");
    ASSERT_EQ(requests.size(), 1u);
    EXPECT_TRUE(requests[0].save);
    EXPECT_EQ(requests[0].filter, "Ruler Data Files(*.svr)");
    EXPECT_EQ(requests[0].defaultSuffix, "svr");
    EXPECT_EQ(requests[0].initialPath, CurrentAppPaths().m_calibrationFolder + "*.svr");
    EXPECT_FALSE(QFile::exists(dir.filePath(QStringLiteral("a.svr"))));
    EXPECT_EQ(ReadAll(dir.filePath(QStringLiteral("a"))),
        "0.0100\r\r\n0.1000\r\r\n2\r\r\n2\r\r\n100\r\r\n300\r\r\n200\r\r\n100\r\r\n120\r\r\n20\r\r\n0\r\r\n");

    const QStringList files = QDir(dir.path()).entryList(QDir::Files);
    AnswerFileDialog({}); // the user cancels
    Click("saveTo");
    EXPECT_EQ(requests.size(), 2u);
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files), files) << "nothing written";
    EXPECT_TRUE(messages.empty());
    EXPECT_FALSE(Dlg().SaveTo(dir.filePath(QStringLiteral("missing/b.svr"))));
    ASSERT_EQ(messages.size(), 1u);
    EXPECT_TRUE(messages[0].contains(QStringLiteral("missing/b")));

    const QString path = dir.filePath(QStringLiteral("lf.svr"));
    ASSERT_TRUE(WriteAll(path, "0.5\n0.5\n3\n4\n100\n400\n300\n100\n500\n400\n2\n"));
    AnswerFileDialog(path);
    Click("loadFrom");
    ASSERT_EQ(requests.size(), 3u);
    EXPECT_FALSE(requests[2].save);
    EXPECT_EQ(requests[2].initialPath, CurrentAppPaths().m_factoryCalibrationFolder + "*.svr");
    EXPECT_EQ(requests[2].filter, "Ruler Data Files(*.svr)");
    EXPECT_EQ(Arms(), std::make_pair(QPoint(100, 500), QPoint(400, 100)));
    EXPECT_EQ(Dlg().UnitLabel(), "cm");
    EXPECT_EQ(Text("xPerPixel"), "0.0100") << "recomputed from the lengths";
    EXPECT_EQ(doc.mgr.m_unit, (CalibrationRecord { 2, 0.01, 0.01, 3.0, 4.0 }));

    // What was saved loads back the same, wherever the ruler lay meanwhile.
    const QString saved = dir.filePath(QStringLiteral("cal"));
    ASSERT_TRUE(Dlg().SaveTo(saved));
    PlaceRuler({ 10, 20 }, { 30, 10 });
    Dlg().Commit();
    ASSERT_TRUE(Dlg().LoadFrom(saved));
    EXPECT_EQ(doc.mgr.m_unit, (CalibrationRecord { 2, 0.01, 0.01, 3.0, 4.0 }));
    EXPECT_EQ(messages.size(), 1u);

    // Unreadable files are reported, one message each, and change nothing.
    const auto arms = Arms();
    const SvrData data = Dlg().m_data;
    const QString binary = dir.filePath(QStringLiteral("bin.svr"));
    ASSERT_TRUE(WriteAll(binary, QByteArray("\0\1\2\3\n\n\n", 7)));
    for (const QString& path : { dir.filePath(QStringLiteral("none.svr")), binary, dir.path() })
        EXPECT_FALSE(Dlg().LoadFrom(path));
    EXPECT_EQ(messages.size(), 4u);
    EXPECT_EQ(doc.mgr.m_unit, (CalibrationRecord { 2, 0.01, 0.01, 3.0, 4.0 }));
    EXPECT_EQ(Arms(), arms);
    EXPECT_EQ(Dlg().m_data, data);
}

TEST_F(DialogFixture, DefaultScalesTheFactoryCalibrationToTheFrame)
{
    doc.imageSize = QSize(640, 512);
    Click("default"); // "40X": 120 x 100 um over 923 x 769 pixels at 1280 x 1024
    EXPECT_EQ(Arms(), std::make_pair(QPoint(100, 484), QPoint(561, 100)));
    EXPECT_EQ(Extents(), "100 561 461 / 100 484 384");
    EXPECT_EQ(doc.mgr.m_unit, (CalibrationRecord { 0, 0.2603, 0.2604, 120.0, 100.0 }));

    doc.imageSize = QSize(1280, 1024);
    Dlg().SetMagnificationSelection(0);
    Dlg().LoadDefault();
    EXPECT_EQ(Text("xLenth"), "962");
    EXPECT_EQ(doc.mgr.m_unit, (CalibrationRecord { 0, 0.5198, 0.5202, 500.0, 400.0 }));

    // No factory files installed: the ruler as it lies is committed, silently.
    AppPaths paths = CurrentAppPaths();
    paths.m_factoryCalibrationFolder = dir.path() + QStringLiteral("/");
    SetCurrentAppPaths(paths);
    PlaceRuler({ 100, 300 }, { 300, 100 });
    Dlg().LoadDefault();
    EXPECT_TRUE(messages.empty());
    EXPECT_EQ(doc.mgr.m_unit, (CalibrationRecord { 0, 2.5, 2.0, 500.0, 400.0 }));
    ASSERT_TRUE(WriteAll(dir.filePath(QStringLiteral("100-1280_1024.svr")), QByteArray(10, '\0')));
    Dlg().SetMagnificationSelection(4);
    Dlg().LoadDefault();
    EXPECT_EQ(messages.size(), 1u) << "a damaged factory file is worth a word";
}

TEST_F(DialogFixture, FollowsARulerDragOnTheOverlayWindow)
{
    view.view.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&view.view));
    const CalibrationRecord before = doc.mgr.m_unit;
    doc.tool = 9;
    QTest::mousePress(view.wnd, Qt::LeftButton, {}, { 100, 50 });
    QTest::mouseMove(view.wnd, { 200, 50 });
    QTest::mouseMove(view.wnd, { 300, 52 });
    EXPECT_EQ(Extents(), "50 300 250 / 50 100 50") << "during the drag";
    QTest::mouseRelease(view.wnd, Qt::LeftButton, {}, { 300, 52 });
    EXPECT_EQ(Text("xPerPixel"), "0.0400");
    EXPECT_EQ(doc.mgr.m_unit.m_dcxPerPixel, 10.0 / 250) << "the ruler set the scale itself";

    QTest::mousePress(view.wnd, Qt::LeftButton, {}, { 60, 60 });
    QTest::mouseMove(view.wnd, { 160, 90 });
    QTest::mouseRelease(view.wnd, Qt::LeftButton, {}, { 160, 90 });
    EXPECT_EQ(Extents(), "150 400 250 / 80 130 50") << "a whole-ruler move too";

    // Undoing the arm's drag takes the ruler and the scale back together.
    ASSERT_TRUE(doc.history.Undo());
    ASSERT_TRUE(doc.history.Undo());
    Dlg().ReadRecord();
    EXPECT_EQ(Extents(), "50 100 50 / 50 100 50");
    EXPECT_EQ(doc.mgr.m_unit, before);
    EXPECT_FALSE(doc.history.CanUndo());
}

TEST(CRulerSettingDlg, CalibrationCommandTogglesDialogAndRulerTogether)
{
    FakeMeasureDocument doc;
    FakeView view(doc);
    doc.mgr.SetRulerShown(true);
    // The view's initial update: the dialog exists, hidden, and so is the ruler.
    CRulerSettingDlg::ToggleCalibration(doc, doc.dialog, doc.calibrationShown);
    ASSERT_TRUE(doc.dialog);
    EXPECT_FALSE(doc.dialog->isVisible());
    EXPECT_FALSE(doc.mgr.IsRulerShown());
    EXPECT_TRUE(doc.calibrationShown);
    CRulerSettingDlg* const dialog = doc.dialog.get();
    for (int round = 0; round < 2; ++round) {
        CRulerSettingDlg::ToggleCalibration(doc, doc.dialog, doc.calibrationShown);
        EXPECT_TRUE(dialog->isVisible());
        EXPECT_TRUE(doc.mgr.IsRulerShown());
        EXPECT_FALSE(doc.calibrationShown);
        CRulerSettingDlg::ToggleCalibration(doc, doc.dialog, doc.calibrationShown);
        EXPECT_FALSE(dialog->isVisible());
        EXPECT_FALSE(doc.mgr.IsRulerShown());
        EXPECT_TRUE(doc.calibrationShown);
    }
    EXPECT_EQ(doc.dialog.get(), dialog) << "created once";
}

// As a user meets it: the ruler on the picture says 0.2 mm, so does the
// dialog, and OK straight away leaves the calibration as it was.
TEST(CRulerSettingDlg, ImmediateOkKeepsTheCalibrationAndItsUnit)
{
    for (const auto& [unit, unitText] : { std::pair { 1, "mm" }, { 4, "inch" } }) {
        FakeMeasureDocument doc;
        FakeView view(doc); // the ruler's arms are 50 pixels long
        doc.mgr.SetUnit({ unit, 0.004, 0.004, 0.2, 0.2 });
        const CalibrationRecord before = doc.mgr.m_unit;
        CRulerSettingDlg::ToggleCalibration(doc, doc.dialog, doc.calibrationShown);
        CRulerSettingDlg::ToggleCalibration(doc, doc.dialog, doc.calibrationShown);
        ASSERT_TRUE(doc.dialog->isVisible());
        EXPECT_EQ(doc.dialog->UnitLabel(), unitText);
        EXPECT_EQ(doc.dialog->findChild<QLineEdit*>(QStringLiteral("xReal"))->text(), "0.2");
        QTest::mouseClick(doc.dialog->findChild<QPushButton*>(QStringLiteral("ok")), Qt::LeftButton);
        EXPECT_FALSE(doc.dialog->isVisible());
        EXPECT_EQ(doc.mgr.m_unit, before) << unit;
    }
}
