#include "Sequence.h"

#include "DrawnCounts.h"
#include "HostedDevice.h"
#include "LibraryRun.h"
#include "OtherThread.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

using Kind = Operation::Kind;

/// One sequence while it runs.
class Comparison
{
public:
    Comparison(OtherThread &otherThread, const SpoilExpectation &spoilExpectation, DrawnCounts *counts)
        : m_library(otherThread), m_spoilExpectation(spoilExpectation), m_counts(counts)
    {}

    const Model::World &world() const { return m_world; }
    bool isOver() const { return m_result.deviation.has_value(); }
    SequenceResult result() && { return std::move(m_result); }

    void make(const OperationPointer &operation)
    {
        if (isOver())
            return;
        m_result.operations.push_back(operation);
        m_library.apply(operation);
        const std::array<OperationPointer, 2> keptBack = keptBackReports();
        applyToModel(operation);
        m_insideReport = madeReport(*operation, keptBack);
        compareValues(*operation);
        if (m_spoilExpectation)
            m_spoilExpectation(*operation, m_world.lines);
        compareLines(operation);
    }

    void unload()
    {
        if (isOver())
            return;
        m_library.unload();
        m_insideReport = nullptr;
        Model::unload(m_world);
        compareLines(nullptr);
    }

private:
    std::array<OperationPointer, 2> keptBackReports() const
    {
        return {m_world.receivers[0].reportInsideRequest, m_world.receivers[1].reportInsideRequest};
    }

    OperationPointer madeReport(const Operation &operation,
                                const std::array<OperationPointer, 2> &keptBack) const
    {
        // What is kept back for a device dies with it.
        if (operation.kind == Kind::DestroyDevice)
            return nullptr;
        for (std::size_t index = 0; index < keptBack.size(); ++index) {
            if (keptBack.at(index) && !m_world.receivers.at(index).reportInsideRequest)
                return keptBack.at(index);
        }
        return nullptr;
    }

    void applyToModel(const OperationPointer &operation)
    {
        if (!m_counts || operation->route == Operation::Route::InsideRequest) {
            Model::apply(m_world, operation);
            return;
        }
        const Model::World before = m_world;
        Model::apply(m_world, operation);
        m_counts->count({*operation, before, m_world});
    }

    // The getters come before the lines, so that a line that one of them writes is seen as well.
    void compareValues(const Operation &operation)
    {
        for (const int slot : m_world.creationOrder) {
            const Model::Device &model = m_world.deviceIn(slot);
            const HostedDevice &device = *m_library.device(slot);
            note(model.id, differences(DeviceValues::ofModel(model, m_library.instanceId(slot),
                                                             m_library.physicalDevice(slot)),
                                       DeviceValues::ofLibrary(device)));
            if (slot == operation.slot)
                note(model.id, differencesOfFiles(device));
        }
    }

    void note(DeviceId id, const QList<ValueDifference> &found)
    {
        for (const ValueDifference &difference : found)
            m_values.append({id, difference});
    }

    void compareLines(const OperationPointer &operation)
    {
        const QStringList seen = m_library.take();
        if (seen != m_world.lines || !m_values.isEmpty())
            m_result.deviation = Deviation{operation, m_insideReport, m_world.lines, seen, m_values};
        m_world.lines.clear();
    }

    Model::World m_world;
    LibraryRun m_library;
    const SpoilExpectation &m_spoilExpectation;
    DrawnCounts *m_counts;
    OperationPointer m_insideReport;
    QList<Deviation::Value> m_values;
    SequenceResult m_result;
};

OperationPointer allSwitchesOn()
{
    auto operation = std::make_shared<Operation>();
    operation->kind = Kind::Initialize;
    operation->logSwitches = {true, true, true};
    return operation;
}

OperationPointer onDevice(Kind kind, int slot)
{
    auto operation = std::make_shared<Operation>();
    operation->kind = kind;
    operation->slot = slot;
    return operation;
}

// A device that was started twice must not die before the others.
void destroyOthersThanTheTwiceStarted(Comparison &comparison)
{
    const std::vector<int> slotsInOrder = comparison.world().creationOrder;
    const auto isStartedTwice = [&](int slot) { return comparison.world().registrations(slot) > 1; };
    if (std::none_of(slotsInOrder.cbegin(), slotsInOrder.cend(), isStartedTwice))
        return;
    for (const int slot : slotsInOrder) {
        if (!isStartedTwice(slot))
            comparison.make(onDevice(Kind::DestroyDevice, slot));
    }
}

}  // namespace

SequenceResult runSequence(const std::vector<Draw> &draws, OtherThread &otherThread,
                           const SpoilExpectation &spoilExpectation, DrawnCounts *counts)
{
    Comparison comparison(otherThread, spoilExpectation, counts);
    comparison.make(allSwitchesOn());
    comparison.make(onDevice(Kind::CreateDevice, 0));
    for (const Draw &draw : draws) {
        if (comparison.isOver())
            break;
        if (const OperationPointer operation = resolve(comparison.world(), draw))
            comparison.make(operation);
    }
    destroyOthersThanTheTwiceStarted(comparison);
    comparison.unload();
    return std::move(comparison).result();
}
