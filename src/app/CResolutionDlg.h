#pragma once

#include <QDialog>

class QRadioButton;

// "Set the resolution of image saving": 1, 2 or 3 for the choices
// "1280*1024", "1600*1200" and "2048*1536" of the live document's saves.
class CResolutionDlg : public QDialog
{
    Q_OBJECT

public:
    explicit CResolutionDlg(int resolution, QWidget* parent = nullptr);

    int Resolution() const;

private:
    QRadioButton* m_choices[3];
};
