#include "Timeline.h"
#include "TimelineFile.h"
#include "TimelineText.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>
#include <QtTest/QTest>

using namespace Qt::StringLiterals;

namespace {

constexpr const char *folderVariable = "KVX_TIMELINE_FOLDER";

QByteArrayList linesOfTheOnlyFile(const QString &folder)
{
    const QStringList files = QDir(folder).entryList(QDir::Files);
    if (files.size() != 1)
        return {};
    QFile file(QDir(folder).filePath(files.constFirst()));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return file.readAll().split('\n');
}

}  // namespace

class tst_TimelineFile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void nothingIsWrittenUnasked();
    void everyTimelineOfTheProcessIsKept();
};

void tst_TimelineFile::nothingIsWrittenUnasked()
{
    const QTemporaryDir folder;
    const QString before = QDir::currentPath();
    QVERIFY(QDir::setCurrent(folder.path()));
    qunsetenv(folderVariable);
    Timeline timeline;
    keepInTimelineFile(timeline);
    timeline.recordVerdict(u"v"_s);
    QVERIFY(QDir::setCurrent(before));
    COMPARE_LINES(QDir(folder.path()).entryList(QDir::Files), {});
}

void tst_TimelineFile::everyTimelineOfTheProcessIsKept()
{
    const QTemporaryDir folder;
    qputenv(folderVariable, folder.path().toUtf8());
    QByteArrayList expected{Timeline::jsonHeader()};
    for (const QString &text : {u"one"_s, u"two"_s}) {
        Timeline timeline;
        timeline.recordVerdict(u"before it is kept"_s);
        keepInTimelineFile(timeline);
        timeline.record(TimelineEntry::Kind::Call, 42, text, {1, true});
        timeline.recordLog(u"debug"_s, u"a.category"_s, text);
        const QList<TimelineEntry> kept = timeline.entriesAfter(1);
        for (const TimelineEntry &entry : kept)
            expected.append(Timeline::jsonLine(entry));
        timeline.clear();
    }
    expected.append(QByteArray());
    qunsetenv(folderVariable);
    // While the program still runs: nothing waits in a buffer for its end.
    const QByteArrayList actual = linesOfTheOnlyFile(folder.path());
    QCOMPARE(actual, expected);
}

QTEST_GUILESS_MAIN(tst_TimelineFile)
#include "tst_TimelineFile.moc"
