#pragma once

#include "capture/CaptureFormat.h"

#include <QDialog>

#include <vector>

class QListWidget;

// "Video &Resolution": the camera's formats, one line each (size, FourCC,
// frame rate), the current one selected.
class CFormatDlg : public QDialog
{
    Q_OBJECT
public:
    CFormatDlg(
        const std::vector<CaptureFormat>& formats, const CaptureFormat& current, QWidget* parent = nullptr);

    // Index into the formats of the line chosen, -1 for none.
    int SelectedIndex() const;
    void SetSelectedIndex(int index);

    static QString Describe(const CaptureFormat& format);

private:
    QListWidget* m_list;
};
