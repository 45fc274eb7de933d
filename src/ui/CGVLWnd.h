#pragma once

#include <QCursor>
#include <QSize>
#include <QWidget>

class IMeasureDocument;

// The overlay window: a child laid over the view's picture area. It paints the
// document's picture at the zoom step with every element on top, forwards the
// mouse to the document's element manager with the current tool, shows the
// tool's cursor, and tells the calibration dialog when the ruler moved.
//
// The view creates it as a visible child, sizes it to the displayed picture
// (DisplayedSize), then attaches it to the manager and creates the ruler.
// The engine reaches it only through the events of measure/WindowCalls.h.
class CGVLWnd : public QWidget
{
    Q_OBJECT

public:
    // The child window id the view gives it.
    static constexpr int kControlId = 2323;

    CGVLWnd(IMeasureDocument& document, QWidget* view);

    IMeasureDocument& GetDocument() const { return m_document; }

    // Makes this the window of the document's manager (its m_hWnd), whose
    // text presses then ask for the text with CInputTextDlg over it.
    void AttachToManager();
    // The manager forgets the window and its dialog, before the window goes.
    void DetachFromManager();

    // The picture's size at a zoom step, truncating as the zoom table does;
    // an index outside 0..9 gives 100 %.
    static QSize DisplayedSize(const QSize& picture, int zoomIndex);
    // The button-and-key state word of the mouse messages: 1 left, 2 right,
    // 4 shift, 8 control, 16 middle.
    static unsigned MouseFlags(Qt::MouseButtons buttons, Qt::KeyboardModifiers modifiers);

    // True when the document has a picture to paint (display mode 2, or 1
    // while not live, and a picture at all).
    bool ShowsPicture() const;
    // The last paint found nothing to show and filled the window gray.
    bool IsGrayPainted() const { return m_bGrayPainted; }

    const QCursor& DrawCursor() const { return m_hDrawCursor; }
    const QCursor& MoveCursor() const { return m_hMoveCursor; }

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void enterEvent(QEnterEvent* event) override;

private:
    // The tool's cursor while the document is not live, else the default.
    void UpdateCursor();
    // A press or release that may have finished an edit: one undo step.
    void CommitEdit();

    IMeasureDocument& m_document;
    QCursor m_hDrawCursor;
    QCursor m_hMoveCursor;
    bool m_bGrayPainted = false;
};
