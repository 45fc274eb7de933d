#include "image/PictureXmp.h"

#include "platform/AtomicFileWrite.h"

#include <QFile>
#include <QFileInfo>

#include <exiv2/exiv2.hpp>
#include <mutex>
#include <string>

namespace {

constexpr char kPrefix[] = "oculix";

// Exiv2 keeps its namespace table and XMP toolkit process-wide; both are set
// up once, and its diagnostics stay off the console.
void InitExiv2()
{
    static std::once_flag once;
    std::call_once(once, [] {
        Exiv2::LogMsg::setLevel(Exiv2::LogMsg::mute);
        Exiv2::XmpParser::initialize();
        Exiv2::XmpProperties::registerNs(PictureXmp::kNamespace, kPrefix);
    });
}

std::string KeyFor(const QString& name)
{
    return "Xmp." + std::string(kPrefix) + "." + name.toStdString();
}

// The file's bytes, opened as an Exiv2 image in memory, so that nothing
// touches the file until the result is whole.
Exiv2::Image::AutoPtr OpenInMemory(const QByteArray& bytes)
{
    return Exiv2::ImageFactory::open(
        reinterpret_cast<const Exiv2::byte*>(bytes.constData()), long(bytes.size()));
}

} // namespace

namespace PictureXmp {

bool CanHold(const QString& path)
{
    static const QStringList types { "jpg", "jpeg", "png", "tif", "tiff" };
    return types.contains(QFileInfo(path).suffix().toLower());
}

bool Write(const QString& path, const Properties& properties, QString* error)
{
    auto fail = [&](const QString& why) {
        if (error)
            *error = why;
        return false;
    };
    QFile in(path);
    if (!in.open(QIODevice::ReadOnly))
        return fail(in.errorString());
    const QByteArray bytes = in.readAll();
    in.close();

    InitExiv2();
    QByteArray result;
    try {
        Exiv2::Image::AutoPtr image = OpenInMemory(bytes);
        image->readMetadata();
        Exiv2::XmpData xmp = image->xmpData();
        for (auto it = xmp.begin(); it != xmp.end();)
            it = it->groupName() == kPrefix ? xmp.erase(it) : std::next(it);
        for (auto it = properties.begin(); it != properties.end(); ++it)
            xmp[KeyFor(it.key())] = it.value().toStdString();
        image->setXmpData(xmp);
        image->writeMetadata();
        Exiv2::BasicIo& io = image->io();
        if (io.open() != 0)
            return fail(QStringLiteral("cannot read the rewritten picture"));
        const Exiv2::DataBuf buf = io.read(long(io.size()));
        io.close();
        result = QByteArray(reinterpret_cast<const char*>(buf.pData_), int(buf.size_));
    } catch (const std::exception& e) {
        return fail(QString::fromLocal8Bit(e.what()));
    }
    if (result.isEmpty())
        return fail(QStringLiteral("empty result"));

    QString why;
    return ReplaceFileContents(path, result, &why) || fail(why);
}

Properties Read(const QString& path)
{
    Properties properties;
    if (!CanHold(path))
        return properties;
    QFile in(path);
    if (!in.open(QIODevice::ReadOnly))
        return properties;
    const QByteArray bytes = in.readAll();
    InitExiv2();
    try {
        Exiv2::Image::AutoPtr image = OpenInMemory(bytes);
        image->readMetadata();
        for (const Exiv2::Xmpdatum& datum : image->xmpData()) {
            if (datum.groupName() == kPrefix)
                properties.insert(
                    QString::fromStdString(datum.tagName()), QString::fromStdString(datum.toString()));
        }
    } catch (const std::exception&) {
        properties.clear();
    }
    return properties;
}

} // namespace PictureXmp
