#pragma once

#include <QString>
#include <QtGlobal>

class CXCapGraph;
class QWidget;
struct ProcessSwitches;

// What the record, interval-capture and colour-gain dialogs need of the
// document that owns the live graph. The measuring document implements it;
// tests stand in for it. User-interface thread only.
class ILiveDocument
{
public:
    virtual CXCapGraph& GetGraph() = 0;
    // The window the video is placed in.
    virtual QWidget* GetVideoOwner() = 0;
    // The address the processing element reads the current overlay through.
    virtual uchar* const* GetOverlayPointer() = 0;
    // Takes the processing switches back from the graph after it was started.
    virtual void ReadBackState() = 0;
    // Lays the view out again after the graph changed.
    virtual void UpdateLiveView() = 0;
    // The document's switches; the dialogs keep the colour gains there.
    virtual ProcessSwitches& LiveSwitches() = 0;
    virtual QString GetSettingsFile() const = 0;

protected:
    ~ILiveDocument() = default;
};
