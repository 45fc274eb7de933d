#pragma once

#include "app/CCmdTarget.h"

#include <QMdiSubWindow>
#include <QPointer>

#include <memory>

class CDocument;
class CView;

// The MDI child window of one document and its view. It owns both and
// destroys the view before the document, so the view never outlives the
// data it shows.
class CChildFrame : public QMdiSubWindow, public CCmdTarget
{
    Q_OBJECT

public:
    // view must also be a CView of document (it may be null only in tests of
    // the frame that need no view).
    CChildFrame(std::unique_ptr<CDocument> document, QWidget* view);
    ~CChildFrame() override;

    CDocument* GetActiveDocument() const { return m_document.get(); }
    QWidget* GetActiveView() const { return m_view; }

    // The view, then the document, then this frame.
    bool OnCmdMsg(int id) override;
    bool OnUpdateCmdMsg(CCmdUI& ui) override;

private:
    CView* ViewTarget() const;

    std::unique_ptr<CDocument> m_document;
    QPointer<QWidget> m_view;
};
