#include "Sequence.h"

#include "DrawnCounts.h"
#include "HostedDevice.h"
#include "LibraryRun.h"
#include "OtherThread.h"

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

using Kind = Step::Kind;

/// One sequence while it runs.
class Comparison
{
public:
    Comparison(OtherThread &otherThread, const SpoilExpectation &spoilExpectation, DrawnCounts *counts)
        : m_library(otherThread), m_spoilExpectation(spoilExpectation), m_counts(counts)
    {}

    const Model::World &world() const { return m_world; }
    bool isOver() const { return m_result.difference.has_value(); }
    SequenceResult result() && { return std::move(m_result); }

    void make(const StepPointer &step)
    {
        if (isOver())
            return;
        m_result.steps.push_back(step);
        m_library.apply(step);
        applyToModel(step);
        const QStringList getters = compareGetters(*step);
        if (m_spoilExpectation)
            m_spoilExpectation(*step, m_world.lines);
        compareLines(getters);
    }

    void unload()
    {
        if (isOver())
            return;
        m_result.isUnloaded = true;
        m_library.unload();
        Model::unload(m_world);
        compareLines({});
    }

private:
    void applyToModel(const StepPointer &step)
    {
        if (!m_counts || step->route == Step::Route::InsideRequest) {
            Model::apply(m_world, step);
            return;
        }
        const Model::World before = m_world;
        Model::apply(m_world, step);
        m_counts->count({*step, before, m_world});
    }

    // The getters come before the lines, so that a line that one of them writes is seen as well.
    QStringList compareGetters(const Step &step)
    {
        QStringList found;
        for (const int slot : m_world.creationOrder) {
            const Model::Device &model = m_world.deviceIn(slot);
            const HostedDevice &device = *m_library.device(slot);
            QStringList different = differentGetters(model, m_library.createdWith(slot), device);
            if (slot == step.slot)
                different += differentFiles(device);
            for (const QString &getter : std::as_const(different))
                found.append(u"[%1] %2"_s.arg(QString::number(model.id), getter));
        }
        return found;
    }

    void compareLines(const QStringList &getters)
    {
        const QStringList seen = m_library.take();
        if (seen != m_world.lines || !getters.isEmpty())
            m_result.difference = Difference{m_world.lines, seen, getters};
        m_world.lines.clear();
    }

    Model::World m_world;
    LibraryRun m_library;
    const SpoilExpectation &m_spoilExpectation;
    DrawnCounts *m_counts;
    SequenceResult m_result;
};

StepPointer allSwitchesOn()
{
    Step step = stepOf(Kind::Initialize);
    step.logSwitches = {true, true, true};
    return std::make_shared<const Step>(step);
}

StepPointer onDevice(Kind kind, int slot)
{
    return std::make_shared<const Step>(stepOf(kind, Step::Route::Direct, slot));
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
        if (const StepPointer step = resolve(comparison.world(), draw))
            comparison.make(step);
    }
    destroyOthersThanTheTwiceStarted(comparison);
    comparison.unload();
    return std::move(comparison).result();
}
