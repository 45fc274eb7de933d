// "Flat-Field..." and "White Balance": the corrections of the live picture.
#include "app/CMeasureDoc.h"
#include "capture/CFlatFieldDlg.h"
#include "capture/LiveWhiteBalance.h"
#include "image/WhiteBalance.h"
#include "measure/CGVLElemMgr.h"
#include "measure/CGVLShape.h"
#include "measure/ShapeKinds.h"
#include "platform/MessageBox.h"

void CMeasureDoc::OnFlatField()
{
    CFlatFieldDlg dialog(this, DialogParent());
    dialog.exec();
    // A blank field still being taken when the dialog closed is dropped, and
    // the frames' sums with it.
    m_graph.CaptureBlank(0);
}

QRect CMeasureDoc::WhiteBalanceRegion() const
{
    // The selected rectangle, else the one drawn last.
    const auto lock = m_pElemMgr->Lock();
    const CGVLShape* chosen = nullptr;
    for (const auto& shape : m_pElemMgr->m_arShape)
        if (shape->GetType() == int(ShapeType::Rect) && shape->CoordCount() >= 2
            && (!chosen || !chosen->m_bSelected))
            chosen = shape.get();
    if (!chosen)
        return {};
    // A rectangle keeps its four corners; the first and the last are opposite.
    auto* rect = const_cast<CGVLShape*>(chosen);
    return QRect(*rect->GetCoord(0), *rect->GetCoord(rect->CoordCount() - 1)).normalized();
}

void CMeasureDoc::OnWhiteBalance()
{
    const QString caption = tr("White Balance");
    const QRect drawn = WhiteBalanceRegion();
    if (drawn.isNull()) {
        MessageBox(
            tr("Draw a rectangle over something neutral (white or gray), then choose White Balance again."),
            caption, MB_OK | MB_ICONINFORMATION);
        return;
    }
    // A still picture is balanced as its other processing works: the RGB
    // operation's offsets, the picture rebuilt from its unprocessed copy.
    const auto balanceStill = [this, &drawn] {
        const QRect region = drawn.normalized();
        if (region.width() < 2 || region.height() < 2)
            return LiveWhiteBalance::TooSmall;
        const auto means = RegionMeans(
            m_image.GetMemStart(), unsigned(m_image.Width()), unsigned(m_image.Height()), region);
        if (!means)
            return LiveWhiteBalance::Outside;
        const bool reached = SetOffsetsToGray(m_switches, *means);
        ReapplyPicture();
        return reached ? LiveWhiteBalance::Done : LiveWhiteBalance::Partial;
    };
    switch (m_bLive ? BalanceLiveRegion(*this, drawn) : balanceStill()) {
    case LiveWhiteBalance::Done:
        return;
    case LiveWhiteBalance::Partial:
        MessageBox(tr("The colour cast is stronger than the gains reach: the rectangle is as neutral as they "
                      "allow. Adjust the lamp or the camera's white balance."),
            caption, MB_OK | MB_ICONWARNING);
        return;
    case LiveWhiteBalance::TooSmall:
        MessageBox(tr("The rectangle is too small; draw it larger over the neutral area."), caption,
            MB_OK | MB_ICONWARNING);
        return;
    case LiveWhiteBalance::NoPicture:
        MessageBox(tr("No picture from the camera yet."), caption, MB_OK | MB_ICONWARNING);
        return;
    case LiveWhiteBalance::Outside:
        MessageBox(tr("The rectangle lies outside the picture."), caption, MB_OK | MB_ICONWARNING);
        return;
    }
}
