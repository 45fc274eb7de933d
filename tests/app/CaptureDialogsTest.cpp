#include "MeasureFrameFixture.h"
#include "RequiredTools.h"
#include "TestFiles.h"
#include "app/CommandTable.h"
#include "capture/CDialogTimers.h"
#include "capture/CIntervalCapDlg.h"
#include "capture/CRecordDlg.h"
#include "capture/CRgbDlg.h"
#include "platform/SettingsKeys.h"

#include <QCheckBox>
#include <QLineEdit>
#include <QProcess>
#include <QPushButton>
#include <QSlider>
#include <QTimer>

#include <functional>

namespace {

// Runs body on the modal dialog of type D once the command has opened it;
// body closes it. False when no such dialog came up.
template <typename D> bool OnModal(std::function<void(D&)> body, bool* seen)
{
    *seen = false;
    // Only the pending timer holds the poll, so it is freed once the dialog is found.
    auto poll = std::make_shared<std::function<void()>>();
    *poll = [body, seen, weak = std::weak_ptr(poll)] {
        if (auto* d = qobject_cast<D*>(QApplication::activeModalWidget())) {
            *seen = true;
            body(*d);
            if (d->isVisible())
                d->reject();
            return;
        }
        if (auto self = weak.lock())
            QTimer::singleShot(20, [self] { (*self)(); });
    };
    QTimer::singleShot(0, [poll] { (*poll)(); });
    return true;
}

} // namespace

// "Record camera video to file" from the toolbar: the live graph records with
// the shapes burnt in and comes back to a running preview whose overlay
// worker, processing and gains are as before.
TEST_F(MeasureFrameTest, RecordCommandRecordsTheLiveVideoAndReturnsToThePreview)
{
    REQUIRE_TOOL(HaveProgram("ffprobe"), "ffprobe (ffmpeg)");
    Start();
    CMeasureDoc* live = CMeasureDoc::GetLiveDocument();
    for (int id : { ID_CAMERA_RECORD, ID_CAMERA_INTERVAL, ID_PROCESS_RGB })
        EXPECT_TRUE(frame->QueryCommand(id).IsEnabled()) << id;
    const QString file = home.filePath("clip.avi");
    const auto previous = CRecordDlg::SetBrowseHandler([&](QWidget*, const QString&) { return file; });
    bool seen = false;
    int recorded = 0;
    const auto processed = [&] {
        int frames = 0;
        live->GetGraph().GetStateB(&frames);
        return frames;
    };
    OnModal<CRecordDlg>(
        [&](CRecordDlg& d) {
            d.Timers().UseManualClock();
            d.OnBrowse();
            d.OnStart();
            EXPECT_TRUE(live->GetGraph().IsRecordGraph());
            const int start = processed();
            EXPECT_TRUE(WaitFor([&] { return processed() >= start + 6; }, 20000));
            d.Timers().Advance(6000);
            ASSERT_TRUE(d.StopButton()->isEnabled());
            recorded = processed() - start;
            d.OnStop();
        },
        &seen);
    ASSERT_TRUE(frame->RouteCommand(ID_CAMERA_RECORD));
    CRecordDlg::SetBrowseHandler(previous);
    ASSERT_TRUE(seen);
    EXPECT_FALSE(live->GetGraph().IsRecordGraph());
    EXPECT_TRUE(live->IsPreviewRunning());
    EXPECT_TRUE(live->IsProcessingEnabled());
    EXPECT_TRUE(live->IsOverlayWorkerRunning());
    const unsigned passes = live->OverlayPasses();
    EXPECT_TRUE(WaitFor([&] { return HasFrame(*live) && live->OverlayPasses() > passes + 2; }, 10000));
    // Every frame processed while recording is in the file (the capture
    // tests compare the whole count with the stream's time).
    EXPECT_GE(recorded, 6);
    EXPECT_GE(PlayableFrames(file), recorded);
    EXPECT_TRUE(messages.isEmpty()) << messages.join('|').toStdString();
}

// "&Rgb" keeps its gains in the live document and the graph; the presets go
// to the settings file.
TEST_F(MeasureFrameTest, RgbCommandSetsTheLiveGainsAndKeepsPresets)
{
    Start();
    CMeasureDoc* live = CMeasureDoc::GetLiveDocument();
    bool seen = false;
    OnModal<CRgbDlg>(
        [&](CRgbDlg& d) {
            d.EnableBox()->setChecked(true);
            d.Slider(1)->setValue(60);
            d.NameEdit()->setText(QStringLiteral("Green"));
            d.OnAdd();
            d.accept();
        },
        &seen);
    ASSERT_TRUE(frame->RouteCommand(ID_PROCESS_RGB));
    ASSERT_TRUE(seen);
    EXPECT_TRUE(live->GetSwitches().rgb);
    EXPECT_EQ(live->GetSwitches().green, 60);
    int on = 0, r = 0, g = 0, b = 0;
    ASSERT_EQ(live->GetGraph().GetRgbGain(&on, &r, &g, &b), 0);
    EXPECT_EQ(on, 1);
    EXPECT_EQ(g, 60);
    EXPECT_EQ(
        SettingsKeys::ReadString(SettingsKeys::RgbGainName(0), SettingsFile()), QStringLiteral("Green"));
}

// "Interval capture frames": each tick saves the live picture into the
// pictures folder under the quick-save name.
TEST_F(MeasureFrameTest, IntervalCaptureCommandSavesASeriesIntoThePicturesFolder)
{
    Start();
    bool seen = false;
    OnModal<CIntervalCapDlg>(
        [&](CIntervalCapDlg& d) {
            d.Timers().UseManualClock();
            d.SetFieldText(CIntervalCapDlg::Wait, QStringLiteral("0"));
            d.SetFieldText(CIntervalCapDlg::Images, QStringLiteral("3"));
            d.OnStart();
            d.Timers().Advance(4000);
            EXPECT_FALSE(d.IsRunning());
        },
        &seen);
    ASSERT_TRUE(frame->RouteCommand(ID_CAMERA_INTERVAL));
    ASSERT_TRUE(seen);
    const QStringList saved = QDir(home.filePath("data/Images")).entryList(QDir::Files, QDir::Name);
    EXPECT_EQ(saved, QStringList({ "0.jpg", "1.jpg", "2.jpg" }));
    EXPECT_EQ(SettingsKeys::ReadInt(SettingsKeys::SaveSuffix, SettingsFile()), 3);
    EXPECT_TRUE(messages.isEmpty()) << messages.join('|').toStdString();
}
