#include "Engine.h"
#include "TimelineDock.h"

#include <QtCore/QJsonDocument>
#include <QtCore/QTemporaryFile>
#include <QtWidgets/QApplication>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QScrollBar>
#include <QtWidgets/QTableView>

#include <algorithm>
#include <cstdio>
#include <ctime>

using namespace Qt::StringLiterals;

namespace {

constexpr int longTimeline = 100'000;  // lines
constexpr int rate = 10'000;           // lines a second
constexpr int batches = 30;            // a second, as the dock shows them
constexpr double frame = 1.0 / 60;     // seconds

// Of the processor, by all threads of this program: it does not depend on what else runs.
double seconds()
{
    return double(std::clock()) / CLOCKS_PER_SEC;
}

template <typename Work>
double costOf(const Work &work)
{
    const double before = seconds();
    work();
    return seconds() - before;
}

// As a device reports them: calls, log lines and signals.
QList<Entry> entries(int count)
{
    QList<Entry> entries;
    for (int number = 1; number <= count; ++number) {
        Entry entry;
        entry.sequence = quint64(number);
        entry.time = 100LL * number;
        entry.device = 1;
        entry.kind = number % 2 == 0 ? u"signal"_s : u"log"_s;
        entry.name = u"dpiSlotValuesChanged"_s;
        entry.text =
            u"signal dpiSlotValuesChanged(\"800\", \"1600\", \"2400\", \"3200\", \"%1\")"_s.arg(number);
        const QJsonObject object{{u"sequence"_s, number},
                                 {u"timeUs"_s, entry.time},
                                 {u"thread"_s, 1},
                                 {u"device"_s, u"1"_s},
                                 {u"kind"_s, entry.kind},
                                 {u"name"_s, entry.name},
                                 {u"arguments"_s, QJsonArray{800, 1600, 2400, 3200, number}},
                                 {u"text"_s, entry.text}};
        entry.json = QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact));
        entries.append(entry);
    }
    return entries;
}

struct Window
{
    explicit Window(int count)
    {
        dock.resize(1200, 600);
        dock.show();
        add(entries(count));
    }

    void add(const QList<Entry> &added)
    {
        const qsizetype count = model.entryCount() + added.size();
        dock.addEntries(added);
        while (model.entryCount() < count)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        QCoreApplication::processEvents();
        table.viewport()->repaint();
    }

    Engine engine;
    TimelineDock dock{&engine};
    QTableView &table = *dock.findChild<QTableView *>();
    TimelineModel &model = *dock.findChild<TimelineModel *>();
};

double scrollCost(int count)
{
    Window window(count);
    window.table.scrollToTop();
    window.table.viewport()->repaint();
    constexpr int pages = 30;
    return costOf([&window] {
        for (int page = 0; page < pages; ++page) {
            window.table.verticalScrollBar()->triggerAction(QScrollBar::SliderPageStepAdd);
            window.table.viewport()->repaint();
        }
    });
}

struct Burst
{
    double whole = 0;
    double longest = 0;  // of the batches
};

Burst burstCost(int count)
{
    Window window(count);
    const QList<Entry> batch = entries(rate / batches);
    Burst burst;
    for (int number = 0; number < batches; ++number) {
        const double cost = costOf([&window, &batch] { window.add(batch); });
        burst.whole += cost;
        burst.longest = std::max(burst.longest, cost);
    }
    return burst;
}

double filterCost()
{
    Window window(longTimeline);
    auto *text = window.dock.findChild<QLineEdit *>(u"timelineText"_s);
    return costOf([&window, text] {
        text->setText(u"99"_s);
        window.table.viewport()->repaint();
    });
}

// Of the lines of one second, from a child that prints them; nothing is painted.
double readingCost()
{
    QTemporaryFile output;
    if (!output.open())
        qFatal("no temporary file");
    const QList<Entry> printed = entries(rate);
    for (const Entry &entry : printed)
        output.write(entry.json.toUtf8() + '\n');
    output.close();
    Engine engine;
    const TimelineDock dock(&engine);
    engine.setSetup({{}, {}, {u"sh"_s, u"-c"_s, u"cat \"$0\""_s, output.fileName()}});
    const TimelineModel &model = *dock.findChild<TimelineModel *>();
    return costOf([&engine, &model] {
        engine.start();
        while (model.entryCount() < rate)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    });
}

}  // namespace

// Prints ratios only: of one run's costs, or of a cost and the time that there is for it.
int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");  // a desktop's compositor has other costs
    const QApplication application(argc, argv);
    scrollCost(longTimeline);  // fonts and styles are loaded
    const auto print = [](const char *what, double ratio) { std::printf("%-70s %6.2f\n", what, ratio); };
    print("scroll 30 pages: 100,000 lines to 1,000 lines", scrollCost(longTimeline) / scrollCost(1'000));
    const Burst fresh = burstCost(0);
    const Burst later = burstCost(longTimeline);
    print("take 10,000 lines: after 100,000 lines to after none", later.whole / fresh.whole);
    print("10,000 lines a second after 100,000: share of one core", later.whole);
    print("reading 10,000 lines from the child in a second: share of one core", readingCost());
    print("the longest of 30 batches in that second: share of a frame (1/60 s)", later.longest / frame);
    print("filter 100,000 lines by a text: frames", filterCost() / frame);
    return 0;
}
