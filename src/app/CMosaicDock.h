#pragma once

#include "calibration/CalibrationRecord.h"

#include <QDockWidget>
#include <QPointer>

#include <memory>

class CDocument;
class CMeasureDoc;
class CMosaicPanel;
class LiveMosaic;
class QPushButton;
class QTimer;

// "Mosaic" on the live document: while it runs, the live frames go to a
// LiveMosaic (each one the worker is free for; the others are dropped) and
// the dock shows the mosaic growing with the current field marked. Stop
// opens the mosaic as a picture document in the live picture's scale and
// calibration; Cancel throws it away.
class CMosaicDock : public QDockWidget
{
    Q_OBJECT

public:
    explicit CMosaicDock(QWidget* parent = nullptr);
    ~CMosaicDock() override;

    // Starts on the live document's running preview; false when there is none.
    bool Start(CMeasureDoc* live);
    // The mosaic as a new picture document; null when nothing was built.
    CDocument* Stop();
    void Cancel();
    bool Running() const { return m_mosaic != nullptr; }

    const LiveMosaic* Mosaic() const { return m_mosaic.get(); }
    CMosaicPanel* Panel() const { return m_panel; }
    // Hands the live document's newest frame to the mosaic if it is free,
    // and shows what it built (the timer's work).
    void Poll();

protected:
    void changeEvent(QEvent* event) override;

private:
    void Retranslate();
    void End();

    CMosaicPanel* m_panel;
    QPushButton* m_stop;
    QPushButton* m_cancel;
    QTimer* m_timer;
    std::unique_ptr<LiveMosaic> m_mosaic;
    QPointer<CMeasureDoc> m_live;
    // As the live document had it when the mosaic started, for a mosaic
    // finished after that document closed.
    CalibrationRecord m_unit;
    int m_lastFrame = -1;
    int m_shownTracked = -1;
    int m_finished = 0;
};
