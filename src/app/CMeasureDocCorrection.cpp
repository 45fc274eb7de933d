// "Flat-Field..." and "White Balance": the corrections of the live picture.
#include "app/CCmdUI.h"
#include "app/CMeasureDoc.h"
#include "app/CommandTable.h"
#include "capture/CFlatFieldDlg.h"
#include "capture/GrabPicture.h"
#include "image/FCObjImage.h"
#include "image/WhiteBalance.h"
#include "measure/CGVLElemMgr.h"
#include "measure/CGVLShape.h"
#include "measure/ShapeKinds.h"
#include "platform/MessageBox.h"

#include <QCoreApplication>

namespace {

// The RGB dialog's sliders stop here.
constexpr int kMaxOffset = 63;
// The outline and handles of the rectangle are in the grabbed frame: the
// region is taken this far inside them.
constexpr int kOutline = 4;

QString Text(const char* text)
{
    return QCoreApplication::translate("CMeasureDoc", text);
}

} // namespace

void CMeasureDoc::MapCorrectionCommands()
{
    m_graph.SetUseStoredFlatField(true);
    const auto onLive = [](void (CMeasureDoc::*open)()) {
        return [open] {
            if (CMeasureDoc* live = GetLiveDocument())
                (live->*open)();
        };
    };
    MapCommand(ID_VIDEO_FLAT_FIELD, onLive(&CMeasureDoc::OnFlatField));
    MapCommand(ID_VIDEO_WHITE_BALANCE, onLive(&CMeasureDoc::OnWhiteBalance));
    for (int id : { ID_VIDEO_FLAT_FIELD, ID_VIDEO_WHITE_BALANCE })
        MapUpdate(id, [this](CCmdUI& ui) { UpdateCameraCommand(ui, true); });
}

void CMeasureDoc::OnFlatField()
{
    CFlatFieldDlg dialog(this, DialogParent());
    dialog.exec();
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
    auto* rect = const_cast<CGVLShape*>(chosen);
    return QRect(*rect->GetCoord(0), *rect->GetCoord(1)).normalized();
}

void CMeasureDoc::OnWhiteBalance()
{
    const QString caption = Text("White Balance");
    const QRect drawn = WhiteBalanceRegion();
    if (drawn.isNull()) {
        MessageBox(
            Text("Draw a rectangle over something neutral (white or gray), then choose White Balance again."),
            caption, MB_OK | MB_ICONINFORMATION);
        return;
    }
    const QRect region = drawn.adjusted(kOutline, kOutline, -kOutline, -kOutline);
    FCObjImage frame;
    if (region.width() < 2 || region.height() < 2 || !GrabPicture(m_graph, frame)) {
        MessageBox(region.width() < 2 || region.height() < 2
                ? Text("The rectangle is too small; draw it larger over the neutral area.")
                : Text("No picture from the camera yet."),
            caption, MB_OK | MB_ICONWARNING);
        return;
    }
    const auto means
        = RegionMeans(frame.GetMemStart(), unsigned(frame.Width()), unsigned(frame.Height()), region);
    if (!means) {
        MessageBox(Text("The rectangle lies outside the picture."), caption, MB_OK | MB_ICONWARNING);
        return;
    }
    ProcessSwitches& s = LiveSwitches();
    const ChannelOffsets current
        = s.rgb ? ChannelOffsets { s.blue, s.green, s.red, true } : ChannelOffsets {};
    const ChannelOffsets offsets = OffsetsToGray(*means, current, kMaxOffset);
    s.rgb = true;
    s.red = offsets.red;
    s.green = offsets.green;
    s.blue = offsets.blue;
    m_graph.SetRgbGain(1, s.red, s.green, s.blue);
    if (!offsets.reached)
        MessageBox(
            Text("The colour cast is stronger than the gains reach: the rectangle is as neutral as they "
                 "allow. Adjust the lamp or the camera's white balance."),
            caption, MB_OK | MB_ICONWARNING);
}
