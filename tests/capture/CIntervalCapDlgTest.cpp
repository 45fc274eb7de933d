#include "CaptureTestSupport.h"
#include "FakeLiveDocument.h"
#include "capture/CDialogTimers.h"
#include "capture/CIntervalCapDlg.h"
#include "platform/PrivateProfile.h"

#include <QPushButton>
#include <QTemporaryDir>

#include <gtest/gtest.h>
#include <memory>

namespace {

class IntervalCapture : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(dir.isValid());
        settings = dir.filePath(QStringLiteral("Setting.ini"));
        WritePrivateProfileString(QStringLiteral("Save"), QStringLiteral("Prefix"), QStringLiteral("slide"), settings);
        document = std::make_unique<FakeLiveDocument>(graph, settings);
        // Counted here, so a save after the document went would show.
        dialog = std::make_unique<CIntervalCapDlg>(document.get(), [this] {
            saveTimes.push_back(dialog->Timers().Now() - start);
            if (document)
                document->QuickSaveSilent();
        });
        dialog->Timers().UseManualClock();
    }

    void Run(int wait, int interval, int images)
    {
        dialog->SetFieldText(CIntervalCapDlg::Wait, QString::number(wait));
        dialog->SetFieldText(CIntervalCapDlg::Interval, QString::number(interval));
        dialog->SetFieldText(CIntervalCapDlg::Images, QString::number(images));
        start = dialog->Timers().Now();
        dialog->OnStart();
    }

    QTemporaryDir dir;
    QString settings;
    CXCapGraph graph;
    MessageCollector messages;
    std::unique_ptr<FakeLiveDocument> document;
    std::unique_ptr<CIntervalCapDlg> dialog;
    std::vector<qint64> saveTimes;
    qint64 start = 0;
};

} // namespace

// Wait 3, interval 2, two images: the countdown shows 2, 1 and "0", the
// pictures are saved 5 s and 7 s after Start and the run ends at 9 s; the
// file name shown is always the next picture's.
TEST_F(IntervalCapture, CountsDownThenSavesOnEachIntervalAndEndsOneIntervalAfterTheLast)
{
    EXPECT_EQ(dialog->Value(CIntervalCapDlg::Wait), 1);
    EXPECT_EQ(dialog->Value(CIntervalCapDlg::Interval), 1);
    EXPECT_EQ(dialog->Value(CIntervalCapDlg::Images), 5);
    Run(3, 2, 2);
    EXPECT_FALSE(dialog->StartButton()->isEnabled());
    QStringList states;
    for (int s = 1; s <= 3; ++s) {
        dialog->Timers().Advance(1000);
        states << dialog->CurrentText();
    }
    EXPECT_EQ(states, QStringList({ "2", "1", "0" }));
    EXPECT_TRUE(saveTimes.empty());
    dialog->Timers().Advance(2000);
    EXPECT_EQ(dialog->NumberText(), QStringLiteral("1"));
    EXPECT_EQ(dialog->FileNameText(), QStringLiteral("slide1.jpg"));
    WritePrivateProfileString(QStringLiteral("Save"), QStringLiteral("bBmp"), QStringLiteral("1"), settings);
    dialog->Timers().Advance(2000);
    EXPECT_EQ(dialog->NumberText(), QStringLiteral("2"));
    EXPECT_EQ(dialog->FileNameText(), QStringLiteral("slide2.bmp"));
    EXPECT_TRUE(dialog->IsRunning());
    dialog->Timers().Advance(1999);
    EXPECT_TRUE(dialog->IsRunning());
    dialog->Timers().Advance(1);
    EXPECT_FALSE(dialog->IsRunning());
    EXPECT_EQ(saveTimes, (std::vector<qint64> { 5000, 7000 }));
    EXPECT_TRUE(dialog->CurrentText().isEmpty() && dialog->FileNameText().isEmpty()
        && dialog->NumberText().isEmpty());
    EXPECT_TRUE(dialog->StartButton()->isEnabled());

    // Without a wait the first picture comes one interval after Start; a
    // countdown stopped half-way starts from the top next time.
    saveTimes.clear();
    Run(0, 3, 1);
    dialog->Timers().Advance(3000);
    EXPECT_EQ(saveTimes, (std::vector<qint64> { 3000 }));
    dialog->Timers().Advance(3000);
    EXPECT_FALSE(dialog->IsRunning());
    Run(4, 1, 1);
    dialog->Timers().Advance(2000);
    EXPECT_EQ(dialog->CurrentText(), QStringLiteral("2"));
    dialog->OnStop();
    EXPECT_FALSE(dialog->IsRunning());
    EXPECT_TRUE(dialog->CurrentText().isEmpty());
    saveTimes.clear();
    Run(4, 1, 1);
    dialog->Timers().Advance(5000);
    EXPECT_EQ(saveTimes, (std::vector<qint64> { 5000 }));
    EXPECT_TRUE(messages.Texts().isEmpty()) << Shown(messages);
}

TEST_F(IntervalCapture, EachFieldFallsBackToItsDefaultAndNamesItsLimit)
{
    using F = CIntervalCapDlg;
    struct Case
    {
        CIntervalCapDlg::Field field;
        const char* typed;
        const char* shown;
        const char* message; // "" for none
    };
    const Case cases[] = {
        { F::Wait, "", "0", "" },
        { F::Wait, "1a", "0", "" },
        { F::Wait, "-3", "0", "" },
        { F::Wait, "0", "0", "" },
        { F::Wait, "100", "100", "" },
        { F::Wait, "101", "0", "Please input an integer between 0 and 100!" },
        { F::Wait, "99999999999", "0", "Please input an integer between 0 and 100!" },
        { F::Interval, "0", "1", "" },
        { F::Interval, " 7", "1", "" },
        { F::Interval, "100", "100", "" },
        { F::Interval, "101", "1", "Please input an integer between 1 and 100!" },
        { F::Images, "0", "5", "" },
        { F::Images, "15000", "15000", "" },
        { F::Images, "15001", "5", "Please input an integer between 1 and 1000!" },
    };
    for (const Case& c : cases) {
        messages.Clear();
        dialog->SetFieldText(c.field, QString::fromLatin1(c.typed));
        EXPECT_EQ(dialog->FieldText(c.field), QString::fromLatin1(c.shown)) << c.field << " '" << c.typed << "'";
        EXPECT_EQ(messages.Texts().join('|'), QString::fromLatin1(c.message))
            << c.field << " '" << c.typed << "'";
    }
    // The spin buttons stop at the ranges.
    const std::pair<int, int> ranges[] = { { 0, 100 }, { 1, 100 }, { 1, 15000 } };
    for (int f = F::Wait; f <= F::Images; ++f) {
        const auto field = CIntervalCapDlg::Field(f);
        dialog->SetFieldText(field, QString::number(ranges[f].first));
        dialog->Step(field, -1);
        EXPECT_EQ(dialog->Value(field), ranges[f].first);
        dialog->SetFieldText(field, QString::number(ranges[f].second));
        dialog->Step(field, 1);
        EXPECT_EQ(dialog->Value(field), ranges[f].second);
    }
}

// Closing the live document stops the run; nothing is saved after that.
TEST_F(IntervalCapture, ClosingTheLiveDocumentEndsTheRun)
{
    QObject::connect(document.get(), &QObject::destroyed, dialog.get(), &CIntervalCapDlg::OnDocumentClosed);
    Run(0, 1, 10);
    dialog->Timers().Advance(2000);
    EXPECT_EQ(saveTimes.size(), 2u);
    document.reset();
    EXPECT_FALSE(dialog->IsRunning());
    dialog->Timers().Advance(20000);
    EXPECT_EQ(saveTimes.size(), 2u);
    EXPECT_FALSE(dialog->StartButton()->isEnabled());
    dialog->OnStart();
    EXPECT_FALSE(dialog->IsRunning());
    EXPECT_EQ(SettingsKeys::ReadInt(SettingsKeys::SaveSuffix, settings), 2);
}
