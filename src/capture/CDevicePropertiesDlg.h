#pragma once

#include "capture/CCameraControls.h"

#include <QDialog>
#include <QList>

#include <memory>

class QLabel;
class QWidget;

// "Video &Properties": one row per control the camera lists, built from what
// it reports; every change goes to the camera at once. "Default" puts every
// control back to the camera's default. With a camera key every value set is
// also kept for that camera (CCameraControlStore).
class CDevicePropertiesDlg : public QDialog
{
    Q_OBJECT
public:
    CDevicePropertiesDlg(
        GstElement* source, GstDevice* device, const QString& cameraKey = {}, QWidget* parent = nullptr);
    ~CDevicePropertiesDlg() override;

    // The controls as shown (tests).
    const QList<CameraControl>& Controls() const { return m_shown; }
    // Applies a value as the row's widget would.
    void Apply(int row, int value);
    void RestoreDefaults();

private:
    QWidget* MakeEditor(int row);
    void Refresh();

    std::unique_ptr<CCameraControls> m_controls;
    QList<CameraControl> m_shown;
    QList<QWidget*> m_editors;
    QLabel* m_status = nullptr;
    QString m_cameraKey;
};
