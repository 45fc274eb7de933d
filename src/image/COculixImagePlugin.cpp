// Built as a static plugin: the metadata goes into a function that
// FCObjImage imports, not into a shared-library section.
#define QT_STATICPLUGIN

#include "image/COculixImagePlugin.h"

#include "image/CGifHandler.h"
#include "image/CPcxHandler.h"
#include "image/CTgaHandler.h"

QImageIOPlugin::Capabilities COculixImagePlugin::capabilities(
    QIODevice* device, const QByteArray& format) const
{
    if (format == "pcx" || format == "tga")
        return CanRead | CanWrite;
    if (format == "gif")
        return CanWrite; // Qt reads GIF
    if (!format.isEmpty() || device == nullptr || !device->isReadable())
        return {};
    Capabilities found;
    if (CPcxHandler::canRead(device) || CTgaHandler::canRead(device))
        found |= CanRead;
    return found;
}

QImageIOHandler* COculixImagePlugin::create(QIODevice* device, const QByteArray& format) const
{
    QImageIOHandler* handler = nullptr;
    if (format == "pcx" || (format.isEmpty() && CPcxHandler::canRead(device)))
        handler = new CPcxHandler;
    else if (format == "tga" || (format.isEmpty() && CTgaHandler::canRead(device)))
        handler = new CTgaHandler;
    else if (format == "gif")
        handler = new CGifHandler;
    if (handler == nullptr)
        return nullptr;
    handler->setDevice(device);
    handler->setFormat(format.isEmpty() ? (dynamic_cast<CPcxHandler*>(handler) ? "pcx" : "tga") : format);
    return handler;
}

#include "moc_COculixImagePlugin.cpp"
