#pragma once

#include <QDialog>

class CFolderEdit;
class CSaveOverlayGroup;
class QLineEdit;
class QRadioButton;
class QSpinBox;

// "Save &Option": the quick save's options, loaded from and written to the
// "Save" section. OK with an empty folder asks for one and stays open.
class CSaveOptionDlg : public QDialog
{
    Q_OBJECT

public:
    explicit CSaveOptionDlg(const QString& settingsFile, QWidget* parent = nullptr);

    void accept() override;

private:
    QString m_settingsFile;
    CSaveOverlayGroup* m_overlay;
    QLineEdit* m_title;
    QLineEdit* m_author;
    QLineEdit* m_prefix;
    QSpinBox* m_suffix;
    QRadioButton* m_bmp;
    QRadioButton* m_jpg;
    CFolderEdit* m_folder;
};
