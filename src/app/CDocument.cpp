#include "app/CDocument.h"

#include <QFileInfo>

void CDocument::SetTitle(const QString& title)
{
    if (title == m_strTitle)
        return;
    m_strTitle = title;
    emit titleChanged(m_strTitle);
}

void CDocument::SetPathName(const QString& path)
{
    m_strPathName = path;
    SetTitle(QFileInfo(path).fileName());
}

bool CDocument::OnOpenDocument(const QString& path)
{
    SetPathName(path);
    return true;
}

bool CDocument::OnNewPicture(const QImage&)
{
    return false;
}
