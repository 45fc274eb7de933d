#pragma once

#include <QImage>
#include <QObject>
#include <QRgb>

#include <memory>

class CDocument;
class CMeasureDoc;
class LiveFocusStack;
class QTimer;

// The live document's focus aids: focus peaking with the sharpness figure in
// the status bar, and focus stacking while the user sweeps the focus, with
// the coverage tinted over the live picture. Both act on the document's
// graph; the stacking's fusion runs on a thread of its own (LiveFocusStack).
class CLiveFocus : public QObject
{
    Q_OBJECT

public:
    explicit CLiveFocus(CMeasureDoc& document);
    // Cancels a stack still running: nothing is kept.
    ~CLiveFocus() override;

    bool IsPeaking() const { return m_peaking; }
    void SetPeaking(bool on);
    // Asks the user for the marks' colour and keeps it in the settings.
    void ChoosePeakingColor();

    bool IsStacking() const { return m_stack != nullptr; }
    void StartStack();
    // Ends the stack and opens the fused picture and its depth map as
    // picture documents with the live document's calibration; the fused
    // picture's document, or null when there was nothing to fuse (the user
    // was told why).
    CDocument* FinishStack();
    void CancelStack();
    // While stacking: frames judged and frames fused so far, and whether a
    // frame is being worked on.
    int StackSeen() const;
    int StackKept() const;
    bool StackBusy() const;

private:
    void Tick();
    void UpdateTimer();
    void EndStack();
    QRgb PeakingColor() const;
    void ShowStatus(const QString& text) const;

    CMeasureDoc& m_document;
    QTimer* m_timer;
    bool m_peaking = false;
    std::unique_ptr<LiveFocusStack> m_stack;
    int m_lastFrame = -1;
    QImage m_shownCoverage;
};
