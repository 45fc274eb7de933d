#include "PillowAgrees.h"
#include "RequiredTools.h"
#include "TestFiles.h"
#include "image/FCObjImage.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

// The files of tests/image/data (written by make_corpus.py there) with what
// each must give: its pixels, or a refusal with the reader's own reason.
namespace {

struct Expected
{
    QString name;
    bool refused = false;
    QString reason;
    int width = 0, height = 0;
    std::vector<QRgb> pixels;
};

std::vector<Expected> Corpus()
{
    std::vector<Expected> corpus;
    const QString text = QString::fromUtf8(ReadAll(QStringLiteral(OCULIX_TEST_DATA_DIR "/expected.txt")));
    for (const QString& line : text.split('\n', Qt::SkipEmptyParts)) {
        if (line.startsWith('#'))
            continue;
        Expected e;
        QStringList words = line.split(' ');
        e.name = words.takeFirst();
        e.refused = words.takeFirst() == "refused";
        if (e.refused) {
            e.reason = words.join(' ');
        } else {
            const QStringList size = words.takeFirst().split('x');
            e.width = size[0].toInt();
            e.height = size[1].toInt();
            for (const QString& word : words)
                e.pixels.push_back(word.toUInt(nullptr, 16));
        }
        corpus.push_back(e);
    }
    return corpus;
}

QString DataPath(const QString& name)
{
    return QStringLiteral(OCULIX_TEST_DATA_DIR "/") + name;
}

// Pixels (0xAARRGGBB, as GetPixelColor gives them) that differ from want;
// empty when all agree. Fully transparent pixels agree in any colour when
// colourOfClear is false, as a GIF keeps no colour for them.
std::string Differences(
    const FCObjImage& got, int width, const std::vector<QRgb>& want, bool colourOfClear = true)
{
    if (got.Width() != width || got.Width() * got.Height() != int(want.size()))
        return "size " + std::to_string(got.Width()) + "x" + std::to_string(got.Height());
    std::string out;
    for (int i = 0; i < int(want.size()); ++i) {
        const QRgb g = got.GetPixelColor(i % width, i / width);
        const bool same
            = g == want[std::size_t(i)] || (!colourOfClear && qAlpha(g) == 0 && qAlpha(want[i]) == 0);
        if (!same && out.size() < 200)
            out += QStringLiteral("(%1,%2) %3 not %4; ")
                       .arg(i % width)
                       .arg(i / width)
                       .arg(g, 8, 16, QChar('0'))
                       .arg(want[std::size_t(i)], 8, 16, QChar('0'))
                       .toStdString();
    }
    return out;
}

} // namespace

TEST(PictureCorpus, EachFileGivesItsPixelsOrItsReadersReason)
{
    const std::vector<Expected> corpus = Corpus();
    const QStringList files
        = QDir(QStringLiteral(OCULIX_TEST_DATA_DIR))
              .entryList({ "*.tga", "*.pcx", "*.bmp", "*.gif", "*.jpg", "*.png" }, QDir::Files);
    EXPECT_EQ(files.size(), int(corpus.size())) << "every picture in the corpus has its expectation";
    for (const Expected& e : corpus) {
        SCOPED_TRACE(e.name.toStdString());
        FCObjImage picture(2, 2, 24);
        const bool read = picture.Load(DataPath(e.name));
        if (e.refused) {
            EXPECT_FALSE(read);
            EXPECT_TRUE(picture.ErrorString().endsWith(e.reason)) << picture.ErrorString().toStdString();
            EXPECT_TRUE(picture.ErrorString().startsWith(DataPath(e.name)));
            EXPECT_EQ(picture.Width(), 2) << "a refused file leaves the picture alone";
            continue;
        }
        ASSERT_TRUE(read) << picture.ErrorString().toStdString();
        EXPECT_EQ(picture.Height(), e.height);
        EXPECT_EQ(Differences(picture, e.width, e.pixels), "");
        const bool alpha
            = std::any_of(e.pixels.cbegin(), e.pixels.cend(), [](QRgb c) { return qAlpha(c) != 255; });
        EXPECT_EQ(picture.HasAlpha(), alpha);
    }
}

// Every readable picture of the corpus through our TGA, PCX and GIF writers:
// it comes back with its pixels in our reader and, where Pillow reads the
// form written, in Pillow's. GIF holds alpha as fully clear or opaque only.
TEST(PictureCorpus, OurWritersGiveEveryPictureBack)
{
    QTemporaryDir dir;
    QStringList forPillow;
    for (const Expected& e : Corpus()) {
        if (e.refused)
            continue;
        FCObjImage picture;
        ASSERT_TRUE(picture.Load(DataPath(e.name))) << e.name.toStdString();
        for (const char* ext : { "tga", "pcx", "gif" }) {
            const QString name = QFileInfo(e.name).baseName() + "." + ext;
            SCOPED_TRACE(name.toStdString());
            ASSERT_TRUE(picture.Save(dir.filePath(name))) << picture.ErrorString().toStdString();
            std::vector<QRgb> want = e.pixels;
            const bool gif = QByteArray(ext) == "gif";
            if (gif)
                for (QRgb& c : want)
                    c = qAlpha(c) < 128 ? 0 : c | 0xFF000000u;
            FCObjImage back;
            ASSERT_TRUE(back.Load(dir.filePath(name))) << back.ErrorString().toStdString();
            EXPECT_EQ(Differences(back, e.width, want, !gif), "");
            // Pillow has no four-plane (RGBA) PCX.
            const bool clear
                = std::any_of(want.cbegin(), want.cend(), [](QRgb c) { return qAlpha(c) != 255; });
            if (!(QByteArray(ext) == "pcx" && clear))
                forPillow << name;
        }
    }
    EXPECT_GE(forPillow.size(), 60);
    if (HavePillow() || ToolsRequired()) {
        REQUIRE_TOOL(HavePillow(), "python3 with Pillow (python3-pil)");
        PillowAgrees(dir, forPillow, {}, true);
    }
}
