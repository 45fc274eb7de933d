#pragma once

#include "app/CDocTemplate.h"
#include "app/CDocument.h"
#include "app/CView.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QWidget>

#include <memory>
#include <string>
#include <thread>
#include <vector>

// Runs the event loop until done() holds or the time is up.
template <typename Predicate> bool WaitFor(Predicate done, int milliseconds)
{
    QDeadlineTimer deadline(milliseconds);
    while (!done()) {
        if (deadline.hasExpired())
            return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return true;
}

// A document and view that record what the frame does to them, in order.
using Journal = std::vector<std::string>;

class TestDoc : public CDocument
{
public:
    TestDoc(Journal& journal, QString name)
        : m_journal(journal)
        , m_name(std::move(name))
    {
    }
    ~TestDoc() override { m_journal.push_back("~doc " + m_name.toStdString()); }

    bool OnNewDocument() override
    {
        m_journal.push_back("new " + m_name.toStdString());
        return true;
    }
    bool OnOpenDocument(const QString& path) override
    {
        m_journal.push_back("open " + path.toStdString());
        SetPathName(path);
        return !path.contains(QStringLiteral("missing"));
    }

    Journal& m_journal;
    QString m_name;
};

class TestView : public QWidget, public CView
{
public:
    TestView(Journal& journal, TestDoc& doc)
        : CView(doc)
        , m_journal(journal)
        , m_name(doc.m_name.toStdString())
    {
    }
    ~TestView() override { m_journal.push_back("~view " + m_name); }
    void OnInitialUpdate() override { m_journal.push_back("initial update " + m_name); }

    Journal& m_journal;
    std::string m_name;
};

// A template whose documents are named doc1, doc2, ... in creation order.
inline std::unique_ptr<CDocTemplate> MakeTestTemplate(Journal& journal)
{
    auto count = std::make_shared<int>(0);
    return std::make_unique<CDocTemplate>(
        QStringLiteral("Measure"),
        [&journal, count](CDocTemplate::Origin) {
            return std::make_unique<TestDoc>(journal, QStringLiteral("doc%1").arg(++*count));
        },
        [&journal](CDocument& doc) -> QWidget* { return new TestView(journal, static_cast<TestDoc&>(doc)); });
}
