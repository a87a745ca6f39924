// Draws the program's icon in every size that macOS asks for and writes them into one .icns file.
//   make_icns ICON.svg OUT.icns
#include <QBuffer>
#include <QFile>
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>
#include <QtEndian>

#include <array>
#include <cstdio>
#include <cstdlib>

namespace {

struct Size
{
    const char *type; // four characters
    int pixels;
};

// The ones at twice the density have types of their own, although their pixels are those of the next size.
constexpr std::array<Size, 10> sizes = {{{"icp4", 16},
                                         {"ic11", 32},
                                         {"icp5", 32},
                                         {"ic12", 64},
                                         {"ic07", 128},
                                         {"ic13", 256},
                                         {"ic08", 256},
                                         {"ic14", 512},
                                         {"ic09", 512},
                                         {"ic10", 1024}}};

QByteArray png(QSvgRenderer &drawing, int pixels)
{
    QImage image(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    drawing.render(&painter);
    painter.end();
    QBuffer file;
    file.open(QIODevice::WriteOnly);
    image.save(&file, "PNG");
    return file.data();
}

// A type, the length of the whole with these eight bytes, and what it holds.
QByteArray block(const char *type, const QByteArray &content)
{
    const quint32 length = qToBigEndian(static_cast<quint32>(content.size() + 8));
    return QByteArray(type, 4) + QByteArray(reinterpret_cast<const char *>(&length), 4) + content;
}

} // namespace

int main(int argc, char **argv)
{
    if (argc != 3) {
        std::fputs("make_icns ICON.svg OUT.icns\n", stderr);
        return 2;
    }
    QSvgRenderer drawing(QFile::decodeName(argv[1]));
    if (!drawing.isValid())
        return EXIT_FAILURE;
    QByteArray images;
    for (const Size &size : sizes)
        images += block(size.type, png(drawing, size.pixels));
    QFile out(QFile::decodeName(argv[2]));
    const QByteArray whole = block("icns", images);
    return out.open(QIODevice::WriteOnly) && out.write(whole) == whole.size() && out.flush() ? EXIT_SUCCESS
                                                                                             : EXIT_FAILURE;
}
