#pragma once

#include "Operation.h"
#include "PlainPhysicalDevice.h"
#include "PluginFixture.h"

#include <QtCore/QUuid>

#include <array>
#include <functional>
#include <memory>

class OtherThread;

/// The loaded library, its host and its receivers, on which the operations of one sequence are made.
class LibraryRun
{
public:
    /// All log switches are off. otherThread must outlive the object.
    explicit LibraryRun(OtherThread &otherThread);
    ~LibraryRun();
    Q_DISABLE_COPY_MOVE(LibraryRun)

    /// Makes the operation by its route.
    void apply(const OperationPointer &operation);
    /// Unloads the library; the devices that are left die with their factory.
    void unload();

    /// What came on the timeline since the last call.
    QStringList take();

    /// Null where there is none.
    const HostedDevice *device(int slot) const;
    /// As it was at creation.
    QUuid instanceId(int slot) const;
    const IPhysicalDevice *physicalDevice(int slot) const;

private:
    struct Entry
    {
        std::unique_ptr<HostedDevice> device;
        QUuid instanceId;
        IPhysicalDevice *physicalDevice = nullptr;
        int starts = 0;
    };

    void perform(const Operation &operation);
    void performOnHost(const Operation &operation);
    bool performSpecial(HostedDevice &device, const Operation &operation);
    static void performCall(HostedDevice &device, const Operation &operation);
    void createDevice(const Operation &operation);
    void destroyDevice(int slot);
    FakeReceiver &receiver(int index);
    IPhysicalDevice *physicalDevice(Physical physical);
    Entry &entry(int slot);

    OtherThread &m_otherThread;
    PluginFixture m_bench;
    FakeReceiver m_secondReceiver;
    PlainPhysicalDevice m_plainDevice;
    std::array<Entry, deviceSlotCount> m_entries;
    std::array<OperationPointer, 2> m_reportInsideRequest;  // by receiver
};
