#include "RefusalChapters.h"
#include "RefusalStory.h"
#include "TimelineText.h"

#include <QtTest/QTest>

using namespace Qt::StringLiterals;

namespace {

// Of the whole story.
QStringList expectedLines(int refusedCall)
{
    QString lines;
    int call = 0;
    for (const Chapter &chapter : chapters()) {
        QString chapterLines = chapter.lines;
        for (const Refusal &refusal : chapter.refusals) {
            if (++call == refusedCall)
                chapterLines = refusal.lines;
        }
        lines += chapterLines;
    }
    return linesOf(lines);
}

// Whatever is refused: the mouse has the last word.
QString valuesAtTheEnd()
{
    return u"rate 1000 of 250 1000, slots 1100 1200 1300 1400 1500, active 2, DPI 750, button 9"_s;
}

}  // namespace

// One long story, as often as the receiver has calls in it that it can refuse, and each time another one is
// refused.
class tst_RefusalSweep : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void nothingIsRefused();
    void eachCallIsRefusedOnce_data();
    void eachCallIsRefusedOnce();
};

void tst_RefusalSweep::nothingIsRefused()
{
    const StorySeen story = playStory(0);
    COMPARE_LINES(story.lines, expectedLines(0));
    QCOMPARE(story.refusals, 0);
    QCOMPARE(story.flagProblem, QString());
    QCOMPARE(story.values, valuesAtTheEnd());
    int rows = 0;
    for (const Chapter &chapter : chapters())
        rows += static_cast<int>(chapter.refusals.size());
    QCOMPARE(rows, story.calls);
}

void tst_RefusalSweep::eachCallIsRefusedOnce_data()
{
    QTest::addColumn<int>("refusedCall");
    int call = 0;
    for (const Chapter &chapter : chapters()) {
        for (const Refusal &refusal : chapter.refusals)
            QTest::addRow("%s-%s", chapter.name, refusal.refused) << ++call;
    }
}

void tst_RefusalSweep::eachCallIsRefusedOnce()
{
    QFETCH(const int, refusedCall);
    const StorySeen story = playStory(refusedCall);
    COMPARE_LINES(story.lines, expectedLines(refusedCall));
    QCOMPARE(story.refusals, 1);
    QCOMPARE(story.flagProblem, QString());
    QCOMPARE(story.values, valuesAtTheEnd());
}

QTEST_GUILESS_MAIN(tst_RefusalSweep)
#include "tst_RefusalSweep.moc"
