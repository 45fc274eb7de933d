#pragma once

#include <QImageIOPlugin>

// Our picture formats for Qt's image I/O: PCX (read and write), TGA (read
// and write, a fuller reader than Qt's) and GIF writing. Linked statically;
// FCObjImage registers it.
class COculixImagePlugin : public QImageIOPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "org.qt-project.Qt.QImageIOHandlerFactoryInterface" FILE "OculixImageFormats.json")

public:
    Capabilities capabilities(QIODevice* device, const QByteArray& format) const override;
    QImageIOHandler* create(QIODevice* device, const QByteArray& format = QByteArray()) const override;
};
