#include "CaptureTestSupport.h"
#include "FakeLiveDocument.h"
#include "TestFiles.h"
#include "capture/CRgbDlg.h"
#include "platform/PrivateProfile.h"

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSlider>
#include <QTemporaryDir>
#include <QTreeWidget>

#include <gtest/gtest.h>
#include <memory>

namespace {

class RgbPresets : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(dir.isValid());
        settings = dir.filePath(QStringLiteral("Setting.ini"));
        document = std::make_unique<FakeLiveDocument>(graph, settings);
    }

    QString Key(const QString& name) const
    {
        return GetPrivateProfileString(QStringLiteral("RGBGAIN"), name, QStringLiteral("<none>"), settings);
    }
    QStringList Row(const CRgbDlg& d, int i) const
    {
        QStringList out;
        for (int c = 0; c < d.List()->columnCount(); ++c)
            out << d.List()->topLevelItem(i)->text(c);
        return out;
    }
    void AddPreset(CRgbDlg& d, const QString& name, int r, int g, int b)
    {
        d.Slider(0)->setValue(r);
        d.Slider(1)->setValue(g);
        d.Slider(2)->setValue(b);
        d.NameEdit()->setText(name);
        d.OnAdd();
    }

    QTemporaryDir dir;
    QString settings;
    MessageCollector messages;
    CXCapGraph graph;
    std::unique_ptr<FakeLiveDocument> document;
};

} // namespace

// Presets are added from the current gains, an empty name adds nothing;
// deleting the middle of three rewrites keys 0 and 1, sets Total 2 and
// leaves the stale keys of index 2 in the file; with nothing selected the
// user is told to choose.
TEST_F(RgbPresets, AddDeleteRenumberAndLeaveStaleKeys)
{
    document->m_switches.rgb = true;
    CRgbDlg d(document.get());
    EXPECT_EQ(d.List()->headerItem()->text(1), QStringLiteral("Name"));
    EXPECT_EQ(d.List()->columnWidth(0), 35);
    EXPECT_EQ(d.List()->columnWidth(1), 130);
    AddPreset(d, QStringLiteral("HE stain"), 40, 30, 20);
    AddPreset(d, QString(), 1, 2, 3);
    AddPreset(d, QStringLiteral("Gram"), 10, 63, 0);
    AddPreset(d, QStringLiteral("Blue"), 0, 0, 63);
    ASSERT_EQ(d.List()->topLevelItemCount(), 3) << "the empty name added a row";
    EXPECT_EQ(Row(d, 1), QStringList({ "1", "Gram", "10", "63", "0" }));
    d.SaveList();
    EXPECT_EQ(Key(QStringLiteral("Total")), QStringLiteral("3"));

    d.OnDelete();
    EXPECT_EQ(messages.Texts(), QStringList({ "Select One item first" }));
    EXPECT_EQ(messages.Requests()[0].caption, QStringLiteral("Hint"));
    d.List()->topLevelItem(1)->setSelected(true);
    d.OnDelete();
    ASSERT_EQ(d.List()->topLevelItemCount(), 2);
    EXPECT_EQ(Row(d, 0), QStringList({ "0", "HE stain", "40", "30", "20" }));
    EXPECT_EQ(Row(d, 1), QStringList({ "1", "Blue", "0", "0", "63" }));
    EXPECT_EQ(Key(QStringLiteral("Total")), QStringLiteral("2"));
    EXPECT_EQ(Key(QStringLiteral("RGBGAINNAME1")), QStringLiteral("Blue"));
    EXPECT_EQ(Key(QStringLiteral("BGAIN1")), QStringLiteral("63"));
    EXPECT_EQ(Key(QStringLiteral("RGBGAINNAME2")), QStringLiteral("Blue")) << "stale keys stay";
    EXPECT_EQ(Key(QStringLiteral("RGAIN2")), QStringLiteral("0"));

    // Applying the selection moves the sliders, their texts and the gains.
    d.List()->clearSelection();
    d.List()->topLevelItem(0)->setSelected(true);
    d.OnApply();
    EXPECT_EQ(d.Slider(0)->value(), 40);
    EXPECT_EQ(d.ValueText(1)->text(), QStringLiteral("30"));
    EXPECT_EQ(document->m_switches.blue, 20);
}

// A preset file written by hand: missing keys take their defaults, a value
// that is no number becomes 0, one beyond the range stops at 63.
TEST_F(RgbPresets, ReadsDefaultsAndOddValuesFromTheFile)
{
    ASSERT_TRUE(WriteAll(settings,
        "[RGBGAIN]\nTotal=3\nRGBGAINNAME0=Warm\nRGAIN0=50\nGGAIN0=x7\nBGAIN0=12abc\n"
        "RGAIN1=99\n"));
    document->m_switches.rgb = true;
    CRgbDlg d(document.get());
    ASSERT_EQ(d.List()->topLevelItemCount(), 3);
    EXPECT_EQ(Row(d, 0), QStringList({ "0", "Warm", "50", "x7", "12abc" }));
    EXPECT_EQ(Row(d, 1), QStringList({ "1", "RgbGainName", "99", "32", "32" }));
    EXPECT_EQ(Row(d, 2), QStringList({ "2", "RgbGainName", "32", "32", "32" }));
    d.List()->topLevelItem(0)->setSelected(true);
    d.OnApply();
    EXPECT_EQ(document->m_switches.red, 50);
    EXPECT_EQ(document->m_switches.green, 0);
    EXPECT_EQ(document->m_switches.blue, 12);
    d.List()->clearSelection();
    d.List()->topLevelItem(1)->setSelected(true);
    d.OnApply();
    EXPECT_EQ(document->m_switches.red, 63);
}

// Switched off, the sliders, presets and list are disabled but the values
// stay and go out again with the next change; Advanced grows the dialog by
// 40 pixels and back; closing hands the gains over and saves the list.
TEST_F(RgbPresets, SwitchedOffKeepsValuesAdvancedGrowsAndCloseSaves)
{
    document->m_switches = { .rgb = true, .red = 11, .green = 22, .blue = 33 };
    {
        CRgbDlg d(document.get());
        EXPECT_TRUE(d.EnableBox()->isChecked());
        EXPECT_EQ(d.ValueText(2)->text(), QStringLiteral("33"));
        d.EnableBox()->setChecked(false);
        EXPECT_FALSE(document->m_switches.rgb);
        for (QWidget* w : std::initializer_list<QWidget*> { d.Slider(0), d.Slider(2), d.ValueText(1), d.List(),
                 d.AddButton() })
            EXPECT_FALSE(w->isEnabled());
        EXPECT_EQ(document->m_switches.red, 11);
        d.EnableBox()->setChecked(true);
        EXPECT_TRUE(d.Slider(1)->isEnabled());
        EXPECT_EQ(document->m_switches.green, 22);

        const int small = d.height();
        EXPECT_EQ(d.AdvancedButton()->text(), QStringLiteral("Advanced ->"));
        d.OnAdvanced();
        EXPECT_EQ(d.height(), small + 40);
        EXPECT_EQ(d.AdvancedButton()->text(), QStringLiteral("Advanced <-"));
        d.OnAdvanced();
        EXPECT_EQ(d.height(), small);

        AddPreset(d, QStringLiteral("Kept"), 5, 6, 7);
        d.reject();
    }
    EXPECT_EQ(Key(QStringLiteral("Total")), QStringLiteral("1"));
    EXPECT_EQ(Key(QStringLiteral("GGAIN0")), QStringLiteral("6"));
    EXPECT_EQ(document->m_switches.blue, 7);
    EXPECT_TRUE(messages.Texts().isEmpty()) << Shown(messages);
}

// The gains reach the processing element of a running graph and come back
// through the document's read-back after the graph is rebuilt.
TEST_F(RgbPresets, GainsGoThroughTheProcessingAndSurviveARebuild)
{
    SimCameraScope cameras;
    AddCapsCamera(QStringLiteral("Rgb Camera"), kSmallCameraCaps);
    ASSERT_TRUE(StartPreview(graph, QStringLiteral("Rgb Camera")));
    {
        CRgbDlg d(document.get());
        d.EnableBox()->setChecked(true);
        d.Slider(0)->setValue(50);
        d.Slider(2)->setValue(3);
        int on = 0, r = 0, g = 0, b = 0;
        ASSERT_EQ(graph.GetRgbGain(&on, &r, &g, &b), S_OK);
        EXPECT_EQ(std::vector<int>({ on, r, b }), std::vector<int>({ 1, 50, 3 }));
        d.accept();
    }
    graph.StopGraph();
    graph.DestroyGraph();
    graph.BuildPreviewGraph();
    ASSERT_EQ(graph.RunGraph(), S_OK);
    document->m_switches = {};
    document->ReadBackState();
    EXPECT_TRUE(document->m_switches.rgb);
    EXPECT_EQ(document->m_switches.red, 50);
    EXPECT_EQ(document->m_switches.blue, 3);
    graph.StopGraph();
}
