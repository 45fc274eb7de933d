#include "ui/CRulerSettingDlg.h"

#include "calibration/GraticuleDetector.h"
#include "calibration/MeasureTables.h"
#include "measure/CGVLElemMgr.h"
#include "measure/CGVLRuler.h"
#include "measure/CShapeHistory.h"
#include "platform/AppPaths.h"
#include "platform/MessageBox.h"
#include "platform/NumberText.h"
#include "ui/CGVLWnd.h"
#include "ui/CGraticuleDlg.h"
#include "ui/IMeasureDocument.h"

#include <QComboBox>
#include <QCoreApplication>
#include <QFileDialog>
#include <QGridLayout>
#include <QGroupBox>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>
#include <utility>

const QString CRulerSettingDlg::kFileFilter = QStringLiteral("Ruler Data Files(*.svr)");

namespace {

CRulerSettingDlg::FileDialogHandler& FileDialogHook()
{
    static CRulerSettingDlg::FileDialogHandler handler;
    return handler;
}

CRulerSettingDlg::GraticuleDialogRunner& GraticuleHook()
{
    static CRulerSettingDlg::GraticuleDialogRunner runner;
    return runner;
}

// A file's coordinates may be anything; the ruler stays where its arithmetic
// cannot overflow.
constexpr int kCoordLimit = 1'000'000;

int ClampCoord(int v)
{
    return std::clamp(v, -kCoordLimit, kCoordLimit);
}

// Truncation toward zero that stays inside int.
int TruncToInt(double v)
{
    if (std::isnan(v))
        return 0;
    return int(std::clamp(std::trunc(v), double(INT_MIN), double(INT_MAX)));
}

QString PerPixelText(double real, int pixels)
{
    // Not trapped: an arm of no length shows a non-finite value.
    return NumberText::FormatC("%.4f", real / pixels);
}

void SetTextKeepingCursor(QLineEdit* edit, const QString& text)
{
    if (edit->text() != text)
        edit->setText(text);
}

QLineEdit* ReadOnlyEdit(const char* name)
{
    auto* edit = new QLineEdit;
    edit->setObjectName(QString::fromLatin1(name));
    edit->setReadOnly(true);
    return edit;
}

QString FactoryFolder()
{
    const QString folder = CurrentAppPaths().m_factoryCalibrationFolder;
    return folder.isEmpty() ? QCoreApplication::applicationDirPath() + QStringLiteral("/svrdata/") : folder;
}

} // namespace

CRulerSettingDlg::CRulerSettingDlg(IMeasureDocument& owner, QWidget* parent)
    : QDialog(parent, Qt::Dialog | Qt::WindowStaysOnTopHint)
    , m_owner(owner)
{
    setWindowTitle(QCoreApplication::translate("CRulerSettingDlg", "Ruler Setting"));
    setModal(false);
    BuildControls();

    for (int unit = 0; unit < MeasureTables::kUnitCount; ++unit)
        m_cbUnit->addItem(QString::fromLatin1(MeasureTables::kUnitTexts[std::size_t(unit)]));
    for (const char* m : { "10X", "20X", "40X", "60X", "100X" })
        m_cbMagnification->addItem(QString::fromLatin1(m));
    m_cbMagnification->setCurrentIndex(kInitialMagnification);

    ReadRecord();
    PlaceOnScreen();
}

void CRulerSettingDlg::ReadRecord()
{
    // Safeguard: the real lengths and their unit start as the record has
    // them, so that OK before any typing keeps the calibration as it is.
    const CalibrationRecord unit = m_owner.GetElemMgr().GetUnit();
    m_data.m_strXReal = NumberText::FormatC("%g", unit.m_dcxReal);
    m_data.m_strYReal = NumberText::FormatC("%g", unit.m_dcyReal);
    m_data.m_nUnit = MeasureTables::ClampUnit(unit.m_rtUnit);
    m_cbUnit->setCurrentIndex(m_data.m_nUnit);
    UpdateUnitLabels();
    Recompute();
}

CRulerSettingDlg::~CRulerSettingDlg() = default;

void CRulerSettingDlg::BuildControls()
{
    m_edXPerPixel = ReadOnlyEdit("xPerPixel");
    m_edYPerPixel = ReadOnlyEdit("yPerPixel");
    m_edXStart = ReadOnlyEdit("xStart");
    m_edXEnd = ReadOnlyEdit("xEnd");
    m_edXLenth = ReadOnlyEdit("xLenth");
    m_edYStart = ReadOnlyEdit("yStart");
    m_edYEnd = ReadOnlyEdit("yEnd");
    m_edYLenth = ReadOnlyEdit("yLenth");
    m_edXReal = new QLineEdit;
    m_edXReal->setObjectName(QStringLiteral("xReal"));
    m_edXReal->setMaxLength(255);
    m_edYReal = new QLineEdit;
    m_edYReal->setObjectName(QStringLiteral("yReal"));
    m_edYReal->setMaxLength(255);
    m_lbXPerPixelUnit = new QLabel;
    m_lbYPerPixelUnit = new QLabel;
    m_lbXUnit = new QLabel;
    m_lbYUnit = new QLabel;
    m_cbUnit = new QComboBox;
    m_cbUnit->setObjectName(QStringLiteral("unit"));
    m_cbMagnification = new QComboBox;
    m_cbMagnification->setObjectName(QStringLiteral("magnification"));

    auto button = [](const char* text, const char* name) {
        auto* b = new QPushButton(QString::fromLatin1(text));
        b->setObjectName(QString::fromLatin1(name));
        b->setAutoDefault(false);
        return b;
    };
    QPushButton* ok = button("OK", "ok");
    ok->setDefault(true);
    QPushButton* cancel = button("Cancel", "cancel");
    QPushButton* saveTo = button("SaveTo", "saveTo");
    QPushButton* loadFrom = button("LoadFrom", "loadFrom");
    QPushButton* yEqualX = button("Y = X", "yEqualX");
    QPushButton* byDefault = button("Default", "default");
    QPushButton* detect = new QPushButton(tr("Detect from micrometer"));
    detect->setObjectName(QStringLiteral("detectMicrometer"));
    detect->setAutoDefault(false);

    auto* results = new QGroupBox(QCoreApplication::translate("CRulerSettingDlg", "Real Results"));
    auto* resultsGrid = new QGridLayout(results);
    resultsGrid->addWidget(new QLabel(QCoreApplication::translate("CRulerSettingDlg", "X-Ruler")), 0, 0);
    resultsGrid->addWidget(m_edXPerPixel, 0, 1);
    resultsGrid->addWidget(m_lbXPerPixelUnit, 0, 2);
    resultsGrid->addWidget(new QLabel(QCoreApplication::translate("CRulerSettingDlg", "Y-Ruler")), 1, 0);
    resultsGrid->addWidget(m_edYPerPixel, 1, 1);
    resultsGrid->addWidget(m_lbYPerPixelUnit, 1, 2);

    auto* physical = new QGroupBox(QCoreApplication::translate("CRulerSettingDlg", "Physical Ruler"));
    auto* physicalGrid = new QGridLayout(physical);
    physicalGrid->addWidget(
        new QLabel(QCoreApplication::translate("CRulerSettingDlg", "X-Ruler Unit")), 0, 0);
    physicalGrid->addWidget(m_edXReal, 0, 1);
    physicalGrid->addWidget(m_lbXUnit, 0, 2);
    physicalGrid->addWidget(
        new QLabel(QCoreApplication::translate("CRulerSettingDlg", "Y-Ruler Unit")), 1, 0);
    physicalGrid->addWidget(m_edYReal, 1, 1);
    physicalGrid->addWidget(m_lbYUnit, 1, 2);
    physicalGrid->addWidget(new QLabel(QCoreApplication::translate("CRulerSettingDlg", "Ruler Unit")), 2, 0);
    physicalGrid->addWidget(m_cbUnit, 2, 1);
    physicalGrid->addWidget(yEqualX, 2, 2);
    physicalGrid->addWidget(detect, 3, 0, 1, 3);

    auto* image = new QGroupBox(QCoreApplication::translate("CRulerSettingDlg", "Image Ruler(pixel)"));
    auto* imageGrid = new QGridLayout(image);
    const std::array<std::pair<const char*, QLineEdit*>, 6> extents = { {
        { "X-Start", m_edXStart },
        { "X-End", m_edXEnd },
        { "X-Lenth", m_edXLenth },
        { "Y-Start", m_edYStart },
        { "Y-End", m_edYEnd },
        { "Y-Lenth", m_edYLenth },
    } };
    for (int i = 0; i < int(extents.size()); ++i) {
        const int row = i / 3;
        const int column = (i % 3) * 2;
        imageGrid->addWidget(new QLabel(QString::fromLatin1(extents[std::size_t(i)].first)), row, column);
        imageGrid->addWidget(extents[std::size_t(i)].second, row, column + 1);
    }

    // Safeguard: the magnification list is shown, since it picks an
    // objective's factory calibration.
    auto* pause = new QGroupBox(QCoreApplication::translate("CRulerSettingDlg", "Pause mode measure"));
    auto* pauseRow = new QHBoxLayout(pause);
    pauseRow->addWidget(new QLabel(QCoreApplication::translate("CRulerSettingDlg", "Magnification")));
    pauseRow->addWidget(m_cbMagnification, 1);
    pauseRow->addWidget(byDefault);

    auto* buttons = new QHBoxLayout;
    buttons->addWidget(saveTo);
    buttons->addWidget(loadFrom);
    buttons->addStretch(1);
    buttons->addWidget(ok);
    buttons->addWidget(cancel);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(results);
    layout->addWidget(physical);
    layout->addWidget(image);
    layout->addWidget(pause);
    layout->addLayout(buttons);

    connect(ok, &QPushButton::clicked, this, &CRulerSettingDlg::accept);
    connect(cancel, &QPushButton::clicked, this, &CRulerSettingDlg::reject);
    connect(saveTo, &QPushButton::clicked, this, &CRulerSettingDlg::OnSaveTo);
    connect(loadFrom, &QPushButton::clicked, this, &CRulerSettingDlg::OnLoadFrom);
    connect(yEqualX, &QPushButton::clicked, this, &CRulerSettingDlg::OnYEqualX);
    connect(byDefault, &QPushButton::clicked, this, &CRulerSettingDlg::LoadDefault);
    connect(detect, &QPushButton::clicked, this, &CRulerSettingDlg::DetectFromMicrometer);
    connect(m_edXReal, &QLineEdit::textEdited, this, [this] { OnRealEdited(true); });
    connect(m_edYReal, &QLineEdit::textEdited, this, [this] { OnRealEdited(false); });
    connect(m_cbUnit, &QComboBox::currentIndexChanged, this, [this](int index) {
        m_data.m_nUnit = MeasureTables::ClampUnit(index);
        UpdateUnitLabels();
    });
}

void CRulerSettingDlg::PlaceOnScreen()
{
    resize(385, 365);
    if (const QScreen* screen = QGuiApplication::primaryScreen()) {
        const QRect area = screen->geometry();
        move(area.x() + area.width() - 440, area.y() + 130);
    }
}

void CRulerSettingDlg::ToggleCalibration(
    IMeasureDocument& owner, std::unique_ptr<CRulerSettingDlg>& dialog, bool& shown)
{
    const bool first = !dialog;
    if (first)
        dialog = std::make_unique<CRulerSettingDlg>(owner);
    owner.GetElemMgr().SetRulerShown(shown);
    if (!first) {
        if (shown) {
            dialog->show();
            dialog->raise();
            dialog->activateWindow();
        } else {
            dialog->hide();
        }
    }
    shown = first ? true : !shown;
}

int CRulerSettingDlg::UnitSelection() const
{
    return m_cbUnit->currentIndex();
}

void CRulerSettingDlg::SetUnitSelection(int unit)
{
    m_cbUnit->setCurrentIndex(MeasureTables::ClampUnit(unit));
}

int CRulerSettingDlg::MagnificationSelection() const
{
    return m_cbMagnification->currentIndex();
}

void CRulerSettingDlg::SetMagnificationSelection(int magnification)
{
    m_cbMagnification->setCurrentIndex(magnification);
}

QString CRulerSettingDlg::PerPixelUnitLabel() const
{
    return m_lbXPerPixelUnit->text();
}

QString CRulerSettingDlg::UnitLabel() const
{
    return m_lbXUnit->text();
}

void CRulerSettingDlg::UpdateUnitLabels()
{
    // Labels only: no stored value is rescaled by a change of unit.
    const int unit = MeasureTables::ClampUnit(m_data.m_nUnit);
    const QString perPixel = QString::fromLatin1(MeasureTables::PerPixelText(unit));
    const QString text = QString::fromLatin1(MeasureTables::UnitText(unit));
    m_lbXPerPixelUnit->setText(perPixel);
    m_lbYPerPixelUnit->setText(perPixel);
    m_lbXUnit->setText(text);
    m_lbYUnit->setText(text);
}

void CRulerSettingDlg::UpdateData(bool save)
{
    if (save) {
        m_data.m_strXReal = m_edXReal->text();
        m_data.m_strYReal = m_edYReal->text();
        m_data.m_nUnit = MeasureTables::ClampUnit(m_cbUnit->currentIndex());
        return;
    }
    SetTextKeepingCursor(m_edXPerPixel, m_data.m_strXPerPixel);
    SetTextKeepingCursor(m_edYPerPixel, m_data.m_strYPerPixel);
    SetTextKeepingCursor(m_edXReal, m_data.m_strXReal);
    SetTextKeepingCursor(m_edYReal, m_data.m_strYReal);
    SetTextKeepingCursor(m_edXStart, QString::number(m_data.m_nXStart));
    SetTextKeepingCursor(m_edXEnd, QString::number(m_data.m_nXEnd));
    SetTextKeepingCursor(m_edXLenth, QString::number(m_data.m_nXLenth));
    SetTextKeepingCursor(m_edYStart, QString::number(m_data.m_nYStart));
    SetTextKeepingCursor(m_edYEnd, QString::number(m_data.m_nYEnd));
    SetTextKeepingCursor(m_edYLenth, QString::number(m_data.m_nYLenth));
    m_cbUnit->setCurrentIndex(MeasureTables::ClampUnit(m_data.m_nUnit));
}

void CRulerSettingDlg::Recompute()
{
    CGVLElemMgr& mgr = m_owner.GetElemMgr();
    {
        const auto lock = mgr.Lock();
        // Element 0 is always the ruler; a manager without one has nothing to read.
        const auto* ruler
            = mgr.m_arShape.empty() ? nullptr : dynamic_cast<const CGVLRuler*>(mgr.m_arShape.front().get());
        if (!ruler)
            return;
        const auto [a, b] = ruler->GetArms();
        m_data.m_nXStart = a.x();
        m_data.m_nXEnd = b.x();
        m_data.m_nXLenth = SvrFile::WrapSub(b.x(), a.x());
        // Upward, against the screen's y: lower left to upper right is positive.
        m_data.m_nYStart = b.y();
        m_data.m_nYEnd = a.y();
        m_data.m_nYLenth = SvrFile::WrapSub(a.y(), b.y());
    }
    m_data.m_strXPerPixel = PerPixelText(NumberText::LeadingReal(m_data.m_strXReal), m_data.m_nXLenth);
    m_data.m_strYPerPixel = PerPixelText(NumberText::LeadingReal(m_data.m_strYReal), m_data.m_nYLenth);
    UpdateData(false);
}

void CRulerSettingDlg::OnRealEdited(bool x)
{
    UpdateData(true);
    // The ruler is not read again: the stored length serves.
    if (x)
        m_data.m_strXPerPixel = PerPixelText(NumberText::LeadingReal(m_data.m_strXReal), m_data.m_nXLenth);
    else
        m_data.m_strYPerPixel = PerPixelText(NumberText::LeadingReal(m_data.m_strYReal), m_data.m_nYLenth);
    UpdateData(false);
}

void CRulerSettingDlg::Commit()
{
    Recompute();
    CalibrationRecord unit;
    unit.m_rtUnit = MeasureTables::ClampUnit(m_cbUnit->currentIndex());
    unit.m_dcxPerPixel = NumberText::LeadingReal(m_data.m_strXPerPixel);
    unit.m_dcyPerPixel = NumberText::LeadingReal(m_data.m_strYPerPixel);
    unit.m_dcxReal = NumberText::LeadingReal(m_data.m_strXReal);
    unit.m_dcyReal = NumberText::LeadingReal(m_data.m_strYReal);
    m_owner.GetElemMgr().SetUnit(unit);
    if (CShapeHistory* history = m_owner.GetHistory())
        history->Commit();
}

CRulerSettingDlg::GraticuleDialogRunner CRulerSettingDlg::SetGraticuleDialogRunner(
    GraticuleDialogRunner runner)
{
    return std::exchange(GraticuleHook(), std::move(runner));
}

double CRulerSettingDlg::OverlayScale() const
{
    const QSize picture = m_owner.GetImageSize();
    const QSize shown = CGVLWnd::DisplayedSize(picture, m_owner.GetZoomIndex());
    return picture.width() > 0 && shown.width() > 0 ? double(shown.width()) / picture.width() : 1.0;
}

bool CRulerSettingDlg::DetectFromMicrometer()
{
    const QImage picture = m_owner.GetMeasuringPicture();
    if (picture.isNull()) {
        MessageBox(tr("There is no picture to look for a micrometer in."), tr("Detect from micrometer"),
            MB_OK | MB_ICONWARNING);
        return false;
    }
    // The ruler's box, in picture pixels, is offered as the region to search.
    Recompute();
    const double scale = OverlayScale();
    const QRect box
        = QRect(QPoint(m_data.m_nXStart, m_data.m_nYStart), QPoint(m_data.m_nXEnd, m_data.m_nYEnd))
              .normalized();
    const QRect rulerBox(QPoint(int(box.left() / scale), int(box.top() / scale)),
        QPoint(int(box.right() / scale), int(box.bottom() / scale)));
    CGraticuleDlg dialog(picture, rulerBox, this);
    const GraticuleDialogRunner& hook = GraticuleHook();
    const bool accepted = hook ? hook(dialog) : dialog.exec() == QDialog::Accepted;
    if (!accepted || !dialog.Fit().found)
        return false;
    ApplyGraticule(dialog.Fit());
    return true;
}

void CRulerSettingDlg::ApplyGraticule(const GraticuleFit& fit)
{
    if (!fit.found || !(fit.perPixel > 0))
        return;
    const double umPerOverlayPixel = fit.perPixel / OverlayScale();
    const int unit = MeasureTables::CalibrationUnit(umPerOverlayPixel, m_cbUnit->currentIndex());
    const double perPixel = umPerOverlayPixel / MeasureTables::MicrometresPer(unit);
    Recompute();
    if (m_data.m_nXLenth <= 0 || m_data.m_nYLenth <= 0) {
        // A folded ruler has no length to scale: lay it out afresh.
        MoveRuler(QPoint(100, 300), QPoint(300, 100));
        Recompute();
    }
    m_data.m_nUnit = unit;
    m_data.m_strXReal = QString::number(perPixel * m_data.m_nXLenth, 'f', 6);
    m_data.m_strYReal = QString::number(perPixel * m_data.m_nYLenth, 'f', 6);
    UpdateData(false);
    UpdateUnitLabels();
    Commit();
}

void CRulerSettingDlg::MoveRuler(const QPoint& a, const QPoint& b)
{
    CGVLElemMgr& mgr = m_owner.GetElemMgr();
    const auto lock = mgr.Lock();
    auto* ruler = mgr.m_arShape.empty() ? nullptr : dynamic_cast<CGVLRuler*>(mgr.m_arShape.front().get());
    if (!ruler)
        return;
    ruler->SetArms(
        QPoint(ClampCoord(a.x()), ClampCoord(a.y())), QPoint(ClampCoord(b.x()), ClampCoord(b.y())));
}

void CRulerSettingDlg::OnYEqualX()
{
    UpdateData(true);
    m_data.m_strYPerPixel = m_data.m_strXPerPixel;
    m_data.m_strYReal = m_data.m_strXReal;
    m_data.m_nYLenth = m_data.m_nXLenth;
    m_data.m_nYEnd = SvrFile::WrapAdd(m_data.m_nYStart, m_data.m_nXLenth);
    UpdateData(false);
    MoveRuler(QPoint(m_data.m_nXStart, m_data.m_nYEnd), QPoint(m_data.m_nXEnd, m_data.m_nYStart));
    Recompute();
    Commit();
}

QString CRulerSettingDlg::ChooseFile(bool save, const QString& folder)
{
    FileRequest request;
    request.save = save;
    request.caption = save ? QCoreApplication::translate("CRulerSettingDlg", "Save As")
                           : QCoreApplication::translate("CRulerSettingDlg", "Open");
    request.initialPath = folder + QStringLiteral("*.svr");
    request.filter = kFileFilter;
    request.defaultSuffix = QStringLiteral("svr");
    if (const FileDialogHandler& hook = FileDialogHook())
        return hook(request);

    QFileDialog dialog(this, request.caption, folder, request.filter);
    dialog.setAcceptMode(save ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
    dialog.setFileMode(save ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
    dialog.setDefaultSuffix(request.defaultSuffix);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return {};
    return dialog.selectedFiles().front();
}

CRulerSettingDlg::FileDialogHandler CRulerSettingDlg::SetFileDialogHandler(FileDialogHandler handler)
{
    FileDialogHandler previous = std::move(FileDialogHook());
    FileDialogHook() = std::move(handler);
    return previous;
}

void CRulerSettingDlg::OnSaveTo()
{
    UpdateData(true);
    // Saved in the data folder, though loaded from the program's: kept as it was.
    const QString chosen = ChooseFile(true, CurrentAppPaths().m_calibrationFolder);
    if (!chosen.isEmpty())
        SaveTo(chosen);
}

bool CRulerSettingDlg::SaveTo(const QString& chosen)
{
    QString error;
    if (SvrFile::Write(SvrFile::SaveName(chosen), m_data, &error) != SvrFile::Status::Ok) {
        MessageBox(error, QGuiApplication::applicationDisplayName(), MB_OK | MB_ICONERROR);
        return false;
    }
    return true;
}

void CRulerSettingDlg::OnLoadFrom()
{
    UpdateData(true);
    const QString path = ChooseFile(false, FactoryFolder());
    if (!path.isEmpty())
        LoadFrom(path);
}

void CRulerSettingDlg::ApplyFile(const SvrData& data)
{
    m_data = data;
    m_data.m_nUnit = MeasureTables::ClampUnit(data.m_nUnit);
    UpdateData(false);
    UpdateUnitLabels();
}

bool CRulerSettingDlg::LoadFrom(const QString& path)
{
    SvrData data;
    QString error;
    if (SvrFile::Read(path, data, &error) != SvrFile::Status::Ok) {
        MessageBox(error, QGuiApplication::applicationDisplayName(), MB_OK | MB_ICONERROR);
        return false;
    }
    ApplyFile(data);
    MoveRuler(QPoint(m_data.m_nXStart, m_data.m_nYEnd), QPoint(m_data.m_nXEnd, m_data.m_nYStart));
    Recompute();
    Commit();
    return true;
}

void CRulerSettingDlg::LoadDefault()
{
    UpdateData(true);
    const QString name = SvrFile::FactoryFileName(MagnificationSelection());
    SvrData data;
    QString error;
    const SvrFile::Status status
        = name.isEmpty() ? SvrFile::Status::CannotOpen : SvrFile::Read(FactoryFolder() + name, data, &error);
    if (status == SvrFile::Status::NotRulerData)
        MessageBox(error, QGuiApplication::applicationDisplayName(), MB_OK | MB_ICONERROR);
    if (status == SvrFile::Status::Ok) {
        ApplyFile(data);
        // The factory files were made at 1280 x 1024; a smaller frame shows
        // the same object over fewer pixels.
        QSize frame = m_owner.GetImageSize();
        if (frame.width() <= 0 || frame.height() <= 0)
            frame = QSize(SvrFile::kFactoryWidth, SvrFile::kFactoryHeight);
        const double sx = double(SvrFile::kFactoryWidth) / frame.width();
        const double sy = double(SvrFile::kFactoryHeight) / frame.height();
        m_data.m_strXPerPixel
            = NumberText::FormatC("%.4f", NumberText::LeadingReal(m_data.m_strXReal) / m_data.m_nXLenth / sx);
        m_data.m_nXLenth = TruncToInt(m_data.m_nXLenth / sx);
        m_data.m_strYPerPixel
            = NumberText::FormatC("%.4f", NumberText::LeadingReal(m_data.m_strYReal) / m_data.m_nYLenth / sy);
        m_data.m_nYLenth = TruncToInt(m_data.m_nYLenth / sy);
        m_data.m_nXEnd = SvrFile::WrapAdd(m_data.m_nXStart, m_data.m_nXLenth);
        m_data.m_nYEnd = SvrFile::WrapAdd(m_data.m_nYStart, m_data.m_nYLenth);
        UpdateData(false);
        UpdateUnitLabels();
        MoveRuler(QPoint(m_data.m_nXStart, m_data.m_nYEnd), QPoint(m_data.m_nXEnd, m_data.m_nYStart));
    }
    // A missing factory file is silent: the ruler as it lies is committed.
    Recompute();
    Commit();
}

void CRulerSettingDlg::accept()
{
    UpdateData(true);
    Commit();
    QDialog::accept();
}

void CRulerSettingDlg::reject()
{
    UpdateData(true);
    Commit();
    QDialog::reject();
}

void CRulerSettingDlg::ShowRuler()
{
    m_owner.GetElemMgr().SetRulerShown(true);
}

bool CRulerSettingDlg::event(QEvent* event)
{
    // The user works on the ruler while the dialog is active: keep it on screen.
    if (event->type() == QEvent::WindowActivate)
        ShowRuler();
    return QDialog::event(event);
}
