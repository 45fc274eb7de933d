// "Analyze Particles": the command, its dialog and what it adds to the document.
#include "app/CCmdUI.h"
#include "app/CMeasureDoc.h"
#include "app/CommandTable.h"
#include "calibration/MeasureTables.h"
#include "measure/CGVLElemMgr.h"
#include "measure/CShapeHistory.h"
#include "platform/MessageBox.h"
#include "ui/CParticlesDlg.h"

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
