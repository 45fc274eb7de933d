// Build-time helper: turns the manual's Markdown into a PDF with Qt's own
// PDF writer, and renders the program icon into PNG sizes for the desktop.
//   oculix-assets pdf MANUAL.md OUT.pdf FONT-FAMILY
//   oculix-assets png ICON.svg OUT.png SIZE
#include <QFile>
#include <QFileInfo>
#include <QFont>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QImage>
#include <QPageLayout>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>
#include <QSvgRenderer>
#include <QTextDocument>

#include <cstdio>

namespace {

int Fail(const char* what, const QString& path)
{
    std::fprintf(stderr, "oculix-assets: %s %s\n", what, qPrintable(path));
    return 1;
}

int MakePdf(const QString& input, const QString& output, const QString& family)
{
    QFile source(input);
    if (!source.open(QIODevice::ReadOnly | QIODevice::Text))
        return Fail("cannot read", input);
    if (!QFontDatabase::families().contains(family))
        return Fail("font family not installed:", family);

    QPdfWriter writer(output);
    writer.setPageSize(QPageSize(QPageSize::A4));
    writer.setPageMargins(QMarginsF(18, 18, 18, 18), QPageLayout::Millimeter);
    writer.setResolution(300);
    writer.setTitle(QFileInfo(input).completeBaseName());
    writer.setCreator(QStringLiteral("Oculix"));

    QTextDocument document;
    QFont font(family);
    font.setPointSizeF(10.5);
    document.setDefaultFont(font);
    document.setDefaultStyleSheet(
        QStringLiteral("table { border-collapse: collapse; } td, th { padding: 4px; }"));
    document.setMarkdown(QString::fromUtf8(source.readAll()));
    // Without a page size of its own the document is laid out for the
    // writer's pages and numbered at the foot.
    document.print(&writer);
    return QFile(output).size() > 0 ? 0 : Fail("nothing written to", output);
}

int MakePng(const QString& input, const QString& output, int size)
{
    QSvgRenderer renderer(input);
    if (!renderer.isValid() || size <= 0)
        return Fail("cannot render", input);
    QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    renderer.render(&painter);
    painter.end();
    return image.save(output, "PNG") ? 0 : Fail("cannot write", output);
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    const QStringList args = app.arguments();
    if (args.size() == 5 && args[1] == QLatin1String("pdf"))
        return MakePdf(args[2], args[3], args[4]);
    if (args.size() == 5 && args[1] == QLatin1String("png"))
        return MakePng(args[2], args[3], args[4].toInt());
    std::fputs("usage: oculix-assets pdf MANUAL.md OUT.pdf FONT | png ICON.svg OUT.png SIZE\n", stderr);
    return 2;
}
