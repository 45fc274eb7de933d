#pragma once

#include "app/SaveSettings.h"

#include <QDialog>

#include <array>
#include <functional>

class CFolderEdit;
class CSaveOverlayGroup;
class QLineEdit;
class QRadioButton;

// "Save &As...": folder, file name, image type, burn-in choices and summary
// texts, loaded from the "SaveAs" section. OK writes the section back, asks
// before replacing an existing file, runs the save and closes.
class CSaveAsDlg : public QDialog
{
    Q_OBJECT

public:
    // The image types in the order of their controls 1075, 1076, 1085, 1086,
    // 1087 and 1088.
    static constexpr std::array<const char*, 6> kExtensions { ".bmp", ".jpg", ".png", ".pcx", ".tif",
        ".tga" };
    static constexpr std::array<int, 6> kControlIds { 1075, 1076, 1085, 1086, 1087, 1088 };

    using SaveFunction = std::function<void(const QString& path, const SaveOverlay&, const SaveTexts&)>;

    CSaveAsDlg(
        const QString& settingsFile, const QString& fileName, SaveFunction save, QWidget* parent = nullptr);

    // Replaces the burn-in choices read from the settings (the drop-down
    // variants of the save-as button).
    void SetOverlay(const SaveOverlay& overlay);

    // The extension of the checked types, looked at from the last to the
    // first, the first checked one winning; none gives ".bmp".
    static QString ExtensionForChecks(const std::array<bool, 6>& checked);

    void accept() override;

private:
    QString m_settingsFile;
    SaveFunction m_save;
    CFolderEdit* m_folder;
    QLineEdit* m_fileName;
    std::array<QRadioButton*, 6> m_types {};
    CSaveOverlayGroup* m_overlay;
    QLineEdit* m_title;
    QLineEdit* m_subject;
    QLineEdit* m_author;
    QLineEdit* m_comment;
};
