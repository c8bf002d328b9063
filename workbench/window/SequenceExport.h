#pragma once

#include <QtCore/QByteArray>
#include <QtGui/QImage>

#include <optional>

/// The SVG as pixels, two for each of its own as far as the picture stays of a size that other programs open; a null
/// image when there is no memory for it.
QImage sequenceImage(const QByteArray &svg);

/// Writes the SVG, as pixels when the file's name ends in ".png". The whole file or nothing; answers why not, in one
/// sentence.
std::optional<QString> writeSequence(const QByteArray &svg, const QString &file);
