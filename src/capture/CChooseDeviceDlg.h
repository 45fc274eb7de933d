#pragma once

#include <QDialog>

#include <functional>

class CXCapGraph;
class QComboBox;

// "Video Capture &Device...": lists the cameras (at most 200) with the bound
// one selected. On OK with another camera, the graph's selected index becomes
// the new one, the device-chosen-by-hand flag is set, and the change handler
// runs the rebuild (the document's part around CXCapGraph::ChangeDevice).
class CChooseDeviceDlg : public QDialog
{
    Q_OBJECT
public:
    static constexpr int kMaxListed = 200;

    using ChangeHandler = std::function<void(int index, const QString& name)>;
    CChooseDeviceDlg(CXCapGraph* graph, ChangeHandler onChange, QWidget* parent = nullptr);

    QComboBox* DeviceBox() const { return m_devices; }

public slots:
    void accept() override;

private:
    CXCapGraph* m_graph;
    ChangeHandler m_onChange;
    QComboBox* m_devices;
};
