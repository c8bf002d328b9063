#pragma once

#include "Model.h"
#include "TimelineValue.h"

#include <QtCore/QString>

/// How the model writes its lines.
namespace Model {

/// A value as the message logger's stream operators write it. Plain texts stay as they are, QStrings get quotes.
QString streamed(int value);
QString streamed(uint value);
QString streamed(bool value);
QString streamed(const char *text);
QString streamed(const void *address);
QString streamed(const QString &text);
QString streamed(const QList<int> &values);
QString streamed(const QList<quint16> &values);
QString streamed(const QVariantMap &map);

/// What is streamed into one line stands with a blank between.
template <typename... Values>
QString logText(const char *first, const Values &...values)
{
    QString text = QString::fromUtf8(first);
    ((text += u' ' + streamed(values)), ...);
    return text;
}

/// The arguments of a call, receiver operation or signal.
template <typename... Values>
QString argumentText(const Values &...values)
{
    QStringList texts;
    (texts.append(readableValue(timelineValue(values))), ...);
    return texts.join(QStringLiteral(", "));
}

void writeLine(World &world, const QString &line);
void writeDebug(World &world, const QString &text);
void writeWarning(World &world, const QString &text);

template <typename... Values>
void debug(World &world, const char *first, const Values &...values)
{
    if (world.isDebugOn)
        writeDebug(world, logText(first, values...));
}

template <typename... Values>
void warn(World &world, const char *first, const Values &...values)
{
    if (world.isWarningOn)
        writeWarning(world, logText(first, values...));
}

/// "signal [1] dpiMinChanged(100)"
void writeSignal(World &world, const Device &device, const char *name, const QString &argument);

template <typename Value>
void signal(World &world, const Device &device, const char *name, const Value &value)
{
    writeSignal(world, device, name, argumentText(value));
}

using Emission = void (*)(World &, Device &);
/// On the device's thread at once; else queued, and then with the value of the moment when it runs.
void emitOnDeviceThread(World &world, Device &device, Emission emission);

/// A value that the device asks its receiver for. The device must be bound.
template <typename Value>
Value ask(World &world, const Device &device, const char *operation, Value ReceiverAnswers::*answer)
{
    const Value value = world.receiverOf(device).answers.*answer;
    writeLine(world, QStringLiteral("receiver [%1] %2() -> %3")
                         .arg(QString::number(device.id), QLatin1StringView(operation), argumentText(value)));
    return value;
}

/// A request to the device's receiver, with a report inside it where one was kept back; answers whether the
/// receiver took it. The device must be bound.
bool request(World &world, const Device &device, const char *operation, const QString &arguments);

void warnOfNoReceiver(World &world);

}  // namespace Model
