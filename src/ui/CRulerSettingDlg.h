#pragma once

#include "calibration/SvrFile.h"

#include <QDialog>
#include <QPoint>
#include <QString>

#include <functional>
#include <memory>

class CGraticuleDlg;
struct GraticuleFit;
class IMeasureDocument;
class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;

// "Ruler Setting": turns the calibration ruler's pixel extents and the real
// lengths the user types into the per-pixel values of the calibration
// record, and keeps calibrations in ruler data files. Modeless and on top;
// one per document, shown and hidden by the calibration command.
//
// The ruler's corner points: A is the end of its vertical arm (lower left),
// B the end of its horizontal arm (upper right); lengths count up and right.
class CRulerSettingDlg : public QDialog
{
    Q_OBJECT

public:
    // Magnification list entries; "40X" is chosen at first.
    static constexpr int kMagnificationCount = 5;
    static constexpr int kInitialMagnification = 2;

    explicit CRulerSettingDlg(IMeasureDocument& owner, QWidget* parent = nullptr);
    ~CRulerSettingDlg() override;

    // The calibration command of a document: the first call creates the
    // dialog hidden and hides the ruler; every later call shows the ruler and
    // the dialog, or hides both, in turn. `shown` is the document's flag,
    // initially false; the view calls this once when it is first shown.
    static void ToggleCalibration(
        IMeasureDocument& owner, std::unique_ptr<CRulerSettingDlg>& dialog, bool& shown);

    // Reads the ruler, derives the pixel extents and per-pixel texts, shows them.
    void Recompute();
    // The real lengths and unit from the calibration record, then Recompute:
    // after the record changed under the dialog (undo).
    void ReadRecord();
    // Recompute, then the dialog's values become the calibration record, the
    // overlay repaints and the document's history takes the step.
    void Commit();

    // The buttons, after their file dialogs.
    void OnYEqualX();
    // Writes the values to SvrFile::SaveName(chosen); false after telling the user why not.
    bool SaveTo(const QString& chosen);
    // Loads a ruler data file, moves the ruler and commits; nothing changes
    // when the file cannot be read.
    bool LoadFrom(const QString& path);
    // The factory calibration of the magnification list's entry, scaled to
    // the document's frame size, then commits (also when the file is missing).
    void LoadDefault();
    // "Detect from micrometer": finds the micrometer in the document's
    // picture or live frame and, when the user accepts what it shows,
    // calibrates from it. True when a calibration was accepted.
    bool DetectFromMicrometer();
    // Calibrates from a found micrometer (perPixel in micrometres per picture
    // pixel): the ruler keeps its arms, their real lengths become the pixel
    // size times their lengths in the selected unit, or in um when that unit
    // would keep fewer than four digits of it; then commits.
    void ApplyGraticule(const GraticuleFit& fit);
    // Runs the detection dialog; replaceable as a whole (tests). Returns
    // whether the user accepted.
    using GraticuleDialogRunner = std::function<bool(CGraticuleDlg&)>;
    static GraticuleDialogRunner SetGraticuleDialogRunner(GraticuleDialogRunner runner);

    int UnitSelection() const;
    void SetUnitSelection(int unit);
    int MagnificationSelection() const;
    void SetMagnificationSelection(int magnification);
    // What the unit labels say ("mm/pixel", "mm").
    QString PerPixelUnitLabel() const;
    QString UnitLabel() const;

    // The file dialogs, replaceable as a whole (tests). A handler gets the
    // request and returns the chosen path, or empty for Cancel.
    struct FileRequest
    {
        bool save = false;
        QString caption;
        QString initialPath; // folder + "*.svr"
        QString filter; // "Ruler Data Files(*.svr)"
        QString defaultSuffix; // "svr"
    };
    using FileDialogHandler = std::function<QString(const FileRequest&)>;
    // Returns the previous handler; an empty one restores the real dialogs.
    static FileDialogHandler SetFileDialogHandler(FileDialogHandler handler);
    static const QString kFileFilter;

    // The dialog's values; the controls show them.
    SvrData m_data;

public slots:
    // OK and Cancel both commit: the ruler on the picture already shows the
    // new state, so Cancel has nothing to go back to.
    void accept() override;
    void reject() override;

protected:
    bool event(QEvent* event) override;

private:
    void BuildControls();
    void PlaceOnScreen();
    // The controls into the values (true) or the values into the controls.
    void UpdateData(bool save);
    void UpdateUnitLabels();
    void OnRealEdited(bool x);
    void OnSaveTo();
    void OnLoadFrom();
    void ApplyFile(const SvrData& data);
    // Overlay pixels per picture pixel at the document's zoom.
    double OverlayScale() const;
    // Puts the ruler's vertical arm end at A and its horizontal arm end at B.
    void MoveRuler(const QPoint& a, const QPoint& b);
    QString ChooseFile(bool save, const QString& folder);
    void ShowRuler();

    IMeasureDocument& m_owner;
    QLineEdit* m_edXPerPixel = nullptr;
    QLineEdit* m_edYPerPixel = nullptr;
    QLineEdit* m_edXReal = nullptr;
    QLineEdit* m_edYReal = nullptr;
    QLineEdit* m_edXStart = nullptr;
    QLineEdit* m_edXEnd = nullptr;
    QLineEdit* m_edXLenth = nullptr;
    QLineEdit* m_edYStart = nullptr;
    QLineEdit* m_edYEnd = nullptr;
    QLineEdit* m_edYLenth = nullptr;
    QLabel* m_lbXPerPixelUnit = nullptr;
    QLabel* m_lbYPerPixelUnit = nullptr;
    QLabel* m_lbXUnit = nullptr;
    QLabel* m_lbYUnit = nullptr;
    QComboBox* m_cbUnit = nullptr;
    QComboBox* m_cbMagnification = nullptr;
};
