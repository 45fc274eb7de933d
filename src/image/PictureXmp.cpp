#include "image/PictureXmp.h"

#include "image/ExtendedXmp.h"
#include "platform/AtomicFileWrite.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <exiv2/exiv2.hpp>
#include <mutex>
#include <string>
#include <vector>

namespace {

constexpr char kPrefix[] = "oculix";
const std::string kHasExtended = "Xmp.xmpNote.HasExtendedXMP";
// A JPEG segment holds 65,533 bytes after its marker and length; the main
// packet's header takes 29 of them. Exiv2 refuses anything larger.
constexpr std::size_t kMainPacketLimit = 65533 - 29;
constexpr auto kEncoding = Exiv2::XmpParser::useCompactFormat | Exiv2::XmpParser::omitAllFormatting;

// Exiv2 keeps its namespace table and XMP toolkit process-wide; both are set
// up once, and its diagnostics stay off the console.
void InitExiv2()
{
    static std::once_flag once;
    std::call_once(once, [] {
        Exiv2::LogMsg::setLevel(Exiv2::LogMsg::mute);
        Exiv2::XmpParser::initialize();
        Exiv2::XmpProperties::registerNs(PictureXmp::kNamespace, kPrefix);
        // Exiv2 does not know the namespace of the pointer to a second packet.
        Exiv2::XmpProperties::registerNs("http://ns.adobe.com/xmp/note/", "xmpNote");
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

bool IsJpeg(const Exiv2::Image& image)
{
    return image.mimeType() == "image/jpeg";
}

// The second packet the main one names, decoded; empty when there is none
// or it does not parse.
Exiv2::XmpData ExtendedPart(const QByteArray& jpeg, const Exiv2::XmpData& main)
{
    Exiv2::XmpData extended;
    const auto it = main.findKey(Exiv2::XmpKey(kHasExtended));
    if (it == main.end())
        return extended;
    const QByteArray packet = ExtendedXmp::Reassemble(jpeg, QByteArray::fromStdString(it->toString()));
    if (packet.isEmpty() || Exiv2::XmpParser::decode(extended, packet.toStdString()) != 0)
        extended.clear();
    return extended;
}

std::size_t EncodedSize(const Exiv2::XmpData& xmp)
{
    std::string packet;
    if (Exiv2::XmpParser::encode(packet, xmp, kEncoding) != 0)
        return std::string::npos;
    return packet.size();
}

} // namespace

namespace PictureXmp {

bool CanHold(const QString& path)
{
    static const QStringList types { "jpg", "jpeg", "png", "tif", "tiff" };
    return types.contains(QFileInfo(path).suffix().toLower());
}

QByteArray Rewritten(const QByteArray& file, const Properties& properties, QString* error)
{
    auto fail = [&](const QString& why) {
        if (error)
            *error = why;
        return QByteArray();
    };
    InitExiv2();
    QByteArray result;
    try {
        Exiv2::Image::AutoPtr image = OpenInMemory(file);
        image->readMetadata();
        const bool jpeg = IsJpeg(*image);
        Exiv2::XmpData xmp = image->xmpData();
        // What another program kept in a second packet stays, in ours.
        Exiv2::XmpData extended = jpeg ? ExtendedPart(file, xmp) : Exiv2::XmpData();
        for (Exiv2::XmpData* data : { &xmp, &extended })
            for (auto it = data->begin(); it != data->end();)
                it = it->groupName() == kPrefix || it->key() == kHasExtended ? data->erase(it)
                                                                             : std::next(it);
        for (auto it = properties.begin(); it != properties.end(); ++it)
            xmp[KeyFor(it.key())] = it.value().toStdString();

        if (jpeg && (!extended.empty() || EncodedSize(xmp) > kMainPacketLimit)) {
            // Our largest properties move to the second packet until the main one fits.
            const QStringList keys = properties.keys();
            std::vector<QString> names(keys.begin(), keys.end());
            std::sort(names.begin(), names.end(), [&](const QString& a, const QString& b) {
                return properties.value(a).size() > properties.value(b).size();
            });
            for (const QString& name : names) {
                // Room for the GUID the main packet then names.
                if (EncodedSize(xmp) + 200 <= kMainPacketLimit)
                    break;
                const auto it = xmp.findKey(Exiv2::XmpKey(KeyFor(name)));
                extended.add(*it);
                xmp.erase(it);
            }
        }
        QByteArray extendedPacket;
        QByteArray guid;
        if (!extended.empty()) {
            std::string packet;
            if (Exiv2::XmpParser::encode(packet, extended, kEncoding | Exiv2::XmpParser::omitPacketWrapper)
                != 0)
                return fail(QStringLiteral("the extended XMP data cannot be written"));
            extendedPacket = QByteArray::fromStdString(packet);
            if (quint64(extendedPacket.size()) > ExtendedXmp::kMaxLength)
                return fail(
                    QStringLiteral("the measurements take more than %1 bytes").arg(ExtendedXmp::kMaxLength));
            guid = ExtendedXmp::GuidFor(extendedPacket);
            xmp[kHasExtended] = guid.toStdString();
        }
        if (jpeg && EncodedSize(xmp) > kMainPacketLimit)
            return fail(QStringLiteral("the picture's other XMP data leaves no room for them"));

        // Segments of an earlier second packet would outlive it.
        // Exiv2 reads the bytes in place: they live until the image is done.
        const QByteArray stripped = jpeg ? ExtendedXmp::Strip(file) : QByteArray();
        if (jpeg) {
            image = OpenInMemory(stripped);
            image->readMetadata();
        }
        image->setXmpData(xmp);
        image->writeMetadata();
        Exiv2::BasicIo& io = image->io();
        if (io.open() != 0)
            return fail(QStringLiteral("cannot read the rewritten picture"));
        const Exiv2::DataBuf buf = io.read(long(io.size()));
        io.close();
        result = QByteArray(reinterpret_cast<const char*>(buf.pData_), int(buf.size_));
        if (!extendedPacket.isEmpty() && !result.isEmpty()) {
            result = ExtendedXmp::Insert(result, guid, extendedPacket);
            if (result.isEmpty())
                return fail(QStringLiteral("the extended XMP data cannot be placed in the picture"));
        }
    } catch (const std::exception& e) {
        return fail(QString::fromLocal8Bit(e.what()));
    }
    if (result.isEmpty())
        return fail(QStringLiteral("empty result"));
    return result;
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
    const QByteArray result = Rewritten(bytes, properties, error);
    if (result.isEmpty())
        return false;
    QString why;
    return ReplaceFileContents(path, result, &why) || fail(why);
}

Properties Read(const QString& path)
{
    if (!CanHold(path))
        return {};
    QFile in(path);
    if (!in.open(QIODevice::ReadOnly))
        return {};
    return ReadBytes(in.readAll());
}

Properties ReadBytes(const QByteArray& file)
{
    Properties properties;
    InitExiv2();
    try {
        Exiv2::Image::AutoPtr image = OpenInMemory(file);
        image->readMetadata();
        const Exiv2::XmpData& main = image->xmpData();
        const Exiv2::XmpData extended = IsJpeg(*image) ? ExtendedPart(file, main) : Exiv2::XmpData();
        // The main packet wins where both name a property.
        for (const Exiv2::XmpData* data : { &extended, &main }) {
            for (const Exiv2::Xmpdatum& datum : *data) {
                if (datum.groupName() == kPrefix)
                    properties.insert(
                        QString::fromStdString(datum.tagName()), QString::fromStdString(datum.toString()));
            }
        }
    } catch (const std::exception&) {
        properties.clear();
    }
    return properties;
}

} // namespace PictureXmp
