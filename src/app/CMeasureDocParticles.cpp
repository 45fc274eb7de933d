// "Analyze Particles" and ImageJ's ROI sets: the commands, their dialogs and
// what they add to the document.
#include "app/CCmdUI.h"
#include "app/CMeasureDoc.h"
#include "app/CommandTable.h"
#include "calibration/MeasureTables.h"
#include "measure/CGVLElemMgr.h"
#include "measure/CShapeHistory.h"
#include "measure/ImageJRois.h"
#include "platform/AtomicFileWrite.h"
#include "platform/MessageBox.h"
#include "ui/CParticlesDlg.h"

#include <QFile>
#include <QFileDialog>

namespace {

// The options of the last analysis, offered again for the next one.
ParticleOptions g_lastOptions = [] {
    ParticleOptions options;
    options.method = GrayThreshold::Method::Default;
    return options;
}();

} // namespace

void CMeasureDoc::MapParticlesCommand()
{
    MapCommand(ID_MEASURE_PARTICLES, [this] {
        CParticlesDlg dialog(g_lastOptions, DialogParent());
        if (dialog.exec() != QDialog::Accepted)
            return;
        g_lastOptions = dialog.Options();
        AnalyzeParticles(g_lastOptions);
    });
    MapCommand(ID_MEASURE_EXPORT_ROIS, [this] {
        const QString path = QFileDialog::getSaveFileName(DialogParent(), tr("Export ImageJ ROIs"),
            QStringLiteral("RoiSet.zip"), tr("ImageJ ROI set (*.zip)"));
        if (!path.isEmpty())
            ExportRois(path);
    });
    MapCommand(ID_MEASURE_IMPORT_ROIS, [this] {
        const QString path = QFileDialog::getOpenFileName(
            DialogParent(), tr("Import ImageJ ROIs"), QString(), tr("ImageJ ROIs (*.zip *.roi)"));
        if (!path.isEmpty())
            ImportRois(path);
    });
    MapUpdate(ID_MEASURE_PARTICLES,
        [this](CCmdUI& ui) { ui.Enable(m_bLive ? m_bPreviewRunning.load() : m_image.IsValidImage()); });
}

int CMeasureDoc::AnalyzeParticles(const ParticleOptions& options)
{
    FCObjImage frame;
    if (m_bLive && !(m_bPreviewRunning.load() && GrabLiveFrame(frame, false))) {
        MessageBox(
            tr("No picture from the camera to analyze."), tr("Analyze Particles"), MB_OK | MB_ICONWARNING);
        return -1;
    }
    const FCObjImage& picture = m_bLive ? frame : m_image;
    if (!picture.IsValidImage())
        return -1;
    const CalibrationRecord unit = m_pElemMgr->GetUnit();
    const ParticleResult result = ::AnalyzeParticles(picture.ToQImage(), options, &unit);
    if (AddOutlineShapes(*m_pElemMgr, result.particles) > 0)
        m_pHistory->Commit();
    RepaintOverlayWindow();

    const int precision = std::clamp(m_pElemMgr->GetAppearance().precision, 1, 5);
    const double pictureArea
        = double(picture.Width()) * double(picture.Height()) * unit.m_dcxPerPixel * unit.m_dcyPerPixel;
    if (m_particleResults)
        m_particleResults->close();
    m_particleResults = new CParticleResultsDlg(result.particles,
        QString::fromLatin1(MeasureTables::UnitText(unit.m_rtUnit)), precision, pictureArea, DialogParent());
    m_particleResults->show();
    return int(result.particles.size());
}

bool CMeasureDoc::ExportRois(const QString& path)
{
    const std::vector<ImageJRoi> rois = ImageJRois::FromShapes(*m_pElemMgr);
    if (rois.empty()) {
        MessageBox(tr("There are no shapes to export."), tr("Export ImageJ ROIs"), MB_OK | MB_ICONWARNING);
        return false;
    }
    const bool single = path.endsWith(QStringLiteral(".roi"), Qt::CaseInsensitive) && rois.size() == 1;
    QString error;
    if (!ReplaceFileContents(
            path, single ? ImageJRois::Encode(rois.front()) : ImageJRois::EncodeSet(rois), &error)) {
        MessageBox(
            tr("Cannot write %1:\n%2").arg(path, error), tr("Export ImageJ ROIs"), MB_OK | MB_ICONWARNING);
        return false;
    }
    return true;
}

int CMeasureDoc::ImportRois(const QString& path)
{
    QFile file(path);
    QString error;
    std::optional<std::vector<ImageJRoi>> rois;
    if (!file.open(QIODevice::ReadOnly))
        error = file.errorString();
    else if (file.size() > 64 * 1024 * 1024)
        error = tr("The file is too large for ROIs.");
    else
        rois = ImageJRois::DecodeFile(file.readAll(), path, &error);
    if (!rois) {
        MessageBox(
            tr("Cannot import %1:\n%2").arg(path, error), tr("Import ImageJ ROIs"), MB_OK | MB_ICONWARNING);
        return -1;
    }
    int skipped = 0;
    const int made = ImageJRois::ToShapes(*m_pElemMgr, *rois, &skipped);
    if (made > 0)
        m_pHistory->Commit();
    RepaintOverlayWindow();
    if (skipped > 0)
        MessageBox(
            tr("%1 of the %2 ROIs have no kind of shape here (ellipses, open lines, composite shapes) and "
               "were left out.")
                .arg(skipped)
                .arg(rois->size()),
            tr("Import ImageJ ROIs"), MB_OK | MB_ICONINFORMATION);
    return made;
}
