#pragma once

#include <QWidget>

#include <functional>

// Shown in place of the video when the program started and found no camera:
// says how to connect one and offers the simulated camera, so a first start
// on a machine without a camera is not an empty gray frame.
class CNoCameraHint : public QWidget
{
    Q_OBJECT

public:
    CNoCameraHint(std::function<void()> useSimulated, QWidget* parent);
};
