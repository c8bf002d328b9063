#include "Picture.h"

#include <QtCore/QHash>
#include <QtGui/QImageWriter>

#include <algorithm>

namespace {

int distance(QRgb one, QRgb other)
{
    return std::abs(qRed(one) - qRed(other)) + std::abs(qGreen(one) - qGreen(other)) +
           std::abs(qBlue(one) - qBlue(other));
}

QList<QRgb> colorsByFrequency(const QImage &image)
{
    QHash<QRgb, int> counts;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            ++counts[image.pixel(x, y)];
    }
    QList<QRgb> colors = counts.keys();
    // The value decides between equals: the same picture each time.
    std::sort(colors.begin(), colors.end(), [&](QRgb one, QRgb other) {
        return std::pair(counts.value(other), other) < std::pair(counts.value(one), one);
    });
    return colors;
}

// Rare colours stay when no frequent one is like them.
QList<QRgb> distinct(const QList<QRgb> &colors)
{
    constexpr qsizetype mostColors = 256;
    constexpr int leastDistance = 16;
    QList<QRgb> kept;
    for (const QRgb color : colors) {
        const auto isLike = [color](QRgb other) { return distance(color, other) < leastDistance; };
        if (kept.size() < mostColors && std::none_of(kept.cbegin(), kept.cend(), isLike))
            kept.append(color);
    }
    return kept;
}

}  // namespace

bool savePicture(const QImage &image, const QString &file)
{
    const QImage source = image.convertToFormat(QImage::Format_RGB32);
    const QList<QRgb> colors = colorsByFrequency(source);
    const QList<QRgb> kept = distinct(colors);
    QHash<QRgb, uint> indexes;
    for (const QRgb color : colors) {
        const auto nearest = std::min_element(kept.cbegin(), kept.cend(), [&](QRgb one, QRgb other) {
            return distance(one, color) < distance(other, color);
        });
        indexes.insert(color, static_cast<uint>(nearest - kept.cbegin()));
    }
    QImage picture(source.size(), QImage::Format_Indexed8);
    picture.setColorTable(kept);
    for (int y = 0; y < source.height(); ++y) {
        for (int x = 0; x < source.width(); ++x)
            picture.setPixel(x, y, indexes.value(source.pixel(x, y)));
    }
    QImageWriter writer(file, "png");
    writer.setCompression(100);
    return writer.write(picture);
}
