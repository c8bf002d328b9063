#pragma once

#include "Model.h"
#include "TimelineValue.h"

#include <QtCore/QDebug>
#include <QtCore/QString>

#include <utility>

/// How the model writes its lines.
namespace Model {

/// A value as the message logger's stream operators write it: texts in quotes, but literals as they are.
template <typename Value>
QString streamed(const Value &value)
{
    QString text;
    QDebug(&text).nospace() << value;
    return text;
}

/// What is streamed into one line is separated by blanks.
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

/// At once on the device's thread; else queued.
void callOnDeviceThread(World &world, Device &device, const Call &call);

/// On the device's thread, with the value of the moment when it runs.
template <typename Value>
void emitOnDeviceThread(World &world, Device &device, const char *name, Value Device::*value)
{
    callOnDeviceThread(world, device, [=](World &itsWorld, Device &itsDevice) {
        signal(itsWorld, itsDevice, name, itsDevice.*value);
    });
}

/// Stores the value and emits the signal; does nothing when it is the same.
template <typename Value>
void change(World &world, Device &device, const char *name, Value Device::*value, Value newValue)
{
    if (device.*value == newValue)
        return;
    device.*value = std::move(newValue);
    emitOnDeviceThread(world, device, name, value);
}

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
