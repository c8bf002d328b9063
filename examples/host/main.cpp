// A host of the device plugin with two simulated mice. It prints the signals of their devices.
#include "HostedDevice.h"
#include "PluginHost.h"
#include "SimulatedHostServices.h"
#include "SimulatedReceiver.h"
#include "TimelineWait.h"

#include <QtCore/QCoreApplication>

#include <cstdio>

namespace {

int refuse(const QString &reason)
{
    std::fprintf(stderr, "host: %s\n", qPrintable(reason));
    return 2;
}

void printSignal(const TimelineEntry &entry)
{
    if (entry.kind == TimelineEntry::Kind::Signal)
        std::puts(qPrintable(Timeline::line(entry, Timeline::Style::WithDevice)));
}

void play(Timeline &timeline, PluginHost &host)
{
    SimulatedMouse slowMouse;
    slowMouse.reportRate = 125;
    SimulatedReceiver receiver(timeline);
    receiver.setMouse(1, SimulatedMouse());
    receiver.setMouse(2, slowMouse);
    // Runs the event loop until nothing is under way between the devices and the mice.
    const auto settle = [&] {
        waitForTimeline(timeline, [&] { return receiver.isIdle(); }, std::chrono::seconds(60));
    };

    auto first = host.createDevice(&receiver, 1);
    auto second = host.createDevice(&receiver, 2);
    receiver.attach(1, first->device());
    receiver.attach(2, second->device());
    first->start();
    second->start();
    settle();
    std::printf("report rates: %d and %d Hz\n", first->device()->reportRate(),
                second->device()->reportRate());

    timeline.addLastingObserver(printSignal);
    first->setReportRate(1000);
    settle();
    receiver.act(2, [](SimulatedMouse &mouse) { return mouse.pressDpiButton(); });
    settle();

    ReceiverFault lostConfirmation;
    lostConfirmation.operation = &reports::reportRateConfirmed;
    lostConfirmation.effect = ReceiverFault::Effect::Drop;
    receiver.addFault(lostConfirmation);
    second->setReportRate(1000);
    settle();
    std::printf("still pending: %s\n", second->device()->isReportRateChangePending() ? "yes" : "no");

    host.destroyDevice(std::move(second));
    host.destroyDevice(std::move(first));
}

}  // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 2)
        return refuse(QStringLiteral("give one argument, the path of the device plugin"));

    Timeline timeline;
    PluginHost host(timeline);
    if (const std::optional<QString> reason = host.load(arguments.at(1)))
        return refuse(*reason);
    SimulatedHostServices services(timeline);
    host.initialize(&services, false, false, false);
    play(timeline, host);
    return 0;
}
