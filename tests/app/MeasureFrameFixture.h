#pragma once

#include "app/CChildFrame.h"
#include "app/CDocTemplate.h"
#include "app/CMainFrame.h"
#include "app/CMeasureApp.h"
#include "app/CMeasureDoc.h"
#include "app/CMeasureView.h"
#include "app/TestDocuments.h"
#include "capture/SimDeviceProvider.h"
#include "measure/CGVLElemMgr.h"
#include "measure/CGVLWnd.h"
#include "platform/MessageBox.h"

#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QMdiArea>
#include <QMouseEvent>
#include <QTemporaryDir>

#include <cstdio>
#include <gtest/gtest.h>
#include <vector>

// The whole program as a user starts it: the frame with the measuring
// template, the simulated camera, a data folder of the test's own and the
// message boxes collected instead of shown.
class MeasureFrameTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(home.isValid());
        savedData = qgetenv("OCULIX_DATA_DIR");
        savedConfig = qgetenv("XDG_CONFIG_HOME");
        qputenv("OCULIX_DATA_DIR", QFile::encodeName(home.filePath("data")));
        qputenv("XDG_CONFIG_HOME", QFile::encodeName(home.filePath("config")));
        previousBox = SetMessageBoxHandler([this](const MessageBoxRequest& request) {
            messages << request.text;
            return int(IDOK);
        });
    }
    void TearDown() override
    {
        for (const QString& message : messages)
            std::printf("message box: %s\n", qPrintable(message));
        app.reset();
        SetMessageBoxHandler(std::move(previousBox));
        CMeasureDoc::SetExportDialogHandler({});
        qputenv("OCULIX_DATA_DIR", savedData);
        qputenv("XDG_CONFIG_HOME", savedConfig);
        EnableDemoCamera(false);
    }

    // Starts the program; with the camera, waits for the live video.
    void Start(bool camera = true, const QStringList& pictures = {})
    {
        app = std::make_unique<CMeasureApp>();
        app->AddDocTemplate(CMeasureView::CreateDocTemplate());
        QStringList arguments { QStringLiteral("Oculix") };
        if (camera)
            arguments << QStringLiteral("--demo-camera");
        ASSERT_TRUE(app->InitInstance(arguments + pictures));
        frame = app->GetMainFrame();
        if (camera) {
            ASSERT_NE(CMeasureDoc::GetLiveDocument(), nullptr)
                << messages.join(QLatin1Char('\n')).toStdString();
            ASSERT_TRUE(WaitFor([] { return HasFrame(*CMeasureDoc::GetLiveDocument()); }, 30000));
        }
    }

    static bool HasFrame(CMeasureDoc& live)
    {
        long size = 0;
        if (live.GetGraph().GetCurrentBuffer(&size, nullptr) != 0 || size <= 0)
            return false;
        std::vector<uchar> frame(static_cast<std::size_t>(size));
        return live.GetGraph().GetCurrentBuffer(&size, frame.data()) == 0;
    }

    CMeasureDoc* ActiveDoc() const
    {
        CChildFrame* child = frame->MDIGetActive();
        return child ? static_cast<CMeasureDoc*>(child->GetActiveDocument()) : nullptr;
    }
    CMeasureView* ActiveView() const
    {
        CChildFrame* child = frame->MDIGetActive();
        return child ? static_cast<CMeasureView*>(child->GetActiveView()) : nullptr;
    }
    CChildFrame* FrameOf(const CMeasureDoc* doc) const
    {
        for (CChildFrame* child : frame->GetChildFrames())
            if (child->GetActiveDocument() == doc)
                return child;
        return nullptr;
    }

    // A left-button drag on the overlay window, as the mouse makes it.
    static void Drag(QWidget* wnd, QPoint from, QPoint to)
    {
        Send(wnd, QEvent::MouseButtonPress, from, Qt::LeftButton, Qt::LeftButton);
        // A shape's first move fixes its second point where the press was.
        Send(wnd, QEvent::MouseMove, from, Qt::NoButton, Qt::LeftButton);
        Send(wnd, QEvent::MouseMove, (from + to) / 2, Qt::NoButton, Qt::LeftButton);
        Send(wnd, QEvent::MouseMove, to, Qt::NoButton, Qt::LeftButton);
        Send(wnd, QEvent::MouseButtonRelease, to, Qt::LeftButton, Qt::NoButton);
    }
    static void Send(
        QWidget* wnd, QEvent::Type type, QPoint at, Qt::MouseButton button, Qt::MouseButtons buttons)
    {
        QMouseEvent event(type, QPointF(at), QPointF(wnd->mapToGlobal(at)), button, buttons, Qt::NoModifier);
        QApplication::sendEvent(wnd, &event);
    }

    static std::size_t ShapeCount(CMeasureDoc& doc)
    {
        const auto lock = doc.GetElemMgr().Lock();
        return doc.GetElemMgr().m_arShape.size();
    }
    static int ShapeType(CMeasureDoc& doc, std::size_t index)
    {
        const auto lock = doc.GetElemMgr().Lock();
        return doc.GetElemMgr().m_arShape.at(index)->GetType();
    }

    QString SettingsFile() const { return home.filePath("data/Setting.ini"); }

    QTemporaryDir home;
    QByteArray savedData, savedConfig;
    MessageBoxHandler previousBox;
    QStringList messages;
    std::unique_ptr<CMeasureApp> app;
    CMainFrame* frame = nullptr;
};
