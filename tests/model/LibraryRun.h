#pragma once

#include "Getters.h"
#include "PlainPhysicalDevice.h"
#include "PluginFixture.h"
#include "Step.h"

#include <array>
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

    /// Makes the step by its route.
    void apply(const StepPointer &step);
    /// Unloads the library; the devices that are left die with their factory.
    void unload();

    /// What came on the timeline since the last call.
    QStringList take();

    /// Null where there is none.
    const HostedDevice *device(int slot) const;
    const CreatedWith &createdWith(int slot) const;

private:
    struct Entry
    {
        std::unique_ptr<HostedDevice> device;
        CreatedWith createdWith;
        int starts = 0;
    };

    void perform(const Step &step);
    void performOnHost(const Step &step);
    bool performSpecial(HostedDevice &device, const Step &step);
    static void performCall(HostedDevice &device, const Step &step);
    void createDevice(const Step &step);
    void destroyDevice(int slot);
    FakeReceiver &receiver(int index);
    IPhysicalDevice *physicalDevice(Physical physical);
    Entry &entry(int slot);

    OtherThread &m_otherThread;
    PluginFixture m_fixture;
    FakeReceiver m_secondReceiver;
    PlainPhysicalDevice m_plainDevice;
    std::array<Entry, deviceSlotCount> m_entries;
    std::array<StepPointer, 2> m_reportInsideRequest;  // by receiver
};
