#include "SequenceExport.h"

#include "ReportFile.h"

#include <QtCore/QBuffer>
#include <QtCore/QCoreApplication>
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
    if (!file.endsWith(".png"_L1, Qt::CaseInsensitive))
        return writeReportFile(file, svg);
    QBuffer png;
    const QImage image = sequenceImage(svg);
    if (image.isNull() || !image.save(&png, "PNG"))
        return QCoreApplication::translate("SequenceExport", "%1 cannot be written: the picture is too large")
            .arg(file);
    return writeReportFile(file, png.data());
}
