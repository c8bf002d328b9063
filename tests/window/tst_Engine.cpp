#include "StartedEngine.h"

using namespace Qt::StringLiterals;

class tst_Engine : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aSessionOfLines();
};

void tst_Engine::aSessionOfLines()
{
    StartedEngine started;
    QVERIFY(started.play({u"mouse 1"_s, u"start"_s, u"setReportRate 250"_s}));
    QCOMPARE(started.answers.size(), 3);
    QCOMPARE(started.answers.last().result, u"done"_s);
    QVERIFY(!started.entries.isEmpty());
}

QTEST_MAIN(tst_Engine)
#include "tst_Engine.moc"
