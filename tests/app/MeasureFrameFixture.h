#pragma once

#include "app/CChildFrame.h"
#include "app/CDocTemplate.h"
#include "app/CMainFrame.h"
#include "app/CMeasureApp.h"
#include "app/CMeasureDoc.h"
#include "app/CMeasureView.h"
#include "app/TestDocuments.h"
#include "app/TestHome.h"
#include "capture/SimDeviceProvider.h"
#include "measure/CGVLElemMgr.h"
#include "platform/MessageBox.h"
#include "ui/CGVLWnd.h"

#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QMdiArea>
#include <QMouseEvent>

#include <cstdio>
#include <gtest/gtest.h>
#include <vector>

// The whole program as a user starts it: the frame with the measuring
// template, the simulated camera, a data folder of the test's own and the
// message boxes collected instead of shown.
class MeasureFrameTest : public ::testing::Test
{
protected:
    void TearDown() override
    {
        for (const QString& message : messages)
            std::printf("message box: %s\n", qPrintable(message));
        app.reset();
        CMeasureDoc::SetExportDialogHandler({});
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
        const auto send = [wnd](QEvent::Type type, QPoint at) {
            const bool move = type == QEvent::MouseMove;
            const Qt::MouseButtons held = type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton;
            QMouseEvent event(type, QPointF(at), QPointF(wnd->mapToGlobal(at)),
                move ? Qt::NoButton : Qt::LeftButton, held, Qt::NoModifier);
            QApplication::sendEvent(wnd, &event);
        };
        send(QEvent::MouseButtonPress, from);
        // A shape's first move fixes its second point where the press was.
        for (QPoint at : { from, (from + to) / 2, to })
            send(QEvent::MouseMove, at);
        send(QEvent::MouseButtonRelease, to);
    }

    // The shapes' types in drawing order; 9, the ruler, comes first.
    static std::vector<int> ShapeTypes(CMeasureDoc& doc)
    {
        const auto lock = doc.GetElemMgr().Lock();
        std::vector<int> types;
        for (const auto& shape : doc.GetElemMgr().m_arShape)
            types.push_back(shape->GetType());
        return types;
    }

    QString SettingsFile() const { return home.filePath("data/Setting.ini"); }

    TestHome home;
    QStringList messages;
    ScopedMessageBoxHandler box { [this](const MessageBoxRequest& request) {
        messages << request.text;
        return int(IDOK);
    } };
    std::unique_ptr<CMeasureApp> app;
    CMainFrame* frame = nullptr;
};
