#include "SequenceExport.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QSaveFile>
#include <QtGui/QPainter>
#include <QtSvg/QSvgRenderer>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace {

constexpr double pixelsPerPixel = 2;
constexpr double longestSide = 32000;  // pixels; QPainter and PNG readers end at 32767
constexpr double mostPixels = 64e6;

double scaleOf(const QSizeF &size)
{
    return std::min({pixelsPerPixel, longestSide / std::max(size.width(), size.height()),
                     std::sqrt(mostPixels / (size.width() * size.height()))});
}

}  // namespace

QImage sequenceImage(const QByteArray &svg)
{
    QSvgRenderer renderer(svg);
    const QSizeF size = renderer.defaultSize();
    QImage image((size * scaleOf(size)).toSize(), QImage::Format_RGB32);
    if (image.isNull())
        return image;
    QPainter painter(&image);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing);
    renderer.render(&painter);
    return image;
}

std::optional<QString> writeSequence(const QByteArray &svg, const QString &file)
{
    QSaveFile saved(file);
    if (!saved.open(QIODevice::WriteOnly))
        return saved.errorString();
    if (file.endsWith(".png"_L1, Qt::CaseInsensitive)) {
        const QImage image = sequenceImage(svg);
        if (image.isNull() || !image.save(&saved, "PNG"))
            return QCoreApplication::translate("SequenceExport", "the picture is too large");
    } else {
        saved.write(svg);
    }
    if (!saved.commit())
        return saved.errorString();
    return std::nullopt;
}
