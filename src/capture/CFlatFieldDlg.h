#pragma once

#include <QDialog>

class ILiveDocument;
class QCheckBox;
class QLabel;
class QPushButton;
class QTimer;

// "Flat-Field...": takes a blank field from the live camera (several frames
// averaged), keeps it for the camera and frame size (CFlatFieldStore) and
// switches the correction on and off. Non-modal use is not needed: the
// dialog waits for the frames itself, the picture keeps moving meanwhile.
class CFlatFieldDlg : public QDialog
{
    Q_OBJECT

public:
    // How many frames a blank field averages.
    static constexpr unsigned kBlankFrames = 8;

    explicit CFlatFieldDlg(ILiveDocument* document, QWidget* parent = nullptr);

    QPushButton* TakeButton() const { return m_take; }
    QCheckBox* EnableBox() const { return m_enable; }
    QString StatusText() const;

private:
    void OnTake();
    void OnPoll();
    void OnEnable(bool on);
    void UpdateStatus();

    ILiveDocument* m_document;
    QLabel* m_status;
    QPushButton* m_take;
    QCheckBox* m_enable;
    QTimer* m_poll;
    int m_polls = 0;
};
