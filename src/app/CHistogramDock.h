#pragma once

#include <QDockWidget>

#include <functional>
#include <vector>

class CHistogramPanel;
class CXCapGraph;
class QTimer;

// The dockable live histogram. While it shows, the active live document's
// element takes each frame's histogram and the panel follows it a few times
// a second; every other live document, and all of them while it is hidden,
// take none. Its "Flash clipped" switch flashes the clipped pixels in the
// active document's video window while it shows.
class CHistogramDock : public QDockWidget
{
    Q_OBJECT

public:
    struct LiveGraph
    {
        CXCapGraph* graph;
        bool active;
    };
    // liveGraphs: the graphs of the open live documents, asked at each look.
    CHistogramDock(std::function<std::vector<LiveGraph>()> liveGraphs, QWidget* parent = nullptr);
    // Hiding as it goes must not ask for graphs: whoever gives them may be
    // going too.
    ~CHistogramDock() override;

    CHistogramPanel* Panel() const { return m_panel; }
    // Takes the active document's latest histogram now (the timer's work).
    void Refresh();

protected:
    void changeEvent(QEvent* event) override;

private:
    std::function<std::vector<LiveGraph>()> m_liveGraphs;
    CHistogramPanel* m_panel;
    QTimer* m_timer;
};
