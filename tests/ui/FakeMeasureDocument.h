#pragma once

#include "image/FCObjImage.h"
#include "measure/CGVLElemMgr.h"
#include "measure/CGVLRuler.h"
#include "measure/CShapeHistory.h"
#include "ui/CGVLWnd.h"
#include "ui/CRulerSettingDlg.h"
#include "ui/IMeasureDocument.h"

#include <QColor>
#include <QWidget>

#include <memory>

// Stands in for the measuring document: its state is plain fields a test sets.
class FakeMeasureDocument : public IMeasureDocument
{
public:
    CGVLElemMgr& GetElemMgr() override { return mgr; }
    int GetCurrentTool() const override { return tool; }
    bool IsLive() const override { return live; }
    int GetDisplayMode() const override { return displayMode; }
    const FCObjImage* GetPicture() const override { return hasPicture ? &picture : nullptr; }
    int GetZoomIndex() const override { return zoom; }
    QSize GetImageSize() const override { return imageSize; }
    CRulerSettingDlg* GetCalibrationDialog() override { return dialog.get(); }
    void OnVideoDoubleClick() override { ++videoDoubleClicks; }
    CShapeHistory* GetHistory() override { return &history; }

    // A 24-bit picture of one colour.
    void SetPicture(int width, int height, const QColor& color)
    {
        picture.Create(width, height, 24);
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                picture.SetPixelColor(x, y, color.rgb());
        hasPicture = true;
        imageSize = QSize(width, height);
    }

    CGVLRuler* Ruler() { return dynamic_cast<CGVLRuler*>(mgr.m_arShape.at(0).get()); }

    CGVLElemMgr mgr;
    CShapeHistory history { mgr };
    int tool = 0;
    bool live = false;
    int displayMode = 2;
    bool hasPicture = false;
    FCObjImage picture;
    int zoom = 4;
    QSize imageSize { 1280, 1024 };
    int videoDoubleClicks = 0;
    std::unique_ptr<CRulerSettingDlg> dialog;
    bool calibrationShown = false;
};

// The view's part: a parent widget with the overlay window over it, attached
// to the manager, and the ruler as element 0.
struct FakeView
{
    explicit FakeView(FakeMeasureDocument& doc, QSize size = QSize(640, 480))
        : wnd(new CGVLWnd(doc, &view))
    {
        view.resize(size);
        wnd->setGeometry(QRect(QPoint(0, 0), size));
        wnd->AttachToManager();
        doc.mgr.CreateShape(ShapeType::Ruler);
        // As the document does once its view stands: undo stops at the ruler.
        doc.history.Reset();
    }
    QWidget view;
    CGVLWnd* wnd;
};
