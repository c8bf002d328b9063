#include "ParallelLives.h"

#include "Agreement.h"
#include "HostedDevice.h"
#include "ILogicalDevicePlugin.h"
#include "OtherThread.h"
#include "PluginHost.h"
#include "SimulatedReceiver.h"
#include "TimelineWait.h"
#include "Words.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QSemaphore>

#include <memory>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

// Depends on what the other threads have started.
bool isInstanceNumber(const TimelineEntry &entry)
{
    return entry.kind == TimelineEntry::Kind::Signal && entry.name == u"instanceNumberChanged";
}

// What Qt says of a device that is created on another thread than the factory's.
bool isRefusedParent(const TimelineEntry &entry)
{
    return entry.kind == TimelineEntry::Kind::Log &&
           entry.arguments.at(0).toString().startsWith(u"QObject: Cannot create children for a parent");
}

// While it exists, what the timeline would get from this thread and the second one goes to another timeline.
class Detour
{
public:
    Detour(Timeline &from, Timeline &to, OtherThread &second) : m_from(from), m_second(second) { lead(&to); }
    ~Detour() { lead(nullptr); }
    Q_DISABLE_COPY_MOVE(Detour)

private:
    void lead(Timeline *to)
    {
        m_from.redirectThisThread(to);
        m_second.run([&] { m_from.redirectThisThread(to); });
    }

    Timeline &m_from;
    OtherThread &m_second;
};

class Life
{
public:
    Life(PluginHost &host, Timeline &hostTimeline, OtherThread &second)
        : m_host(host), m_hostTimeline(hostTimeline), m_second(second)
    {
        m_receiver.setAnswerDelay(std::chrono::milliseconds(0));
        m_receiver.setMouse(id, {});
    }

    /// The lines that it left, and what does not agree.
    QStringList play();

private:
    static constexpr DeviceId id = 1;

    void settle();
    void act(const std::function<QList<MouseMessage>(SimulatedMouse &)> &action);
    void request(HostedDevice &device);
    void report(HostedDevice &device);

    QStringList lines() const;
    QStringList found(const HostedDevice &device) const;

    PluginHost &m_host;
    Timeline &m_hostTimeline;
    OtherThread &m_second;
    Timeline m_timeline;
    SimulatedReceiver m_receiver{m_timeline};
};

void Life::settle()
{
    // Far beyond what a life takes; who hangs here is ended from outside.
    constexpr std::chrono::minutes longest{10};
    QCoreApplication::sendPostedEvents();
    waitForTimeline(m_timeline, [this] { return m_receiver.isIdle(); }, longest);
}

void Life::act(const std::function<QList<MouseMessage>(SimulatedMouse &)> &action)
{
    m_receiver.act(id, action);
    settle();
}

void Life::request(HostedDevice &device)
{
    m_second.run([&] {
        device.setReportRate(1000);
        device.setActiveDpiSlotIndex(4);
    });
    settle();
    device.setDpiSlotValues({u"200"_s, u"300"_s, u"400"_s, u"500"_s, u"600"_s});
    device.setDpiButtonId(3);
    device.disbaleButtonsOrKeys({1, 2});
    settle();
    m_second.run([&] { device.setDpiSlotValues({u"0"_s, u"0"_s, u"0"_s, u"700"_s, u"0"_s}); });
    device.applySettings({});
    settle();
}

void Life::report(HostedDevice &device)
{
    m_receiver.changeMouse(id, [](SimulatedMouse &mouse) {
        mouse.firmwareVersion = 7;
        mouse.ppid = u"RV418-0002"_s;
    });
    m_second.run([&] {
        m_receiver.reportAtOnce(id, {&reports::setFirmwareVersion, {7}});
        m_receiver.reportAtOnce(id, {&reports::ppidChangedCallBack, {u"RV418-0002"_s}});
    });
    act([](SimulatedMouse &mouse) { return mouse.drainBattery(10); });
    act([](SimulatedMouse &mouse) { return mouse.pressButton(1); });
    act([](SimulatedMouse &mouse) {
        QList<MouseMessage> tap = mouse.pressSmartPointerKey();
        tap += mouse.releaseSmartPointerKey();
        return tap;
    });
    act([](SimulatedMouse &mouse) { return mouse.releaseButton(1); });
    act([](SimulatedMouse &mouse) { return mouse.pressDpiButton(); });
    device.resetSettings();
    settle();
}

QStringList Life::play()
{
    const Detour detour(m_hostTimeline, m_timeline, m_second);
    auto *created =
        dynamic_cast<ILogicalDeviceGen3Mouse *>(m_host.factory()->createLogicalDevice(&m_receiver, id));
    HostedDevice device(m_timeline, created, id);
    m_receiver.attach(id, created);
    device.start();
    settle();
    request(device);
    report(device);
    const QStringList disagreements = found(device);
    device.stop();
    m_receiver.detach(id);
    m_host.factory()->destroyDevice(created);
    return lines() + disagreements;
}

QStringList Life::found(const HostedDevice &device) const
{
    LastSignals lastSignals;
    const QList<TimelineEntry> entries = m_timeline.entries();
    for (const TimelineEntry &entry : entries) {
        if (!isInstanceNumber(entry))
            lastSignals.note(entry);
    }
    const SimulatedMouse mouse = m_receiver.mouse(id);
    return disagreements(device, lastSignals, &mouse);
}

QStringList Life::lines() const
{
    QStringList lines;
    const QList<TimelineEntry> entries = m_timeline.entries();
    for (const TimelineEntry &entry : entries) {
        if (!isInstanceNumber(entry) && !isRefusedParent(entry))
            lines.append(withoutAddresses(Timeline::line(entry, Timeline::Style::Plain)));
    }
    return lines;
}

// Starts each on a thread of its own, all at once, and waits for them.
void runAtOnce(const std::vector<std::function<void()>> &functions)
{
    QSemaphore ready;
    QSemaphore begin;
    std::vector<std::unique_ptr<QThread>> threads;
    for (const auto &function : functions) {
        threads.emplace_back(QThread::create([&] {
            ready.release();
            begin.acquire();
            function();
        }));
        threads.back()->start();
    }
    const int count = static_cast<int>(functions.size());
    ready.acquire(count);
    begin.release(count);
    for (const auto &thread : threads)
        thread->wait();
}

}  // namespace

std::optional<LifeDifference> playParallelLives(PluginHost &host, Timeline &timeline, int threads, int lives)
{
    const auto play = [&](OtherThread &second) { return Life(host, timeline, second).play(); };
    QStringList expected;
    {
        OtherThread second;
        expected = play(second);
    }
    std::vector<std::optional<LifeDifference>> differences(static_cast<std::size_t>(threads));
    std::vector<std::function<void()>> functions;
    for (int thread = 1; thread <= threads; ++thread) {
        functions.emplace_back([&, thread] {
            OtherThread second;
            for (int life = 1; life <= lives; ++life) {
                const QStringList seen = play(second);
                if (seen == expected)
                    continue;
                differences.at(static_cast<std::size_t>(thread - 1)) = LifeDifference{
                    u"life %1 of thread %2 is not as one that is alone"_s.arg(life).arg(thread), expected,
                    seen};
                return;
            }
        });
    }
    runAtOnce(functions);
    for (const std::optional<LifeDifference> &difference : differences) {
        if (difference)
            return difference;
    }
    return std::nullopt;
}
