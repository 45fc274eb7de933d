#pragma once

#include "app/CCmdTarget.h"

class CDocument;

// Mixed into the widget that shows a document: first in the command route,
// and told once when its document is ready to be shown.
class CView : public CCmdTarget
{
public:
    explicit CView(CDocument& document)
        : m_pDocument(&document)
    {
    }

    CDocument* GetDocument() const { return m_pDocument; }

    // After the document's new-file or open-file step, before the frame shows.
    virtual void OnInitialUpdate() { }

private:
    CDocument* m_pDocument;
};
