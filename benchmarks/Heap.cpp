#include "Heap.h"

#include "Allocations.h"
#include "ILogicalDevice.h"
#include "ILogicalDevicePlugin.h"
#include "Libraries.h"
#include "QuietHost.h"

#include <QtCore/QTimer>
#include <QtCore/QUuid>

#include <functional>

namespace {

// A first run fills what Qt and the library keep between two of them; the second is what is wanted.
Allocations::Live liveAfterSecond(const std::function<void()> &make, const std::function<void()> &destroy)
{
    make();
    destroy();
    Allocations::startNoting();
    make();
    const Allocations::Live live = Allocations::stopNoting();
    destroy();
    return live;
}

Allocations::Live liveOfDevice()
{
    QuietReceiver receiver;
    QuietServices services;
    auto *factory = libraries().product.root<ILogicalDevicePlugin>();
    factory->initialize(&services, false, false, false);
    ILogicalDevice *device = nullptr;
    return liveAfterSecond(
        [&] {
            device = factory->createLogicalDevice(&receiver, 1);
            device->start();
        },
        [&] { factory->destroyDevice(device); });
}

// An object and a timer that are connected as a device and its timer are, without the objects themselves.
int bytesOfQt()
{
    QuietReceiver receiver;
    QObject parent;
    QuietListener *object = nullptr;
    QTimer *timer = nullptr;
    const Allocations::Live live = liveAfterSecond(
        [&] {
            object = new QuietListener;
            object->setParent(&parent);
            timer = new QTimer;
            QObject::connect(timer, &QTimer::timeout, object, &QuietListener::onTimeout);
            QObject::connect(&receiver, SIGNAL(dpiMinChanged(int)), object, SLOT(onNumber(int)));
            QObject::connect(&receiver, SIGNAL(dpiMaxChanged(int)), object, SLOT(onNumber(int)));
        },
        [&] {
            delete timer;
            delete object;
        });
    return static_cast<int>(live.bytes - sizeof(QuietListener) - sizeof(QTimer));
}

// What Qt puts in front of the elements of a container.
constexpr int containerHeader = 16;

int bytesOfText(qsizetype length)
{
    return containerHeader + static_cast<int>((length + 1) * qsizetype(sizeof(QChar)));
}

QJsonObject bytesOfParts()
{
    constexpr int pointer = sizeof(void *);
    constexpr int rateCount = 4;
    int rateTexts = 0;
    for (const int length : {3, 3, 3, 4})
        rateTexts += bytesOfText(length);
    return {
        {QStringLiteral("QObject"), int(sizeof(QObject))},
        {QStringLiteral("tables of 2 interfaces"), 2 * pointer},
        {QStringLiteral("factory, physical device, receiver"), 3 * pointer},
        {QStringLiteral("device id, instance id"), int(sizeof(DeviceId) + sizeof(QUuid))},
        {QStringLiteral("3 texts, 3 lists"), int(3 * sizeof(QString) + 3 * sizeof(QList<quint16>))},
        {QStringLiteral("timer"), int(sizeof(QTimer))},
        {QStringLiteral("16 numbers"), int(16 * sizeof(int))},
        {QStringLiteral("13 flags and the mask"), int(13 * sizeof(bool) + sizeof(quint8))},
        {QStringLiteral("text of the name"), bytesOfText(18)},
        {QStringLiteral("list of 4 report rates"), int(containerHeader + rateCount * sizeof(QString))},
        {QStringLiteral("texts of 4 report rates"), rateTexts},
    };
}

}  // namespace

QJsonObject heapOfOneDevice()
{
    const Allocations::Live device = liveOfDevice();
    return {{QStringLiteral("device"), static_cast<int>(device.bytes)},
            {QStringLiteral("blocks"), static_cast<int>(device.blocks)},
            {QStringLiteral("parts"), bytesOfParts()},
            {QStringLiteral("qt"), bytesOfQt()}};
}
