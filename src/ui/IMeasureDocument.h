#pragma once

#include "image/FCObjImage.h"

#include <QImage>
#include <QSize>

class CGVLElemMgr;
class CRulerSettingDlg;
class CShapeHistory;

// What the overlay window and the calibration dialog need from the document
// they belong to. The measuring document implements it; tests stand in for it.
// Called on the user-interface thread only.
class IMeasureDocument
{
public:
    // The document's shapes; lives as long as the document.
    virtual CGVLElemMgr& GetElemMgr() = 0;
    // The tool code of the active drawing command, passed with every mouse event.
    virtual int GetCurrentTool() const = 0;
    // The document shows the camera's moving picture.
    virtual bool IsLive() const = 0;
    // 2 (what every document holds) paints the picture; 1 paints it only
    // while the document is not live; anything else paints gray.
    virtual int GetDisplayMode() const = 0;
    // The still picture, or the frozen frame of a paused live document; null
    // or an empty picture when there is none.
    virtual const FCObjImage* GetPicture() const = 0;
    // Index into the zoom table, 0 (250 %) to 9 (25 %).
    virtual int GetZoomIndex() const = 0;
    // Size in pixels of the camera frame (live) or of the picture.
    virtual QSize GetImageSize() const = 0;
    // The document's calibration dialog, or null before it exists.
    virtual CRulerSettingDlg* GetCalibrationDialog() = 0;
    // The document's undo history, committed to after each finished edit;
    // null for a document without one.
    virtual CShapeHistory* GetHistory() { return nullptr; }
    // A double click on the live video; the capture graph decides what it does.
    virtual void OnVideoDoubleClick() { }
    // The picture to measure on as the user sees it: the still picture, or
    // the live frame; null when there is none yet.
    virtual QImage GetMeasuringPicture()
    {
        const FCObjImage* picture = GetPicture();
        return picture && picture->IsValidImage() ? picture->ToQImage() : QImage();
    }

protected:
    ~IMeasureDocument() = default;
};
