#pragma once

#include "capture/CXCapGraph.h"
#include "capture/ILiveDocument.h"
#include "image/ProcessSwitches.h"
#include "platform/SettingsKeys.h"

#include <QObject>
#include <QWidget>

// The live document as the capture dialogs see it: a real graph, a video
// window, an overlay of the frame's size, and a settings file. Its quick
// save only moves the running number on.
class FakeLiveDocument : public QObject, public ILiveDocument
{
public:
    FakeLiveDocument(CXCapGraph& graph, QString settingsFile)
        : m_graph(graph)
        , m_settings(std::move(settingsFile))
    {
    }

    CXCapGraph& GetGraph() override { return m_graph; }
    QWidget* GetVideoOwner() override { return &m_owner; }
    uchar* const* GetOverlayPointer() override { return &m_overlay; }
    void ReadBackState() override
    {
        ++m_readBacks;
        int on = 0;
        if (m_graph.GetRgbGain(&on, &m_switches.red, &m_switches.green, &m_switches.blue) == S_OK)
            m_switches.rgb = on != 0;
    }
    void UpdateLiveView() override { ++m_viewUpdates; }
    void QuickSaveSilent()
    {
        const int suffix = SettingsKeys::ReadInt(SettingsKeys::SaveSuffix, m_settings);
        SettingsKeys::WriteInt(SettingsKeys::SaveSuffix, suffix + 1, m_settings);
    }
    ProcessSwitches& LiveSwitches() override { return m_switches; }
    QString GetSettingsFile() const override { return m_settings; }

    CXCapGraph& m_graph;
    QString m_settings;
    QWidget m_owner;
    uchar* m_overlay = nullptr;
    ProcessSwitches m_switches;
    int m_readBacks = 0;
    int m_viewUpdates = 0;
};
