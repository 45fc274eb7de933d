#include "image/JpegSummary.h"
#include "measure/CGVLElemMgr.h"

#include <QFile>
#include <QGuiApplication>
#include <QImage>
#include <QTemporaryDir>

#include <cmath>
#include <cstdio>
#include <vector>

// Draws a 100-pixel horizontal line through the manager as a user would and
// checks its calibrated length and its overlay pixels.
int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);

    CGVLElemMgr mgr;
    mgr.CreateShape(ShapeType::Ruler);
    const int line = 2;
    mgr.OnLButtonDown(0, QPoint(10, 20), line);
    mgr.OnMouseMove(0, QPoint(10, 20), line);
    mgr.OnMouseMove(0, QPoint(110, 20), line);
    mgr.OnLButtonUp(0, QPoint(110, 20), line);
    if (mgr.m_arShape.size() != 2) {
        std::fprintf(stderr, "expected the ruler and one line, got %zu elements\n", mgr.m_arShape.size());
        return 1;
    }
    const double length = mgr.m_arShape[1]->GetLength();
    if (std::fabs(length - 100 * mgr.m_unit.m_dcxPerPixel) > 1e-9) {
        std::fprintf(stderr, "line length %f\n", length);
        return 1;
    }
    const int w = 160, h = 60;
    std::vector<uchar> bits(DibStride(w) * h);
    mgr.DrawToBits(bits.data(), w, h);
    int drawn = 0;
    for (uchar b : bits)
        drawn += b != 1;
    if (drawn == 0) {
        std::fprintf(stderr, "nothing drawn into the overlay\n");
        return 1;
    }

    // The JPEG summary writer is callable on its own.
    QTemporaryDir dir;
    const QString jpeg = dir.filePath("summary.jpg");
    QImage picture(16, 16, QImage::Format_RGB32);
    picture.fill(Qt::gray);
    if (!picture.save(jpeg) || !WriteJpegSummary(jpeg, "A", "", "", "")) {
        std::fprintf(stderr, "could not write the JPEG summary\n");
        return 1;
    }
    QFile file(jpeg);
    file.open(QIODevice::ReadOnly);
    if (file.read(30).mid(20)
        != QByteArray("\xFF\xE1\x00\x60"
                      "Exif\0\0",
            10)) {
        std::fprintf(stderr, "no summary segment after byte 20\n");
        return 1;
    }

    std::printf("consumer: line %.2f, %d overlay bytes drawn\n", length, drawn);
    return 0;
}
