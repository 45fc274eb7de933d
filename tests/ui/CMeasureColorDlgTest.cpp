#include "ui/CMeasureColorDlg.h"

#include "WidgetLayout.h"
#include "measure/CGVLElemMgr.h"
#include "measure/MeasureTestSupport.h"
#include "ui/CColorSelectComboBox.h"
#include "ui/FakeMeasureDocument.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QPushButton>
#include <QScopeGuard>
#include <QTest>
#include <QTimer>

#include <functional>
#include <gtest/gtest.h>

namespace {

QComboBox* List(QWidget& dialog, const char* name)
{
    return dialog.findChild<QComboBox*>(QString::fromLatin1(name));
}

// Runs `act` on the modal dialog as soon as it shows, then clicks `button`.
void OnModal(const char* button, std::function<void(QWidget&)> act)
{
    QTimer::singleShot(0, [button, act = std::move(act)] {
        QWidget* modal = QApplication::activeModalWidget();
        ASSERT_NE(modal, nullptr);
        // Whatever fails in `act`, the dialog must not stay open.
        const auto close = qScopeGuard([&] {
            if (auto* pressed = modal->findChild<QPushButton*>(QString::fromLatin1(button)))
                QTest::mouseClick(pressed, Qt::LeftButton);
            if (modal->isVisible())
                modal->close();
        });
        act(*modal);
    });
}

// The palette as the user meets it, in order: the colour's name and swatch.
const std::pair<const char*, QColor> kPaletteSeen[]
    = { { "Black", Qt::black }, { "White", Qt::white }, { "Red", Qt::red }, { "Green", Qt::green },
          { "Blue", Qt::blue }, { "Cyan", Qt::cyan }, { "Magenta", Qt::magenta }, { "Yellow", Qt::yellow } };

} // namespace

TEST(CColorSelectComboBox, HoldsThePaletteInIndexOrderOnce)
{
    CColorSelectComboBox list;
    list.FillPalette();
    EXPECT_EQ(list.currentIndex(), 0);
    // What the user sees and hears, in order: the closed list's swatch of the
    // selected colour and its name.
    const auto& palette = kPaletteSeen;
    ASSERT_EQ(list.count(), int(std::size(palette)));
    list.resize(120, 24);
    for (int i = 0; i < list.count(); ++i) {
        list.setCurrentIndex(i);
        const QImage swatch = list.grab().toImage();
        EXPECT_EQ(QColor(swatch.pixel(swatch.width() / 3, swatch.height() / 2)), palette[i].second) << i;
        EXPECT_EQ(list.itemData(i, Qt::ToolTipRole).toString(), palette[i].first);
    }
    list.setCurrentIndex(0);
    list.FillPalette();
    EXPECT_EQ(list.count(), int(std::size(palette))) << "colours already there are not added again";
    EXPECT_EQ(list.AddColor(0x0000FF), 2);
    EXPECT_EQ(list.AddColor(0x808080), 8);
    EXPECT_EQ(list.FindColor(0x00FFFF), 7);
    EXPECT_EQ(list.FindColor(0x123456), -1);
    EXPECT_EQ(list.GetColor(9), 0u);
}

TEST(CMeasureColorDlg, ShowsTheManagersValuesAndWritesThemBackOnOkOnly)
{
    CGVLElemMgr mgr;
    OnModal("cancel", [](QWidget& dialog) {
        List(dialog, "precision")->setCurrentIndex(4);
        List(dialog, "text")->setCurrentIndex(2);
    });
    EXPECT_FALSE(CMeasureColorDlg::Edit(mgr));
    EXPECT_EQ(mgr.m_color, (ColorRecord { 4, 3, 3, 4 })) << "Cancel changes nothing";
    EXPECT_EQ(mgr.GetAppearance().precision, 2);

    MeasureTest::WindowSpy window;
    mgr.SetAppearance({ .color = { 5, 2, 6, 7 }, .precision = 3, .fontSize = 2, .fontBackground = 1 });
    mgr.SetWindow(&window, nullptr);
    OnModal("ok", [](QWidget& dialog) {
        EXPECT_EQ(dialog.windowTitle(), "Measure Setting");
        EXPECT_EQ(List(dialog, "text")->currentIndex(), 7);
        EXPECT_EQ(List(dialog, "measurement")->currentIndex(), 2);
        EXPECT_EQ(List(dialog, "point")->currentIndex(), 6);
        EXPECT_EQ(List(dialog, "coordinate")->currentIndex(), 5);
        EXPECT_FALSE(List(dialog, "coordinate")->isVisibleTo(&dialog));
        EXPECT_TRUE(List(dialog, "text")->isVisibleTo(&dialog));
        EXPECT_EQ(List(dialog, "precision")->currentText(), "3");
        EXPECT_EQ(List(dialog, "fontSize")->currentText(), "Medium");
        EXPECT_EQ(List(dialog, "fontBackground")->currentText(), "Transparent");
        List(dialog, "text")->setCurrentIndex(0);
        List(dialog, "measurement")->setCurrentIndex(1);
        List(dialog, "point")->setCurrentIndex(4);
        List(dialog, "precision")->setCurrentIndex(4);
        List(dialog, "fontSize")->setCurrentIndex(2);
        List(dialog, "fontBackground")->setCurrentIndex(1);
    });
    EXPECT_TRUE(CMeasureColorDlg::Edit(mgr));
    EXPECT_EQ(mgr.m_color, (ColorRecord { 5, 1, 4, 0 }));
    EXPECT_EQ(mgr.GetAppearance().precision, 5);
    EXPECT_EQ(mgr.GetAppearance().fontSize, 3);
    EXPECT_EQ(mgr.GetAppearance().fontBackground, 2);
    EXPECT_EQ(window.wholeRequests, 1) << "the overlay repaints";
}

TEST(CMeasureColorDlg, ValuesOutsideTheListsSurviveOk)
{
    // A hand-edited settings file: precision 0 and font size 7, colour 9.
    CMeasureColorDlg dialog;
    dialog.m_nPrecision = 0;
    dialog.m_nFontSize = 7;
    dialog.m_nTextColor = 9;
    dialog.m_nFontBackground = 2;
    dialog.UpdateControls();
    EXPECT_EQ(List(dialog, "precision")->currentIndex(), -1);
    EXPECT_EQ(List(dialog, "fontBackground")->currentText(), "Gray");
    dialog.accept();
    EXPECT_EQ(dialog.m_nPrecision, 0);
    EXPECT_EQ(dialog.m_nFontSize, 7);
    EXPECT_EQ(dialog.m_nTextColor, 9);
    EXPECT_EQ(dialog.m_nFontBackground, 2);
}

// Both dialogs as a user sees them, saved for a look when
// OCULIX_SCREENSHOT_DIR names a folder (run under xvfb-run).
TEST(CMeasureColorDlg, DialogsScreenshot)
{
    FakeMeasureDocument doc;
    FakeView view(doc);
    CRulerSettingDlg ruler(doc);
    CMeasureColorDlg colors;
    colors.ReadFrom(doc.mgr);
    colors.UpdateControls();
    QComboBox* text = List(colors, "text");
    std::vector<std::pair<QWidget*, const char*>> shots { { &ruler, "ruler-setting.png" },
        { &colors, "measure-setting.png" }, { text->view()->window(), "measure-setting-colours.png" } };
    ruler.show();
    colors.show();
    text->showPopup();
    for (const auto& [widget, name] : shots) {
        ASSERT_TRUE(QTest::qWaitForWindowExposed(widget)) << name;
        const QImage shot = widget->grab().toImage();
        if (widget != text->view()->window()) {
            EXPECT_EQ(LayoutFault(*widget, shot), "") << name;
        } else {
            // The open list: every colour's swatch, in order.
            for (int i = 0; i < text->count(); ++i) {
                const QRect item = text->view()->visualRect(text->model()->index(i, 0));
                const QPoint centre = text->view()->viewport()->mapTo(widget, item.center());
                EXPECT_EQ(QColor(shot.pixel(centre)), kPaletteSeen[i].second) << i;
            }
        }
        if (!qEnvironmentVariableIsEmpty("OCULIX_SCREENSHOT_DIR"))
            shot.save(
                QDir(qEnvironmentVariable("OCULIX_SCREENSHOT_DIR")).filePath(QString::fromLatin1(name)));
    }
    text->hidePopup();
}
