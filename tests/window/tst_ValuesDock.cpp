#include "DockFixture.h"
#include "Eventually.h"
#include "ValuesDock.h"

#include <QtGui/QClipboard>
#include <QtGui/QGuiApplication>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QTableView>

#include <functional>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

/// The dock and its parts by name.
struct ShownDock : DockFixture<ValuesDock>
{
    explicit ShownDock(const QString &library = QStringLiteral(KVX_LIBRARY)) : DockFixture({}, library) {}

    /// Also waits for the last line's state, which comes behind its answer.
    bool playToEnd(const QStringList &scenario)
    {
        return DockFixture::play(scenario + QStringList{QString()});
    }

    QStringList names() const { return column(ValuesModel::Name); }
    QStringList column(int column) const
    {
        QStringList texts;
        for (int row = 0; row < rows().rowCount(); ++row)
            texts.append(rows().index(row, column).data().toString());
        return texts;
    }
    QModelIndex index(const QString &name, int column) const
    {
        return rows().index(static_cast<int>(names().indexOf(name)), column);
    }
    QString text(const QString &name, int column) const { return index(name, column).data().toString(); }
    /// The names of the rows with a mark.
    QStringList marked() const
    {
        QStringList found;
        const QStringList all = names();
        for (const QString &name : all) {
            if (!text(name, ValuesModel::Note).isEmpty())
                found.append(name);
        }
        return found;
    }

    const QAbstractItemModel &rows() const { return *table->model(); }

    QTableView *table = widget<QTableView>("valuesTable");
    QLineEdit *filter = widget<QLineEdit>("valuesFilter");
    QCheckBox *onlyDifferences = widget<QCheckBox>("valuesOnlyDifferences");
    QPushButton *copy = widget<QPushButton>("valuesCopy");
    QLabel *summary = widget<QLabel>("valuesSummary");
};

}  // namespace

/// Not a connection: in the cross-built test program lists of numbers cannot be arguments of one.
class WatchingView : public QTableView
{
public:
    explicit WatchingView(std::function<void()> changed) : m_changed(std::move(changed)) {}

protected:
    void dataChanged(const QModelIndex &first, const QModelIndex &last, const QList<int> &roles) override
    {
        QTableView::dataChanged(first, last, roles);
        m_changed();
    }

private:
    std::function<void()> m_changed;
};

class tst_ValuesDock : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aValueIsBesideItsLastSignal();
    void eachDeviceHasItsOwn();
    void aSignalWithAnotherValueIsMarked();
    void aMissingSignalIsMarked_data();
    void aMissingSignalIsMarked();
    void aSoundSessionHasNoMark();
    void aSecondStartBeginsAgain();
    void aChangeFlashes();
    void rowsAreFiltered();
    void copiedRowsAreLinesOfAScenario();
    void aCrashLeavesTheValues();
};

void tst_ValuesDock::aValueIsBesideItsLastSignal()
{
    ShownDock shown;
    QVERIFY(shown.playToEnd({}));
    QCOMPARE(shown.rows().rowCount(), 0);
    QCOMPARE(shown.summary->text(), u"There is no device."_s);

    QVERIFY(shown.playToEnd({u"mouse 1"_s, u"start"_s, u"setReportRate 250"_s}));
    KVX_EVENTUALLY_EQUAL(shown.text(u"reportRate"_s, ValuesModel::Value), u"250"_s);
    KVX_EVENTUALLY_EQUAL(shown.text(u"reportRate"_s, ValuesModel::LastSignal), u"250"_s);
    QCOMPARE(shown.text(u"isReportRateChangePending"_s, ValuesModel::LastSignal), u"false"_s);
    QCOMPARE(shown.text(u"isReportRateSupported"_s, ValuesModel::Value), u"true"_s);
    QCOMPARE(shown.text(u"isReportRateSupported"_s, ValuesModel::LastSignal), QString());
    QCOMPARE(shown.marked(), QStringList());

    // A list is written as the getter's is.
    QVERIFY(shown.playToEnd({u"setDpiSlotValues 400 800 1600 2400 3200"_s}));
    KVX_EVENTUALLY_EQUAL(shown.text(u"dpiSlotValues"_s, ValuesModel::LastSignal),
                         u"400 800 1600 2400 3200"_s);
    QCOMPARE(shown.text(u"dpiSlotValues"_s, ValuesModel::Value), u"400 800 1600 2400 3200"_s);
    QCOMPARE(shown.marked(), QStringList());
}

void tst_ValuesDock::eachDeviceHasItsOwn()
{
    ShownDock shown;
    QVERIFY(shown.playToEnd({u"mouse 1"_s, u"start"_s, u"setReportRate 250"_s, u"mouse 2"_s, u"start"_s,
                             u"setReportRate 125"_s}));
    KVX_EVENTUALLY_EQUAL(shown.text(u"reportRate"_s, ValuesModel::LastSignal), u"125"_s);
    KVX_EVENTUALLY_EQUAL(shown.summary->text(), u"Device 2: every value is as its last signal."_s);
    QVERIFY(shown.playToEnd({u"use 1"_s}));
    KVX_EVENTUALLY_EQUAL(shown.text(u"reportRate"_s, ValuesModel::LastSignal), u"250"_s);
    QCOMPARE(shown.text(u"reportRate"_s, ValuesModel::Value), u"250"_s);
    QCOMPARE(shown.summary->text(), u"Device 1: every value is as its last signal."_s);
    QVERIFY(shown.playToEnd({u"remove"_s}));
    KVX_EVENTUALLY_EQUAL(shown.text(u"reportRate"_s, ValuesModel::Value), u"125"_s);
    QVERIFY(shown.playToEnd({u"remove"_s}));
    KVX_EVENTUALLY_EQUAL(shown.summary->text(), u"There is no device."_s);
    QCOMPARE(shown.rows().rowCount(), 0);
}

void tst_ValuesDock::aSignalWithAnotherValueIsMarked()
{
    ShownDock shown;
    QVERIFY(shown.playToEnd({u"mouse 1"_s, u"start"_s, u"call reportRateChanged 999"_s}));
    KVX_EVENTUALLY_EQUAL(shown.marked(), QStringList{u"reportRate"_s});
    QCOMPARE(shown.text(u"reportRate"_s, ValuesModel::LastSignal), u"999"_s);
    QCOMPARE(shown.text(u"reportRate"_s, ValuesModel::Note), u"differs"_s);
    QVERIFY(
        !shown.index(u"reportRate"_s, ValuesModel::Note).data(Qt::DecorationRole).value<QIcon>().isNull());
    QVERIFY(shown.index(u"dpiMin"_s, ValuesModel::Note).data(Qt::DecorationRole).isNull());
    KVX_EVENTUALLY_EQUAL(shown.summary->text(), u"Device 1: values that no signal announced: 1"_s);

    QVERIFY(shown.playToEnd({u"setReportRate 250"_s}));
    KVX_EVENTUALLY(shown.marked().isEmpty());
}

void tst_ValuesDock::aMissingSignalIsMarked_data()
{
    QTest::addColumn<QString>("library");
    QTest::addColumn<QStringList>("marked");
    QTest::newRow("sound") << QStringLiteral(KVX_LIBRARY) << QStringList();
    QTest::newRow("broken") << brokenLibrary(u"report-rate-flag-without-signal"_s)
                            << QStringList{u"isReportRateChangePending"_s};
}

void tst_ValuesDock::aMissingSignalIsMarked()
{
    QFETCH(const QString, library);
    QFETCH(const QStringList, marked);
    ShownDock shown(library);
    QVERIFY(shown.playToEnd(
        {u"mouse 1"_s, u"start"_s, u"fault setReportRate drop"_s, u"setReportRate 250 => pending"_s}));
    KVX_EVENTUALLY_EQUAL(shown.text(u"isReportRateChangePending"_s, ValuesModel::Value), u"true"_s);
    KVX_EVENTUALLY_EQUAL(shown.text(u"reportRate"_s, ValuesModel::LastSignal), u"250"_s);
    QCOMPARE(shown.marked(), marked);
    QTest::mouseClick(shown.onlyDifferences, Qt::LeftButton);
    QCOMPARE(shown.names(), marked);
    if (!marked.isEmpty())
        QCOMPARE(shown.text(marked.first(), ValuesModel::Note), u"not signalled"_s);
}

void tst_ValuesDock::aSoundSessionHasNoMark()
{
    ShownDock shown;
    const QStringList session{u"mouse 1"_s,
                              u"start"_s,
                              u"press dpi"_s,
                              u"release dpi"_s,
                              u"setDpiSlotValues 400 65536 +800 x 3200"_s,
                              u"setActiveDpiSlotIndex 2"_s,
                              u"setDpiButtonId 6"_s,
                              u"report setFirmwareVersion 777"_s,
                              u"drain 30"_s,
                              u"sleep"_s,
                              u"wake"_s,
                              u"disbaleButtonsOrKeys 4"_s,
                              u"press 4"_s,
                              u"release 4"_s,
                              u"resetSettings"_s,
                              u"fault setReportRate refuse"_s,
                              u"setReportRate 250 => refused"_s,
                              u"stop"_s};
    for (const QString &line : session) {
        QVERIFY(shown.playToEnd({line}));
        KVX_EVENTUALLY(shown.marked().isEmpty());
    }
}

void tst_ValuesDock::aSecondStartBeginsAgain()
{
    ShownDock shown;
    QVERIFY(shown.playToEnd({u"mouse 1"_s, u"start"_s, u"call reportRateChanged 999"_s}));
    KVX_EVENTUALLY_EQUAL(shown.marked(), QStringList{u"reportRate"_s});
    // It also appends the report rates without a signal.
    QVERIFY(shown.playToEnd({u"start"_s}));
    KVX_EVENTUALLY(shown.marked().isEmpty());
}

void tst_ValuesDock::aChangeFlashes()
{
    ShownDock shown;
    QVERIFY(shown.playToEnd({u"mouse 1"_s, u"start"_s}));
    KVX_EVENTUALLY_EQUAL(shown.text(u"reportRate"_s, ValuesModel::Value), u"500"_s);
    const auto flashes = [&](const QString &name, int column) {
        return !shown.index(name, column).data(Qt::BackgroundRole).isNull();
    };
    // As a view that repaints what has changed sees it.
    QSet<int> flashed;
    QSet<int> flashing;
    WatchingView view([&] {
        flashing.clear();
        for (int column = 0; column < ValuesModel::ColumnCount; ++column) {
            if (flashes(u"reportRate"_s, column) && !flashes(u"modelCode"_s, column))
                flashing.insert(column);
        }
        flashed |= flashing;
    });
    view.setModel(shown.table->model());
    QVERIFY(shown.playToEnd({u"setReportRate 250"_s}));
    KVX_EVENTUALLY_EQUAL(flashed, (QSet<int>{ValuesModel::Value, ValuesModel::LastSignal}));
    KVX_EVENTUALLY(flashing.isEmpty());
}

void tst_ValuesDock::rowsAreFiltered()
{
    ShownDock shown;
    QVERIFY(shown.playToEnd({u"mouse 1"_s, u"start"_s}));
    KVX_EVENTUALLY(shown.names().contains(u"dpiMin"_s));
    QTest::keyClicks(shown.filter, u"REPORTRATE"_s);
    QCOMPARE(shown.names(), (QStringList{u"isReportRateChangePending"_s, u"isReportRateSupported"_s,
                                         u"reportRate"_s, u"reportRateValues"_s}));
    QTest::mouseClick(shown.onlyDifferences, Qt::LeftButton);
    QCOMPARE(shown.names(), QStringList());
    QVERIFY(shown.playToEnd({u"call reportRateChanged 999"_s, u"call dpiMinChanged 1"_s}));
    KVX_EVENTUALLY_EQUAL(shown.names(), QStringList{u"reportRate"_s});
    for (int i = 0; i < 10; ++i)
        QTest::keyClick(shown.filter, Qt::Key_Backspace);
    KVX_EVENTUALLY_EQUAL(shown.names(), (QStringList{u"dpiMin"_s, u"reportRate"_s}));
}

void tst_ValuesDock::copiedRowsAreLinesOfAScenario()
{
    ShownDock shown;
    QVERIFY(shown.playToEnd({u"mouse 1 ppid=\"a # \\\\b\""_s, u"start"_s}));
    KVX_EVENTUALLY(shown.names().contains(u"reportRate"_s));
    QTest::mouseClick(shown.table->viewport(), Qt::LeftButton, {},
                      shown.table->visualRect(shown.index(u"reportRate"_s, 0)).center());
    QTest::keySequence(shown.table, QKeySequence::Copy);
    QCOMPARE(QGuiApplication::clipboard()->text(), u"expect reportRate 500\n"_s);

    // All of them, by the button: each is as the library has it.
    QTest::keySequence(shown.table, QKeySequence::SelectAll);
    QTest::mouseClick(shown.copy, Qt::LeftButton);
    const QStringList lines = QGuiApplication::clipboard()->text().split(u'\n', Qt::SkipEmptyParts);
    QCOMPARE(lines.size(), shown.rows().rowCount());
    const qsizetype before = shown.answers.size();
    QVERIFY(shown.playToEnd(lines));
    for (qsizetype i = 0; i < lines.size(); ++i) {
        const Answer &answer = shown.answers.at(before + i);
        QVERIFY2(answer.result == u"done", qUtf8Printable(lines.at(i) + u": "_s + answer.message));
    }
}

void tst_ValuesDock::aCrashLeavesTheValues()
{
    ShownDock shown;
    QVERIFY(shown.playToEnd({u"mouse 1"_s, u"start"_s, u"setReportRate 250"_s}));
    KVX_EVENTUALLY_EQUAL(shown.text(u"reportRate"_s, ValuesModel::LastSignal), u"250"_s);
    shown.engine.stop();
    KVX_EVENTUALLY_EQUAL(shown.ends.size(), 1);
    QCOMPARE(shown.text(u"reportRate"_s, ValuesModel::LastSignal), u"250"_s);
    QCOMPARE(shown.summary->text(), u"The session has ended. Device 1 as it was last."_s);
    shown.engine.start();
    KVX_EVENTUALLY_EQUAL(shown.rows().rowCount(), 0);
}

QTEST_MAIN(tst_ValuesDock)
#include "tst_ValuesDock.moc"
