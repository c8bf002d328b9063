#include "StartedEngine.h"
#include "TimelineDock.h"

#include <QtCore/QJsonDocument>
#include <QtCore/QTemporaryDir>
#include <QtGui/QAction>
#include <QtGui/QClipboard>
#include <QtTest/QAbstractItemModelTester>
#include <QtTest/QSignalSpy>
#include <QtWidgets/QApplication>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QMenu>
#include <QtWidgets/QMessageBox>
#include <QtWidgets/QScrollBar>
#include <QtWidgets/QStyledItemDelegate>
#include <QtWidgets/QTableView>
#include <QtWidgets/QToolButton>

#include <algorithm>
#include <cmath>
#include <limits>

using namespace Qt::StringLiterals;

namespace {

Entry entryOf(quint64 sequence, const QString &kind, const QString &text, std::optional<quint64> device = {})
{
    Entry entry;
    entry.sequence = sequence;
    entry.time = qint64(sequence) * 1001;
    entry.device = device;
    entry.kind = kind;
    entry.text = text;
    entry.json = uR"({"kind":"%1","sequence":%2})"_s.arg(kind).arg(sequence);
    return entry;
}

QList<Entry> someEntries()
{
    return {entryOf(1, u"call"_s, u"call setReportRate(250)"_s, 1),
            entryOf(2, u"receiver"_s, u"receiver setReportRate(250) -> true"_s, 1),
            entryOf(3, u"log"_s, u"debug Mouse: rate"_s),
            entryOf(4, u"signal"_s, u"signal reportRateChanged(250)"_s, 1),
            entryOf(5, u"signal"_s, u"signal reportRateChanged(500)"_s, 2)};
}

QList<Entry> manyEntries(int count, quint64 first = 1)
{
    QList<Entry> entries;
    for (int number = 0; number < count; ++number)
        entries.append(entryOf(first + quint64(number), u"signal"_s, u"signal batteryLevelChanged(80)"_s, 1));
    return entries;
}

template <typename Condition>
bool comes(const Condition &condition)
{
    return QTest::qWaitFor(condition, StartedEngine::limit);
}

// The dock as a window of its own, without a child.
struct Shown
{
    explicit Shown(const QList<Entry> &entries = {})
    {
        dock.resize(900, 400);
        dock.show();
        dock.activateWindow();
        require(QTest::qWaitForWindowActive(&dock, StartedEngine::limit), u"the dock has no focus"_s);
        require(add(entries), u"the table has no lines"_s);
    }

    /// Waits until the table has them.
    bool add(const QList<Entry> &entries)
    {
        const qsizetype count = model().entryCount() + entries.size();
        dock.addEntries(entries);
        return comes([this, count] { return model().entryCount() == count; });
    }

    template <typename Child>
    Child *child(const QString &name)
    {
        return dock.findChild<Child *>(name);
    }

    void choose(const QString &menuName, const QString &action)
    {
        auto *menu = child<QMenu>(menuName);
        menu->popup({});
        menu->setActiveAction(menu->findChild<QAction *>(action));
        QTest::keyClick(menu, Qt::Key_Return);
    }

    /// Of what the table shows.
    QStringList column(TimelineModel::Column column) const
    {
        QStringList cells;
        for (int row = 0; row < table->model()->rowCount(); ++row)
            cells.append(table->model()->index(row, column).data().toString());
        return cells;
    }

    QStringList sequences() const { return column(TimelineModel::Sequence); }
    QString count() { return child<QLabel>(u"timelineCount"_s)->text(); }
    TimelineModel &model() { return *dock.findChild<TimelineModel *>(); }

    QPoint placeOf(int row) const { return table->visualRect(table->model()->index(row, 0)).center(); }
    void click(int row, Qt::KeyboardModifiers modifiers = {}) const
    {
        QTest::mouseClick(table->viewport(), Qt::LeftButton, modifiers, placeOf(row));
    }

    Engine engine;
    TimelineDock dock{&engine};
    QTableView *table = dock.findChild<QTableView *>(u"timelineTable"_s);
};

// Counts what the table asks of it.
class CountingDelegate : public QStyledItemDelegate
{
public:
    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override
    {
        ++painted;
        QStyledItemDelegate::paint(painter, option, index);
    }
    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override
    {
        ++measured;
        return QStyledItemDelegate::sizeHint(option, index);
    }

    mutable int painted = 0;
    mutable int measured = 0;
};

// As WCAG defines it: 4.5 and more is readable.
double contrast(const QColor &one, const QColor &other)
{
    const auto luminance = [](const QColor &color) {
        const auto part = [](double value) {
            return value <= 0.03928 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
        };
        return 0.2126 * part(color.redF()) + 0.7152 * part(color.greenF()) + 0.0722 * part(color.blueF());
    };
    const auto [darker, brighter] = std::minmax({luminance(one), luminance(other)});
    return (brighter + 0.05) / (darker + 0.05);
}

}  // namespace

class tst_TimelineDock : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void eachColumnOfAnEntry();
    void oddTexts_data();
    void oddTexts();
    void aVeryLongText();
    void filterByKind();
    void filterByDevice();
    void filterByText();
    void theFilterHoldsForLinesThatCome();
    void theSelectionSurvivesTheFilter();
    void theSelectionIsSignalled();
    void findWraps();
    void findBackwards();
    void findWhatIsNotThere();
    void aPauseKeepsLinesWaiting();
    void aPauseEndsWhenTooManyLinesWait();
    void copyTheSelectedLines();
    void copyAsExpectation_data();
    void copyAsExpectation();
    void exportAsText();
    void exportAsJsonLines();
    void exportToAFolderThatIsNotThere();
    void clearAlsoDropsWhatWaits();
    void theNewestLineIsFollowed();
    void aTableThatIsScrolledUpStaysThere();
    void aBurstIsOneInsertion();
    void theLengthOfTheTimelineCostsNothing();
    void theOldestLinesAreDropped();
    void theKeyboardReachesAll();
    void kindsAreReadableOnEachPalette();
    void aSessionWithTheLibrary();
    void theLinesStayUntilTheNextStart();
};

void tst_TimelineDock::eachColumnOfAnEntry()
{
    constexpr quint64 largest = std::numeric_limits<quint64>::max();
    Entry entry = entryOf(largest, u"report"_s, u"report ppidCallBack(\"\u96ea\") on thread 3"_s, largest);
    entry.time = 1'234'567'008;
    entry.thread = 3;
    Shown shown({entry});
    QStringList cells;
    for (int column = 0; column < TimelineModel::ColumnCount; ++column)
        cells += shown.column(TimelineModel::Column(column));
    QCOMPARE(cells,
             (QStringList{u"18446744073709551615"_s, u"1234567.008"_s, u"3"_s, u"18446744073709551615"_s,
                          u"report"_s, u"report ppidCallBack(\"\u96ea\") on thread 3"_s}));
    QVERIFY(shown.table->columnWidth(TimelineModel::Device) >
            shown.dock.fontMetrics().horizontalAdvance(u"18446744073709551615"_s));
}

void tst_TimelineDock::oddTexts_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("shown");
    QTest::newRow("line-break") << u"debug one\ntwo"_s << u"debug one\u21b5two"_s;
    QTest::newRow("reversed") << u"a\u202eb"_s << u"a\u27e8U+202E\u27e9b"_s;
    QTest::newRow("escape") << u"a\u001bb"_s << u"a\u27e8U+001B\u27e9b"_s;
    QTest::newRow("outside-the-basic-plane") << u"\U0001F5B1"_s << u"\U0001F5B1"_s;
    QTest::newRow("empty") << QString() << QString();
}

void tst_TimelineDock::oddTexts()
{
    QFETCH(const QString, text);
    QFETCH(const QString, shown);
    Shown window({entryOf(1, u"log"_s, text)});
    QCOMPARE(window.column(TimelineModel::Text), QStringList{shown});
    QVERIFY(TimelineModel::line(window.model().entry(0)).endsWith(shown));
}

void tst_TimelineDock::aVeryLongText()
{
    const QString pair = u"\U0001F5B1"_s;
    const QString text = u"<b>"_s + pair.repeated(500'000);
    Shown shown({entryOf(1, u"log"_s, text)});
    const QString cell = shown.column(TimelineModel::Text).constFirst();
    QCOMPARE(cell, u"<b>"_s + pair.repeated(498) + u'\u2026');
    const QModelIndex index = shown.table->model()->index(0, TimelineModel::Text);
    QCOMPARE(index.data(Qt::ToolTipRole).toString(), u"<p>%1</p>"_s.arg(cell.toHtmlEscaped()));
    QVERIFY(TimelineModel::line(shown.model().entry(0)).endsWith(text));
}

void tst_TimelineDock::filterByKind()
{
    Shown shown(someEntries());
    shown.choose(u"timelineKindMenu"_s, u"signal"_s);
    QCOMPARE(shown.sequences(), (QStringList{u"1"_s, u"2"_s, u"3"_s}));
    QCOMPARE(shown.count(), u"Lines: 3 of 5"_s);
    QCOMPARE(shown.child<QToolButton>(u"timelineKinds"_s)->text(), u"Kinds (hidden: 1)"_s);
    shown.choose(u"timelineKindMenu"_s, u"none"_s);
    QCOMPARE(shown.sequences(), QStringList());
    shown.choose(u"timelineKindMenu"_s, u"call"_s);
    QCOMPARE(shown.sequences(), QStringList{u"1"_s});
    shown.choose(u"timelineKindMenu"_s, u"all"_s);
    QCOMPARE(shown.sequences().size(), 5);
    QCOMPARE(shown.child<QToolButton>(u"timelineKinds"_s)->text(), u"Kinds"_s);
}

void tst_TimelineDock::filterByDevice()
{
    Shown shown(someEntries());
    auto *devices = shown.child<QComboBox>(u"timelineDevices"_s);
    devices->setFocus();
    QTest::keyClick(devices, Qt::Key_Down);
    QCOMPARE(devices->currentText(), u"Without a device"_s);
    QCOMPARE(shown.sequences(), QStringList{u"3"_s});
    QTest::keyClick(devices, Qt::Key_End);
    QCOMPARE(devices->currentText(), u"Device 2"_s);
    QCOMPARE(shown.sequences(), QStringList{u"5"_s});
    // The device that is chosen stays, for the next session's lines.
    shown.dock.clear();
    QCOMPARE(devices->count(), 3);
    QVERIFY(shown.add(someEntries()));
    QCOMPARE(shown.sequences(), QStringList{u"5"_s});
}

void tst_TimelineDock::filterByText()
{
    Shown shown(someEntries());
    QTest::keyClicks(shown.child<QLineEdit>(u"timelineText"_s), u"SETreport"_s);
    QCOMPARE(shown.sequences(), (QStringList{u"1"_s, u"2"_s}));
}

void tst_TimelineDock::theFilterHoldsForLinesThatCome()
{
    Shown shown;
    const QAbstractItemModelTester tester(shown.table->model());
    QTest::keyClicks(shown.child<QLineEdit>(u"timelineText"_s), u"500"_s);
    QVERIFY(shown.add(someEntries()));
    QCOMPARE(shown.sequences(), QStringList{u"5"_s});
    QVERIFY(shown.add(someEntries().mid(0, 4)));
    QCOMPARE(shown.sequences(), QStringList{u"5"_s});
    QCOMPARE(shown.count(), u"Lines: 1 of 9"_s);
}

void tst_TimelineDock::theSelectionSurvivesTheFilter()
{
    Shown shown(someEntries());
    shown.click(1);
    shown.click(4, Qt::ControlModifier);
    QList<Entry> selected;
    connect(&shown.dock, &TimelineDock::selectionChanged, &shown.dock,
            [&selected](const QList<Entry> &entries) { selected = entries; });
    auto *text = shown.child<QLineEdit>(u"timelineText"_s);
    QTest::keyClicks(text, u"signal"_s);
    QCOMPARE(shown.table->selectionModel()->selectedRows().value(0).row(), 1);
    QCOMPARE(selected.size(), 1);
    QCOMPARE(selected.first().sequence, 5);
    QCOMPARE(shown.table->currentIndex().row(), 1);
    QTest::keyClicks(text, u"x"_s);
    QCOMPARE(selected.size(), 0);
}

void tst_TimelineDock::theSelectionIsSignalled()
{
    Shown shown(someEntries());
    QList<quint64> selected;
    connect(&shown.dock, &TimelineDock::selectionChanged, &shown.dock,
            [&selected](const QList<Entry> &entries) {
                selected.clear();
                for (const Entry &entry : entries)
                    selected.append(entry.sequence);
            });
    shown.click(3);
    shown.click(0, Qt::ControlModifier);
    QCOMPARE(selected, (QList<quint64>{1, 4}));
    QTest::keyClick(shown.table, Qt::Key_A, Qt::ControlModifier);
    QCOMPARE(selected, (QList<quint64>{1, 2, 3, 4, 5}));
    shown.dock.clear();
    QCOMPARE(selected, QList<quint64>());
}

void tst_TimelineDock::findWraps()
{
    Shown shown(someEntries());
    shown.click(1);
    QTest::keyClick(shown.table, Qt::Key_F, Qt::ControlModifier);
    auto *find = shown.child<QLineEdit>(u"findText"_s);
    QVERIFY(comes([&] { return find->hasFocus(); }));
    const auto *result = shown.child<QLabel>(u"findResult"_s);
    QTest::keyClicks(find, u"RATEchanged"_s);
    QCOMPARE(shown.table->currentIndex().row(), 3);
    QCOMPARE(result->text(), QString());
    QTest::keyClick(find, Qt::Key_Return);
    QCOMPARE(shown.table->currentIndex().row(), 4);
    QCOMPARE(result->text(), QString());
    QTest::keyClick(find, Qt::Key_F3);
    QCOMPARE(shown.table->currentIndex().row(), 3);
    QCOMPARE(result->text(), u"From the first line again"_s);
    QTest::mouseClick(shown.child<QToolButton>(u"findNext"_s), Qt::LeftButton);
    QCOMPARE(shown.table->currentIndex().row(), 4);
    QTest::keyClick(find, Qt::Key_Escape);
    QVERIFY(!find->isVisible());
    QVERIFY(shown.table->hasFocus());
}

void tst_TimelineDock::findBackwards()
{
    Shown shown(someEntries());
    shown.click(3);
    QTest::keyClick(shown.table, Qt::Key_F, Qt::ControlModifier);
    auto *find = shown.child<QLineEdit>(u"findText"_s);
    QTest::keyClicks(find, u"setReportRate"_s);
    QCOMPARE(shown.table->currentIndex().row(), 0);
    QTest::keyClick(find, Qt::Key_Return, Qt::ShiftModifier);
    QCOMPARE(shown.table->currentIndex().row(), 1);
    QCOMPARE(shown.child<QLabel>(u"findResult"_s)->text(), u"From the last line again"_s);
    QTest::keyClick(shown.table, Qt::Key_F3, Qt::ShiftModifier);
    QCOMPARE(shown.table->currentIndex().row(), 0);
    QTest::mouseClick(shown.child<QToolButton>(u"findPrevious"_s), Qt::LeftButton);
    QCOMPARE(shown.table->currentIndex().row(), 1);
}

void tst_TimelineDock::findWhatIsNotThere()
{
    Shown shown(someEntries());
    shown.click(2);
    QTest::keyClick(shown.table, Qt::Key_F, Qt::ControlModifier);
    QTest::keyClicks(shown.child<QLineEdit>(u"findText"_s), u"zero"_s);
    QCOMPARE(shown.child<QLabel>(u"findResult"_s)->text(), u"Not found"_s);
    QCOMPARE(shown.table->currentIndex().row(), 2);
}

void tst_TimelineDock::aPauseKeepsLinesWaiting()
{
    Shown shown(someEntries().mid(0, 1));
    auto *pause = shown.child<QToolButton>(u"timelinePause"_s);
    // What came just before the pause waits as well.
    shown.dock.addEntries(someEntries().mid(1, 1));
    QTest::mouseClick(pause, Qt::LeftButton);
    QCOMPARE(shown.count(), u"Lines: 1 of 1, waiting: 1"_s);
    shown.dock.addEntries(someEntries().mid(2));
    QCOMPARE(shown.count(), u"Lines: 1 of 1, waiting: 4"_s);
    QCOMPARE(shown.sequences(), QStringList{u"1"_s});
    QTest::keyClick(pause, Qt::Key_Space);
    QCOMPARE(shown.sequences(), (QStringList{u"1"_s, u"2"_s, u"3"_s, u"4"_s, u"5"_s}));
    QCOMPARE(shown.count(), u"Lines: 5 of 5"_s);
}

void tst_TimelineDock::aPauseEndsWhenTooManyLinesWait()
{
    Shown shown;
    auto *pause = shown.child<QToolButton>(u"timelinePause"_s);
    QTest::mouseClick(pause, Qt::LeftButton);
    shown.dock.addEntries(QList<Entry>(TimelineModel::defaultLimit, entryOf(1, u"log"_s, {})));
    QVERIFY(pause->isChecked());
    QCOMPARE(shown.model().entryCount(), 0);
    shown.dock.addEntries({entryOf(2, u"call"_s, {})});
    QVERIFY(!pause->isChecked());
    QVERIFY(shown.model().droppedCount() > 0);
    QCOMPARE(shown.model().entry(shown.model().rowCount() - 1).sequence, 2);
}

void tst_TimelineDock::copyTheSelectedLines()
{
    Shown shown(someEntries());
    shown.click(4);
    shown.click(2, Qt::ControlModifier);
    QTest::keyClick(shown.table, Qt::Key_C, Qt::ControlModifier);
    QCOMPARE(QGuiApplication::clipboard()->text(),
             u"    3     3.003 ms  debug Mouse: rate\n"
             "    5     5.005 ms  [2]  signal reportRateChanged(500)\n"_s);
    QTest::keyClick(shown.table, Qt::Key_C, Qt::ControlModifier | Qt::ShiftModifier);
    QCOMPARE(QGuiApplication::clipboard()->text(), u"debug Mouse: rate\nsignal reportRateChanged(500)\n"_s);
    shown.click(4);
    QTest::keyClick(shown.table, Qt::Key_C, Qt::ControlModifier | Qt::ShiftModifier);
    QCOMPARE(QGuiApplication::clipboard()->text(), u"signal reportRateChanged(500)"_s);
    shown.child<QAction>(u"timelineCopyExpectation"_s)->trigger();
    QCOMPARE(QGuiApplication::clipboard()->text(), u"= signal reportRateChanged(500)"_s);
}

void tst_TimelineDock::copyAsExpectation_data()
{
    QTest::addColumn<QStringList>("scenario");
    const QStringList oneMouse{u"mouse 1"_s, u"start"_s};
    QTest::newRow("one-device") << oneMouse;
    QTest::newRow("two-receivers") << oneMouse + QStringList{u"receiver 2"_s, u"mouse 7"_s, u"start"_s};
}

// What was copied goes as the scenario wants.
void tst_TimelineDock::copyAsExpectation()
{
    QFETCH(const QStringList, scenario);
    StartedEngine started;
    const TimelineDock dock(&started.engine);
    QVERIFY(started.play(scenario));
    const auto before = int(started.entries.size());
    QVERIFY(started.play({u"setReportRate 250"_s}));
    const auto *model = dock.findChild<TimelineModel *>();
    QVERIFY(comes([&] { return model->entryCount() == started.entries.size(); }));
    auto *table = dock.findChild<QTableView *>();
    table->selectionModel()->select({model->index(before, 0), model->index(model->rowCount() - 1, 0)},
                                    QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    dock.findChild<QAction *>(u"timelineCopyExpectation"_s)->trigger();
    const QStringList lines = QGuiApplication::clipboard()->text().split(u'\n', Qt::SkipEmptyParts);
    QVERIFY(lines.size() > 5);
    QVERIFY(started.play(lines + QStringList{u"settle"_s}));
    for (const Answer &answer : std::as_const(started.answers))
        QVERIFY2(answer.result == u"done"_s, qPrintable(answer.command + u": "_s + answer.message));
}

void tst_TimelineDock::exportAsText()
{
    const QTemporaryDir folder;
    Shown shown(someEntries());
    QTest::keyClicks(shown.child<QLineEdit>(u"timelineText"_s), u"setReportRate"_s);
    shown.dock.findChild<QAction *>(u"timelineExportText"_s)->trigger();
    auto *dialog = shown.child<QFileDialog>(u"timelineExportDialog"_s);
    dialog->selectFile(folder.filePath(u"lines"_s));
    QVERIFY(QMetaObject::invokeMethod(dialog, "accept"));
    QCOMPARE(contentOf(folder.filePath(u"lines.txt"_s)),
             "    1     1.001 ms  [1]  call setReportRate(250)\n"
             "    2     2.002 ms  [1]  receiver setReportRate(250) -> true\n");
}

void tst_TimelineDock::exportAsJsonLines()
{
    const QTemporaryDir folder;
    Shown shown(someEntries());
    shown.choose(u"timelineKindMenu"_s, u"signal"_s);
    shown.dock.findChild<QAction *>(u"timelineExportJson"_s)->trigger();
    auto *dialog = shown.child<QFileDialog>(u"timelineExportDialog"_s);
    dialog->selectFile(folder.filePath(u"lines"_s));
    QVERIFY(QMetaObject::invokeMethod(dialog, "accept"));
    QCOMPARE(contentOf(folder.filePath(u"lines.jsonl"_s)), "{\"schemaVersion\":1}\n"
                                                           "{\"kind\":\"call\",\"sequence\":1}\n"
                                                           "{\"kind\":\"receiver\",\"sequence\":2}\n"
                                                           "{\"kind\":\"log\",\"sequence\":3}\n");
}

void tst_TimelineDock::exportToAFolderThatIsNotThere()
{
    const QTemporaryDir folder;
    const QString file = folder.filePath(u"missing/lines.txt"_s);
    Shown shown(someEntries());
    shown.dock.findChild<QAction *>(u"timelineExportText"_s)->trigger();
    auto *dialog = shown.child<QFileDialog>(u"timelineExportDialog"_s);
    Q_EMIT dialog->fileSelected(file);
    const auto *box = shown.child<QMessageBox>(u"timelineExportError"_s);
    QVERIFY(box);
    QVERIFY2(box->text().startsWith(file + u" cannot be written: "_s), qPrintable(box->text()));
    QVERIFY(QDir(folder.path()).isEmpty());
}

void tst_TimelineDock::clearAlsoDropsWhatWaits()
{
    Shown shown(someEntries());
    QTest::mouseClick(shown.child<QToolButton>(u"timelinePause"_s), Qt::LeftButton);
    shown.dock.addEntries(someEntries());
    QTest::mouseClick(shown.child<QToolButton>(u"timelineClear"_s), Qt::LeftButton);
    QCOMPARE(shown.count(), u"Lines: 0 of 0, waiting: 0"_s);
    QTest::mouseClick(shown.child<QToolButton>(u"timelinePause"_s), Qt::LeftButton);
    QCOMPARE(shown.sequences(), QStringList());
}

void tst_TimelineDock::theNewestLineIsFollowed()
{
    Shown shown(manyEntries(100));
    const QScrollBar *bar = shown.table->verticalScrollBar();
    QVERIFY(comes([&] { return bar->maximum() > 0 && bar->value() == bar->maximum(); }));
    QVERIFY(shown.add(manyEntries(100, 101)));
    QCOMPARE(bar->value(), bar->maximum());
    QCOMPARE(shown.table->rowAt(shown.table->viewport()->height() - 1), 199);
    // Nor does a lower table lose it.
    QTest::keyClick(shown.table, Qt::Key_F, Qt::ControlModifier);
    shown.dock.resize(900, 200);
    QVERIFY(shown.add(manyEntries(100, 201)));
    QCOMPARE(bar->value(), bar->maximum());
}

void tst_TimelineDock::aTableThatIsScrolledUpStaysThere()
{
    Shown shown(manyEntries(100));
    QScrollBar *bar = shown.table->verticalScrollBar();
    QVERIFY(comes([&] { return bar->maximum() > 0; }));
    shown.click(99);
    QTest::keyClick(shown.table, Qt::Key_PageUp);
    QTest::keyClick(shown.table, Qt::Key_PageUp);
    const int place = bar->value();
    QVERIFY(place < bar->maximum());
    QVERIFY(shown.add(manyEntries(100, 101)));
    QCOMPARE(bar->value(), place);
    QTest::keyClick(shown.table, Qt::Key_End, Qt::ControlModifier);
    QVERIFY(shown.add(manyEntries(100, 201)));
    QCOMPARE(bar->value(), bar->maximum());
}

void tst_TimelineDock::aBurstIsOneInsertion()
{
    Shown shown;
    const QSignalSpy insertions(shown.table->model(), &QAbstractItemModel::rowsInserted);
    const QList<Entry> entries = manyEntries(10'000);
    for (const Entry &entry : entries)
        shown.dock.addEntries({entry});
    QVERIFY(comes([&] { return shown.table->model()->rowCount() == 10'000; }));
    QCOMPARE(insertions.size(), 1);
}

// Scrolling paints what comes into view, whatever the number of lines, and no row is measured.
void tst_TimelineDock::theLengthOfTheTimelineCostsNothing()
{
    QList<int> painted;
    for (const int count : {1'000, 100'000}) {
        CountingDelegate delegate;
        Shown shown(manyEntries(count));
        shown.table->setItemDelegate(&delegate);
        QCoreApplication::processEvents();
        shown.table->scrollToTop();
        shown.table->viewport()->repaint();
        delegate.painted = 0;
        for (int page = 0; page < 20; ++page) {
            shown.table->verticalScrollBar()->triggerAction(QScrollBar::SliderPageStepAdd);
            shown.table->viewport()->repaint();
        }
        painted.append(delegate.painted);
        QVERIFY(painted.last() > 0);
        QVERIFY(shown.add(manyEntries(10)));
        QCOMPARE(delegate.measured, 0);
    }
    QCOMPARE(painted.last(), painted.first());
}

void tst_TimelineDock::theOldestLinesAreDropped()
{
    TimelineModel model(nullptr, 100);
    const QAbstractItemModelTester tester(&model);
    TimelineFilter filter;
    filter.device.emplace(1);
    model.setFilter(filter);
    QList<Entry> entries = manyEntries(101);
    for (qsizetype index = 0; index < entries.size(); index += 2)
        entries[index].device = 2;
    model.append(entries.first(100));
    QCOMPARE(model.droppedCount(), 0);
    QCOMPARE(model.position(10), 21);
    model.append(entries.last(1));
    QCOMPARE(model.droppedCount(), 11);
    QCOMPARE(model.entryCount(), 90);
    QCOMPARE(model.rowCount(), 45);
    QCOMPARE(model.entry(0).sequence, 12);
    QCOMPARE(model.position(0), 11);
    QCOMPARE(model.rowOf(11), 0);
    QCOMPARE(model.rowOf(12), -1);
    QCOMPARE(model.rowOf(9), -1);
    model.append(manyEntries(1'000, 1'001));
    QCOMPARE(model.entryCount(), 90);
    QCOMPARE(model.entry(89).sequence, 2'000);
    model.clear();
    QCOMPARE(model.droppedCount(), 0);
}

void tst_TimelineDock::theKeyboardReachesAll()
{
    Shown shown(someEntries());
    shown.child<QToolButton>(u"timelineKinds"_s)->setFocus();
    QStringList reached;
    for (QWidget *widget = QApplication::focusWidget(); !reached.contains(widget->objectName());
         widget = QApplication::focusWidget()) {
        reached.append(widget->objectName());
        QVERIFY2(!widget->accessibleName().isEmpty(), qPrintable(widget->objectName()));
        QTest::keyClick(widget, Qt::Key_Tab);
    }
    QCOMPARE(QApplication::focusWidget()->objectName(), reached.first());
    QCOMPARE(reached,
             (QStringList{u"timelineKinds"_s, u"timelineDevices"_s, u"timelineText"_s, u"timelinePause"_s,
                          u"timelineClear"_s, u"timelineExport"_s, u"timelineTable"_s}));
}

void tst_TimelineDock::kindsAreReadableOnEachPalette()
{
    const QPalette before = QGuiApplication::palette();
    const Shown shown;
    for (const QColor &base : {QColor(Qt::white), QColor(0x1e, 0x1e, 0x1e)}) {
        QPalette palette = before;
        palette.setColor(QPalette::Base, base);
        QApplication::setPalette(palette);
        TimelineModel model;
        for (const QString &kind :
             {u"call"_s, u"receiver"_s, u"report"_s, u"signal"_s, u"host"_s, u"verdict"_s})
            model.append({entryOf(1, kind, {})});
        for (int row = 0; row < model.rowCount(); ++row) {
            const QModelIndex index = model.index(row, TimelineModel::Kind);
            const auto color = index.data(Qt::ForegroundRole).value<QColor>();
            QVERIFY2(contrast(color, base) >= 4.5, qPrintable(index.data().toString()));
        }
    }
    QApplication::setPalette(before);
}

void tst_TimelineDock::aSessionWithTheLibrary()
{
    StartedEngine started;
    const TimelineDock dock(&started.engine);
    QVERIFY(started.play({u"mouse 1"_s, u"start"_s, u"setReportRate 250"_s, u"settle"_s}));
    const auto *model = dock.findChild<TimelineModel *>();
    QVERIFY(comes([&] { return model->entryCount() == started.entries.size(); }));
    QStringList texts;
    for (int row = 0; row < model->rowCount(); ++row) {
        QCOMPARE(model->entry(row).sequence, quint64(row) + 1);
        texts.append(model->index(row, TimelineModel::Text).data().toString());
    }
    QVERIFY(texts.contains(u"call setReportRate(250)"_s));
    QVERIFY(texts.contains(u"signal reportRateChanged(250)"_s));
}

void tst_TimelineDock::theLinesStayUntilTheNextStart()
{
    StartedEngine started;
    const TimelineDock dock(&started.engine);
    QVERIFY(started.play({u"mouse 1"_s, u"start"_s}));
    const auto *model = dock.findChild<TimelineModel *>();
    QVERIFY(comes([&] { return model->rowCount() > 0; }));
    started.engine.stop();
    QVERIFY(comes([&] { return started.ends.size() == 1; }));
    QVERIFY(model->rowCount() > 0);
    const QSignalSpy starts(&started.engine, &Engine::started);
    started.engine.start();
    QVERIFY(comes([&] { return starts.size() == 1; }));
    QCOMPARE(model->rowCount(), 0);
}

QTEST_MAIN(tst_TimelineDock)
#include "tst_TimelineDock.moc"
