#pragma once

#include <QtGui/QImage>

/// Saves the image as a small PNG with at most 256 colours; each other becomes the nearest of them.
bool savePicture(const QImage &image, const QString &file);
