#pragma once

#include <QtCore/QString>
#include <QtCore/QStringList>

/// The lines of an expected timeline as Timeline::take() gives the real one.
QString timelineText(const QStringList &lines);

/// A log line of the device.
QString debugLine(const QString &text);
QString warningLine(const QString &text);
QString criticalLine(const QString &text);

/// What a start asks the sane receiver, in its order, without log lines.
QStringList bindingLines();
