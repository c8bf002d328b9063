#include "Lines.h"

#include <QtCore/QDebug>

#include <utility>

using namespace Qt::StringLiterals;

namespace Model {

namespace {

template <typename Number>
QString streamedList(const QList<Number> &values)
{
    QStringList texts;
    for (const Number value : values)
        texts.append(QString::number(value));
    return u"QList("_s + texts.join(u", "_s) + u')';
}

}  // namespace

QString streamed(int value)
{
    return QString::number(value);
}

QString streamed(uint value)
{
    return QString::number(value);
}

QString streamed(bool value)
{
    return value ? u"true"_s : u"false"_s;
}

QString streamed(const char *text)
{
    return QString::fromUtf8(text);
}

QString streamed(const void *address)
{
    return u"0x"_s + QString::number(reinterpret_cast<quintptr>(address), 16);
}

QString streamed(const QString &text)
{
    QString line;
    QDebug(&line).nospace() << text;
    return line;
}

QString streamed(const QList<int> &values)
{
    return streamedList(values);
}

QString streamed(const QList<quint16> &values)
{
    return streamedList(values);
}

QString streamed(const QVariantMap &map)
{
    QString line;
    QDebug(&line).nospace() << map;
    return line;
}

void writeLine(World &world, const QString &line)
{
    world.lines.append(world.isOnOtherThread ? line + u" on thread 2"_s : line);
}

void writeDebug(World &world, const QString &text)
{
    writeLine(world, u"debug RV418.LogicalDevice: "_s + text);
}

void writeWarning(World &world, const QString &text)
{
    writeLine(world, u"warning RV418.LogicalDevice: "_s + text);
}

void writeSignal(World &world, const Device &device, const char *name, const QString &argument)
{
    writeLine(world, u"signal ["_s + QString::number(device.id) + u"] "_s + QLatin1StringView(name) + u'(' +
                         argument + u')');
}

void emitOnDeviceThread(World &world, Device &device, Emission emission)
{
    if (world.isOnOtherThread)
        world.queue.push_back({device.slot, emission});
    else
        emission(world, device);
}

bool request(World &world, const Device &device, const char *operation, const QString &arguments)
{
    Receiver &receiver = world.receiverOf(device);
    const bool isAccepted = receiver.answers.acceptsRequests;
    writeLine(world, u"receiver ["_s + QString::number(device.id) + u"] "_s + QLatin1StringView(operation) +
                         u'(' + arguments + u") -> "_s + streamed(isAccepted));
    if (const OperationPointer report = std::exchange(receiver.reportInsideRequest, nullptr))
        perform(world, report);
    return isAccepted;
}

void warnOfNoReceiver(World &world)
{
    warn(world, "Unknown IPhysicalDevice interface");
}

}  // namespace Model
