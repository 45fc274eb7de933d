// "Stitch Pictures...": the pictures of a scan into one picture document.

#include "app/CMeasureApp.h"
#include "app/CMeasureDoc.h"
#include "app/DlgSelectFile.h"
#include "image/FCObjImage.h"
#include "image/Stitcher.h"
#include "measure/CGVLElemMgr.h"
#include "measure/MeasurementXmp.h"
#include "platform/MessageBox.h"

#include <QApplication>
#include <QCollator>
#include <QFileInfo>

#include <algorithm>

void CMeasureApp::OnStitchPictures()
{
    DlgSelectFile dialog(m_mainFrame, m_lastOpenedFile, PictureOpenFilters());
    dialog.setFileMode(QFileDialog::ExistingFiles);
    dialog.setWindowTitle(tr("Stitch Pictures, in the Order Taken"));
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return;
    // A selection comes in no useful order; a scan's files are numbered in
    // the order taken ("scan-2" before "scan-10").
    QStringList files = dialog.selectedFiles();
    QCollator collator;
    collator.setNumericMode(true);
    std::sort(files.begin(), files.end(), collator);
    m_lastOpenedFile = files.front();
    StitchPictures(files);
}

CDocument* CMeasureApp::StitchPictures(const QStringList& files)
{
    if (files.isEmpty())
        return nullptr;
    auto fail = [this](const QString& text) {
        MessageBox(text, m_paths.m_brand.m_name, MB_OK | MB_ICONWARNING);
        return nullptr;
    };
    QApplication::setOverrideCursor(Qt::WaitCursor);
    Stitcher stitcher;
    QString failure;
    for (const QString& path : files) {
        FCObjImage picture;
        QString why;
        if (!picture.Load(path)) {
            failure = tr("Cannot read the picture %1:\n%2")
                          .arg(QFileInfo(path).fileName(), picture.ErrorString());
            break;
        }
        if (!stitcher.Add(picture.ToQImage(), &why)) {
            failure
                = tr("The picture %1 cannot be placed: %2.\nEach picture must overlap one taken before it "
                     "by about a fifth.")
                      .arg(QFileInfo(path).fileName(), why);
            break;
        }
    }
    const QImage mosaic = failure.isEmpty() ? stitcher.Compose() : QImage();
    QApplication::restoreOverrideCursor();
    if (!failure.isEmpty())
        return fail(failure);
    CDocument* document = OpenPictureDocument(mosaic, tr("Mosaic of %1 pictures").arg(files.size()));
    // In the first picture's scale, so its calibration holds across the mosaic.
    const MeasurementXmp::Stored stored = MeasurementXmp::Read(files.front());
    if (auto* doc = qobject_cast<CMeasureDoc*>(document); doc && stored.unit) {
        CalibrationRecord unit = doc->GetElemMgr().GetUnit();
        stored.ApplyTo(unit);
        doc->GetElemMgr().SetUnit(unit);
    }
    return document;
}
