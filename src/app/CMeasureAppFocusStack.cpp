// "Focus Stack Pictures...": extended depth of field from picture files.

#include "app/CMainFrame.h"
#include "app/CMeasureApp.h"
#include "app/CMeasureDoc.h"
#include "app/DlgSelectFile.h"
#include "image/FCObjImage.h"
#include "image/FocusStack.h"
#include "measure/CGVLElemMgr.h"
#include "measure/MeasurementXmp.h"
#include "platform/MessageBox.h"

#include <QFileInfo>
#include <QProgressDialog>

CDocument* CMeasureApp::OnFocusStackPictures()
{
    DlgSelectFile dialog(m_mainFrame, m_lastOpenedFile, PictureOpenFilters());
    dialog.setWindowTitle(tr("Focus Stack Pictures"));
    dialog.setFileMode(QFileDialog::ExistingFiles);
    // A series is as often PNG or TIFF as JPEG: every type shows at once.
    dialog.selectNameFilter(PictureOpenFilters().constLast());
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return nullptr;
    QStringList paths = dialog.selectedFiles();
    // The dialog lists the selection in the order clicked; a series is
    // named in focus order.
    paths.sort();
    m_lastOpenedFile = paths.front();
    return StackPictures(paths);
}

CDocument* CMeasureApp::StackPictures(const QStringList& paths)
{
    const QString caption = m_paths.m_brand.m_name;
    if (paths.size() < 2) {
        MessageBox(tr("Choose at least two pictures of the same field, taken at different focus."), caption,
            MB_OK | MB_ICONWARNING);
        return nullptr;
    }
    QProgressDialog progress(tr("Fusing the pictures..."), tr("Cancel"), 0, int(paths.size()), m_mainFrame);
    progress.setWindowModality(Qt::WindowModal);
    progress.setMinimumDuration(500);
    FocusStack stack;
    for (int i = 0; i < paths.size(); ++i) {
        progress.setValue(i);
        if (progress.wasCanceled())
            return nullptr;
        FCObjImage picture;
        if (!picture.Load(paths[i])) {
            // The reader names the file by its path; the message names it once.
            QString why = picture.ErrorString();
            why.remove(paths[i] + QStringLiteral(": "));
            MessageBox(tr("%1 could not be read: %2").arg(QFileInfo(paths[i]).fileName(), why), caption,
                MB_OK | MB_ICONWARNING);
            return nullptr;
        }
        if (!stack.Add(picture.ToQImage())) {
            MessageBox(
                tr("%1 does not fit the series: %2").arg(QFileInfo(paths[i]).fileName(), stack.ErrorString()),
                caption, MB_OK | MB_ICONWARNING);
            return nullptr;
        }
    }
    progress.setValue(int(paths.size()));
    CDocument* document = OpenPictureDocument(stack.Result(), tr("Stack %1").arg(++m_stacks));
    // The first picture's calibration, as opening it would give.
    if (auto* measure = qobject_cast<CMeasureDoc*>(document)) {
        const MeasurementXmp::Stored stored = MeasurementXmp::Read(paths.front());
        if (stored.unit) {
            CalibrationRecord unit = measure->GetElemMgr().GetUnit();
            stored.ApplyTo(unit);
            measure->GetElemMgr().SetUnit(unit);
        }
    }
    return document;
}
