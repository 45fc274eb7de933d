#include "measure/ImageJRois.h"

#include "measure/CGVLElemMgr.h"
#include "measure/ShapesJson.h"
#include "platform/ZipArchive.h"

#include <gtest/gtest.h>
#include <zlib.h>

namespace {

// Every kind Oculix exports, at whole-pixel places so the way back is exact.
constexpr char kShapes[]
    = R"([{"points":[[220,30],[20,30]],"type":2},{"points":[[50,50],[150,50],[80,140]],"type":3},)"
      R"({"points":[[30,30],[130,30],[30,90],[130,90]],"type":4},)"
      R"({"points":[[50,100],[150,100],[150,200],[70,180]],"type":5},)"
      R"({"points":[[200,100],[240,100]],"type":6},{"points":[[10,10]],"type":1},)"
      R"({"points":[[5,5],[60,60]],"type":12},{"points":[[20,220]],"text":["Grain","7"],"type":14}])";

std::uint32_t U32(const QByteArray& b, int at)
{
    return (std::uint32_t(std::uint8_t(b[at])) << 24) | (std::uint32_t(std::uint8_t(b[at + 1])) << 16)
        | (std::uint32_t(std::uint8_t(b[at + 2])) << 8) | std::uint8_t(b[at + 3]);
}

int U16(const QByteArray& b, int at)
{
    return (std::uint8_t(b[at]) << 8) | std::uint8_t(b[at + 1]);
}

float F32(const QByteArray& b, int at)
{
    const std::uint32_t bits = U32(b, at);
    float f = 0;
    std::memcpy(&f, &bits, sizeof f);
    return f;
}

ImageJRoi Roi(int type, const QString& name, std::vector<QPointF> points, QRectF bounds = {}, int subtype = 0)
{
    ImageJRoi roi;
    roi.type = type;
    roi.subtype = subtype;
    roi.name = name;
    roi.points = std::move(points);
    roi.bounds = bounds;
    return roi;
}

} // namespace

TEST(ImageJRois, PolygonBytesFollowThePublishedLayout)
{
    ImageJRoi roi;
    roi.type = ImageJRoi::Polygon;
    roi.name = QStringLiteral("0004-polygon");
    roi.points = { { 50, 100 }, { 150, 100 }, { 150, 200 }, { 70, 180 } };
    const QByteArray b = ImageJRois::Encode(roi);
    EXPECT_EQ(b.left(4), QByteArray("Iout"));
    EXPECT_EQ(U16(b, 4), 228); // version
    EXPECT_EQ(int(b[6]), 0); // polygon
    EXPECT_EQ(U16(b, 8), 100); // top
    EXPECT_EQ(U16(b, 10), 50); // left
    EXPECT_EQ(U16(b, 12), 200); // bottom
    EXPECT_EQ(U16(b, 14), 150); // right
    EXPECT_EQ(U16(b, 16), 4); // coordinates
    EXPECT_EQ(U16(b, 50), 0); // whole pixels: no sub-pixel option
    // x then y, relative to left and top.
    EXPECT_EQ((std::vector<int> { U16(b, 64), U16(b, 66), U16(b, 68), U16(b, 70) }),
        (std::vector<int> { 0, 100, 100, 20 }));
    EXPECT_EQ((std::vector<int> { U16(b, 72), U16(b, 74), U16(b, 76), U16(b, 78) }),
        (std::vector<int> { 0, 0, 100, 80 }));
    // The second header follows; the name (UTF-16) follows it.
    const int header2 = int(U32(b, 60));
    EXPECT_EQ(header2, 80);
    EXPECT_EQ(U32(b, header2 + 16), std::uint32_t(header2 + 64));
    EXPECT_EQ(U32(b, header2 + 20), 12U);
    EXPECT_EQ(U16(b, header2 + 64), int('0'));
    EXPECT_EQ(b.size(), header2 + 64 + 24);

    // A line keeps its ends as floats; a circle of fractional radius is a
    // sub-pixel oval.
    ImageJRoi line;
    line.type = ImageJRoi::Line;
    line.points = { { 20, 30 }, { 220.5, 30 } };
    const QByteArray l = ImageJRois::Encode(line);
    EXPECT_EQ(int(l[6]), 3);
    EXPECT_FLOAT_EQ(F32(l, 18), 20.0f);
    EXPECT_FLOAT_EQ(F32(l, 26), 220.5f);
    ImageJRoi oval;
    oval.type = ImageJRoi::Oval;
    oval.bounds = QRectF(10.25, 20, 30.5, 30.5);
    const QByteArray o = ImageJRois::Encode(oval);
    EXPECT_EQ(U16(o, 50), 128);
    EXPECT_FLOAT_EQ(F32(o, 18), 10.25f);
    EXPECT_FLOAT_EQ(F32(o, 26), 30.5f);
    EXPECT_EQ(U16(o, 10), 10);
    EXPECT_EQ(U16(o, 14), 41);
}

TEST(ImageJRois, EveryKindReadsBackAsWritten)
{
    std::vector<ImageJRoi> rois {
        Roi(ImageJRoi::Line, "arrow", { { 1.5, 2 }, { 30, 40.25 } }, {}, ImageJRoi::Arrow),
        Roi(ImageJRoi::Rect, "r", {}, QRectF(3, 4, 50, 60)),
        Roi(ImageJRoi::Oval, "o", {}, QRectF(3.5, 4, 50.5, 50.5)),
        Roi(ImageJRoi::Angle, "a", { { 0, 0 }, { 10, 0 }, { 10, 10 } }),
        Roi(ImageJRoi::Point, "p", { { 7.5, 8 }, { 9, 10 } }),
        Roi(ImageJRoi::Rect, "t", {}, QRectF(5, 6, 70, 20), ImageJRoi::Text),
    };
    rois[5].text = QStringLiteral("µm\nline 2");
    rois[5].fontName = QStringLiteral("Serif");
    rois[5].fontSize = 14;
    QString error;
    const std::optional<std::vector<ImageJRoi>> back
        = ImageJRois::DecodeFile(ImageJRois::EncodeSet(rois), QStringLiteral("RoiSet.zip"), &error);
    ASSERT_TRUE(back) << error.toStdString();
    ASSERT_EQ(back->size(), rois.size());
    for (std::size_t i = 0; i < rois.size(); ++i) {
        const ImageJRoi& a = rois[i];
        const ImageJRoi& b = (*back)[i];
        EXPECT_EQ(b.type, a.type) << i;
        EXPECT_EQ(b.subtype, a.subtype) << i;
        EXPECT_EQ(b.name, a.name) << i;
        EXPECT_EQ(b.points, a.points) << i;
        if (a.type == ImageJRoi::Rect || a.type == ImageJRoi::Oval) {
            EXPECT_EQ(b.bounds, a.bounds) << i;
        }
    }
    EXPECT_EQ((*back)[5].text, rois[5].text);
    EXPECT_EQ((*back)[5].fontName, QStringLiteral("Serif"));
    EXPECT_EQ((*back)[5].fontSize, 14);
    // A single .roi without a stored name takes the file's.
    ImageJRoi unnamed = rois[1];
    unnamed.name.clear();
    const auto single
        = ImageJRois::DecodeFile(ImageJRois::Encode(unnamed), QStringLiteral("/x/cell 3.roi"), &error);
    ASSERT_TRUE(single);
    EXPECT_EQ(single->front().name, QStringLiteral("cell 3"));
}

TEST(ImageJRois, ShapesGoToImageJAndComeBackTheSame)
{
    CGVLElemMgr mgr;
    mgr.CreateShape(ShapeType::Ruler);
    ASSERT_EQ(ShapesFromJson(mgr, kShapes), 8);
    const std::vector<ImageJRoi> rois = ImageJRois::FromShapes(mgr);
    ASSERT_EQ(rois.size(), 8U);
    EXPECT_EQ(rois[0].name, QStringLiteral("0001-line"));
    EXPECT_EQ(rois[4].type, ImageJRoi::Oval);
    EXPECT_EQ(rois[4].bounds, QRectF(160, 60, 80, 80));
    EXPECT_EQ(rois[6].subtype, ImageJRoi::Arrow);
    EXPECT_EQ(rois[6].points.back(), QPointF(60, 60)); // the head

    QString error;
    const auto back = ImageJRois::DecodeFile(ImageJRois::EncodeSet(rois), QStringLiteral("set.zip"), &error);
    ASSERT_TRUE(back) << error.toStdString();
    CGVLElemMgr again;
    again.CreateShape(ShapeType::Ruler);
    int skipped = -1;
    EXPECT_EQ(ImageJRois::ToShapes(again, *back, &skipped), 8);
    EXPECT_EQ(skipped, 0);
    EXPECT_EQ(ShapesToJson(again), ShapesToJson(mgr));

    // What Oculix has no shape for is counted, not guessed.
    const std::vector<ImageJRoi> other {
        Roi(ImageJRoi::Oval, "ellipse", {}, QRectF(0, 0, 40, 20)),
        Roi(ImageJRoi::PolyLine, "open", { { 0, 0 }, { 5, 5 }, { 9, 0 } }),
        Roi(ImageJRoi::Point, "two", { { 3, 3 }, { 9, 9 } }),
    };
    EXPECT_EQ(ImageJRois::ToShapes(again, other, &skipped), 2);
    EXPECT_EQ(skipped, 2);
}

TEST(ImageJRois, DamagedInputIsRefusedWithAReason)
{
    QString error;
    EXPECT_FALSE(ImageJRois::DecodeFile("hello", QStringLiteral("x.roi"), &error));
    EXPECT_EQ(error, QStringLiteral("not a ZIP archive"));
    const ImageJRoi roi = Roi(ImageJRoi::Polygon, {}, { { 0, 0 }, { 9, 0 }, { 9, 9 } });
    const QByteArray whole = ImageJRois::Encode(roi);
    // Cut inside the coordinates.
    EXPECT_FALSE(ImageJRois::Decode(whole.left(70), {}, &error));
    EXPECT_EQ(error, QStringLiteral("the ROI's coordinates run past its end"));
    QByteArray unknown = whole;
    unknown[6] = char(42);
    EXPECT_FALSE(ImageJRois::Decode(unknown, {}, &error));
    EXPECT_EQ(error, QStringLiteral("unknown ROI type 42"));
    // A flipped byte in an entry fails its checksum.
    QByteArray set = ImageJRois::EncodeSet({ roi });
    set[30 + 7 + 70] = char(set[30 + 7 + 70] ^ 0x10);
    EXPECT_FALSE(ImageJRois::DecodeFile(set, QStringLiteral("set.zip"), &error));
    EXPECT_TRUE(error.endsWith(QStringLiteral("is damaged"))) << error.toStdString();
    EXPECT_FALSE(ImageJRois::DecodeFile(ZipArchive::Build({ { "notes.txt", "x" } }), "set.zip", &error));
    EXPECT_EQ(error, QStringLiteral("the archive holds no ROIs"));
    for (int cut = 0; cut < set.size(); cut += 7)
        ImageJRois::DecodeFile(set.left(cut), QStringLiteral("set.zip"), &error); // never crashes
}

TEST(ZipArchive, StoredAndDeflatedEntriesComeBack)
{
    const QByteArray text = QByteArray("particle ").repeated(500);
    const QByteArray stored = ZipArchive::Build({ { "a.roi", text }, { "ü/b.roi", "" } });
    QString error;
    const auto entries = ZipArchive::Extract(stored, &error);
    ASSERT_TRUE(entries) << error.toStdString();
    ASSERT_EQ(entries->size(), 2U);
    EXPECT_EQ((*entries)[0].data, text);
    EXPECT_EQ((*entries)[1].name, QStringLiteral("ü/b.roi"));

    // Deflate the first entry as Java's ZipOutputStream does, and patch the
    // headers to say so.
    QByteArray packed(4096, '\0');
    z_stream z {};
    ASSERT_EQ(deflateInit2(&z, 9, Z_DEFLATED, -MAX_WBITS, 8, Z_DEFAULT_STRATEGY), Z_OK);
    z.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(text.constData()));
    z.avail_in = uInt(text.size());
    z.next_out = reinterpret_cast<Bytef*>(packed.data());
    z.avail_out = uInt(packed.size());
    ASSERT_EQ(deflate(&z, Z_FINISH), Z_STREAM_END);
    packed.resize(qsizetype(z.total_out));
    deflateEnd(&z);
    const auto le16 = [](int v) {
        QByteArray two;
        two.append(char(v & 0xff));
        two.append(char((v >> 8) & 0xff));
        return two;
    };
    const auto le32 = [&le16](int v) { return le16(v & 0xffff) + le16(v >> 16); };
    QByteArray local = stored.left(30);
    local.replace(8, 2, le16(8));
    local.replace(18, 4, le32(int(packed.size())));
    const QByteArray name = "a.roi";
    QByteArray archive = local + name + packed;
    const qsizetype centralAt = stored.indexOf(QByteArray("PK\x01\x02", 4));
    QByteArray central = stored.mid(centralAt, 46 + name.size());
    central.replace(10, 2, le16(8));
    central.replace(20, 4, le32(int(packed.size())));
    const int directoryAt = int(archive.size());
    archive += central;
    archive += QByteArray("PK\x05\x06", 4) + le16(0) + le16(0) + le16(1) + le16(1) + le32(int(central.size()))
        + le32(directoryAt) + le16(0);
    const auto inflated = ZipArchive::Extract(archive, &error);
    ASSERT_TRUE(inflated) << error.toStdString();
    EXPECT_EQ(inflated->front().data, text);
    // A bomb is refused before it is unpacked.
    EXPECT_FALSE(ZipArchive::Extract(archive, &error, 100));
    EXPECT_TRUE(error.startsWith(QStringLiteral("the archive unpacks to more than"))) << error.toStdString();
}
