#include "OtherThread.h"
#include "PluginFixture.h"
#include "TimelineText.h"

#include <QtTest/QTest>

#include <array>

using namespace Qt::StringLiterals;

namespace {

using SlotValues = std::array<quint16, 5>;

constexpr SlotValues factoryValues{800, 1600, 2400, 3200, 4000};
const char *const factoryTexts = "800 1600 2400 3200 4000";

QStringList words(const char *text)
{
    return QString::fromUtf8(text).split(u' ');
}

QString joined(const SlotValues &values)
{
    QStringList texts;
    for (const quint16 value : values)
        texts.append(QString::number(value));
    return texts.join(u", "_s);
}

QString requestCall(const QStringList &texts)
{
    return u"call setDpiSlotValues([\"%1\"])"_s.arg(texts.join(u"\", \""_s));
}

QString confirmationCall(const SlotValues &values)
{
    return u"call dpiSlotValuesConfirmed([%1])"_s.arg(joined(values));
}

QString settingLine(const SlotValues &values)
{
    return debugLine(u"Setting dpi slot values :  QList("_s + joined(values) + u')');
}

QString sentLine(const SlotValues &values, bool isAccepted = true, int button = 15, int slot = 2)
{
    return u"receiver setDpiSlotValues([%1], %2, %3) -> %4"_s.arg(joined(values))
        .arg(button)
        .arg(slot)
        .arg(isAccepted ? u"true"_s : u"false"_s);
}

QString pendingSignal(bool isPending)
{
    return u"signal isDpiSlotValuesChangePendingChanged(%1)"_s.arg(isPending ? u"true"_s : u"false"_s);
}

QString valuesSignal(const SlotValues &values)
{
    QStringList texts;
    for (const quint16 value : values)
        texts.append(u'"' + QString::number(value) + u'"');
    return u"signal dpiSlotValuesChanged([%1])"_s.arg(texts.join(u", "_s));
}

QStringList changeLines(const QStringList &inner)
{
    return QStringList{debugLine(u"onDpiSlotValuesChanged enter"_s)} + inner +
           QStringList{debugLine(u"onDpiSlotValuesChanged exit"_s)};
}

QString updatingLine(const SlotValues &values)
{
    return debugLine(u"Updating dpiSlotValues :  QList("_s + joined(values) + u')');
}

QString exitLine()
{
    return debugLine(u"setDpiSlotValues exit"_s);
}

QString refusedLine()
{
    return warningLine(u"Dongle set dpi slot values failed"_s);
}

/// A started device that knows its range.
HostedDevice &ranged(PluginFixture &fixture, int minimum = 100, int maximum = 8000)
{
    HostedDevice &device = fixture.started();
    Q_EMIT fixture.receiver.dpiMinChanged(minimum);
    Q_EMIT fixture.receiver.dpiMaxChanged(maximum);
    fixture.take();
    return device;
}

/// As ranged(), with a request for these values pending.
HostedDevice &pending(PluginFixture &fixture, const char *texts)
{
    HostedDevice &device = ranged(fixture);
    device.setDpiSlotValues(words(texts));
    fixture.take();
    return device;
}

// The enter line names an address, which is checked for being one, and left out.
QStringList takeConfirmation(PluginFixture &fixture)
{
    QStringList lines = fixture.take();
    const QString enter = debugLine(u"dpiSlotValuesConfirmed enter, values : 0x"_s);
    if (lines.size() < 2 || !lines.at(1).startsWith(enter))
        return {u"no enter line with an address: "_s + lines.join(u'\n')};
    return lines.mid(2);
}

}  // namespace

class tst_DpiSlotValues : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void requestIsPendingUntilConfirmed();
    void requestWithoutRange_data();
    void requestWithoutRange();
    void smallestRangeIsEnough();
    void rangeLostAgainRefusesRequests();
    void requestOfAnotherLength_data();
    void requestOfAnotherLength();
    void unknownRangeIsToldBeforeTheLength();
    void slotTexts_data();
    void slotTexts();
    void everyRejectedEntryIsWarnedOf();
    void allEntriesRejectedIsSentAllTheSame();
    void invertedRangeRejectsAllButTheSpecialValues();
    void requestCarriesButtonAndActiveSlot();
    void requestWithoutReceiver();
    void confirmationWithoutReceiver();
    void refusedFromIdle();
    void refusedWhilePending();
    void secondRequestReplacesTheFirst();
    void sameValuesAreSentAgain();
    void confirmationWithNothingPending();
    void confirmationThatDisagreesSendsAgain_data();
    void confirmationThatDisagreesSendsAgain();
    void confirmationRepeatsWithoutLimit();
    void refusedRepeatEndsTheRequest();
    void requestedZeroAgreesWithAnything();
    void requestedLargestWordMustBeConfirmed();
    void confirmationOfTheKnownValues();
    void confirmationAfterARefusedRequestIsIgnored();
    void storedValuesAreThereInTheSignal();
    void reportUnasked();
    void reportOfTheSameValues();
    void reportWhilePendingLeavesTheRequest();
    void reportTakesAnyWords();
    void valuesStayWhenTheRangeChanges();
    void currentDpiDoesNotFollowTheSlotsValue();
    void otherThreadChangesAtOnceAndSignalsLater();
    void otherThreadSignalsCarryTheValueAtDelivery();
    void reportFromAnotherThreadWhileRequesting();
    void requestSurvivesStop();
    void switchesOff();
    void pendingValuesAreKnownWhenTheFlagIsSignalled();
    void requestInsideTheValuesSignalEndsWithTheConfirmation_data();
    void requestInsideTheValuesSignalEndsWithTheConfirmation();
    void valuesArePendingUntilTheWarningIsWritten();
    void rangeBeyondAWord_data();
    void rangeBeyondAWord();
    void textsThatEndBeforeMoreDigits();
};

void tst_DpiSlotValues::requestIsPendingUntilConfirmed()
{
    PluginFixture fixture;
    HostedDevice &device = ranged(fixture);
    device.setDpiSlotValues(words(factoryTexts));
    COMPARE_LINES(fixture.take(), {requestCall(words(factoryTexts)), settingLine(factoryValues),
                                   sentLine(factoryValues), pendingSignal(true), exitLine()});
    QVERIFY(device.device()->isDpiSlotValuesChangePending());
    COMPARE_LINES(device.device()->dpiSlotValues(), {});

    device.dpiSlotValuesConfirmed(factoryValues.data());
    COMPARE_LINES(takeConfirmation(fixture),
                  changeLines({updatingLine(factoryValues), valuesSignal(factoryValues)}) +
                      QStringList({pendingSignal(false), debugLine(u"dpiSlotValuesConfirmed exit"_s)}));
    QVERIFY(!device.device()->isDpiSlotValuesChangePending());
    QCOMPARE(device.device()->dpiSlotValues(), words(factoryTexts));
}

void tst_DpiSlotValues::requestWithoutRange_data()
{
    QTest::addColumn<int>("minimum");
    QTest::addColumn<int>("maximum");
    QTest::newRow("nothing-known") << 0 << 0;
    QTest::newRow("no-minimum") << 0 << 8000;
    QTest::newRow("no-maximum") << 100 << 0;
    QTest::newRow("negative-minimum") << -100 << 8000;
    QTest::newRow("negative-maximum") << 100 << -1;
}

void tst_DpiSlotValues::requestWithoutRange()
{
    QFETCH(const int, minimum);
    QFETCH(const int, maximum);
    PluginFixture fixture;
    HostedDevice &device = ranged(fixture, minimum, maximum);
    device.setDpiSlotValues(words(factoryTexts));
    COMPARE_LINES(fixture.take(),
                  {requestCall(words(factoryTexts)),
                   warningLine(u"Ignoring SET command, dpi min and max are not set"_s), exitLine()});
    QVERIFY(!device.device()->isDpiSlotValuesChangePending());
}

void tst_DpiSlotValues::smallestRangeIsEnough()
{
    PluginFixture fixture({false, true, false});
    HostedDevice &device = ranged(fixture, 1, 1);
    device.setDpiSlotValues(words("1 1 1 1 2"));
    COMPARE_LINES(fixture.take(),
                  {requestCall(words("1 1 1 1 2")), warningLine(u"Ignoring slot value :  \"2\""_s),
                   sentLine({1, 1, 1, 1, 0}), pendingSignal(true)});
}

void tst_DpiSlotValues::rangeLostAgainRefusesRequests()
{
    PluginFixture fixture;
    HostedDevice &device = pending(fixture, factoryTexts);
    Q_EMIT fixture.receiver.dpiMinChanged(0);
    fixture.take();
    device.setDpiSlotValues(words("1 2 3 4 5"));
    COMPARE_LINES(fixture.take(),
                  {requestCall(words("1 2 3 4 5")),
                   warningLine(u"Ignoring SET command, dpi min and max are not set"_s), exitLine()});
    // The earlier request is still waited for.
    QVERIFY(device.device()->isDpiSlotValuesChangePending());
    device.dpiSlotValuesConfirmed(factoryValues.data());
    QVERIFY(!device.device()->isDpiSlotValuesChangePending());
}

void tst_DpiSlotValues::requestOfAnotherLength_data()
{
    QTest::addColumn<QStringList>("texts");
    QTest::newRow("empty") << QStringList();
    QTest::newRow("four") << words("800 1600 2400 3200");
    QTest::newRow("six") << words("800 1600 2400 3200 4000 4800");
    QTest::newRow("thousands") << QStringList(5000, u"800"_s);
}

void tst_DpiSlotValues::requestOfAnotherLength()
{
    QFETCH(const QStringList, texts);
    PluginFixture fixture;
    HostedDevice &device = ranged(fixture);
    device.setDpiSlotValues(texts);
    COMPARE_LINES(
        fixture.take().mid(1),
        {warningLine(u"Invalid SET command, dpiSlotValues parameter must have size 5"_s), exitLine()});
    QVERIFY(!device.device()->isDpiSlotValuesChangePending());
}

void tst_DpiSlotValues::unknownRangeIsToldBeforeTheLength()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    device.setDpiSlotValues(words("800"));
    COMPARE_LINES(fixture.take(),
                  {requestCall(words("800")),
                   warningLine(u"Ignoring SET command, dpi min and max are not set"_s), exitLine()});
}

void tst_DpiSlotValues::slotTexts_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<quint16>("sent");
    QTest::addColumn<bool>("isRejected");
    const auto row = [](const char *tag, const QString &text, quint16 sent, bool isRejected = false) {
        QTest::newRow(tag) << text << sent << isRejected;
    };
    row("in-range", u"1600"_s, 1600);
    row("minimum", u"100"_s, 100);
    row("maximum", u"8000"_s, 8000);
    row("below-range", u"99"_s, 0, true);
    row("above-range", u"8001"_s, 0, true);
    row("zero", u"0"_s, 0);
    row("zeros", u"000"_s, 0);
    row("largest-word", u"65535"_s, 65535);
    row("one-below-the-largest-word", u"65534"_s, 0, true);
    row("cut-to-zero", u"65536"_s, 0);
    row("cut-into-the-range", u"70000"_s, 4464);
    row("cut-below-the-range", u"65537"_s, 0, true);
    row("cut-to-the-largest-word", u"131071"_s, 65535);
    row("largest-number", u"4294967295"_s, 65535);
    row("too-large-for-a-number", u"4294967296"_s, 0, true);
    row("negative", u"-1"_s, 0, true);
    row("negative-zero", u"-0"_s, 0, true);
    row("no-number", u"abc"_s, 0, true);
    row("empty", QString(), 0, true);
    row("plus-sign", u"+800"_s, 800);
    row("leading-blank", u" 800"_s, 800);
    row("tab-and-line-feed", u"\t800\n"_s, 800);
    row("leading-zero-is-decimal", u"0800"_s, 800);
    row("hexadecimal", u"0x320"_s, 0, true);
    row("fraction", u"800.0"_s, 0, true);
    row("exponent", u"8e2"_s, 0, true);
    row("group-separator", u"1,600"_s, 0, true);
    row("digits-of-another-script", u"٨٠٠"_s, 0, true);
    row("unit-behind", u"800dpi"_s, 0, true);
    row("sign-above-the-digits", u"80:"_s, 0, true);
    row("sign-below-the-digits", u"80/"_s, 0, true);
    row("nine-digits", u"000000800"_s, 800);
    row("ten-digits", u"0000000800"_s, 800);
    row("digits-around-another-sign", u"8_00"_s, 0, true);
}

void tst_DpiSlotValues::slotTexts()
{
    QFETCH(const QString, text);
    QFETCH(const quint16, sent);
    QFETCH(const bool, isRejected);
    PluginFixture fixture;
    HostedDevice &device = ranged(fixture);
    device.setDpiSlotValues({u"800"_s, text, u"2400"_s, u"3200"_s, u"4000"_s});

    const SlotValues values{800, sent, 2400, 3200, 4000};
    QStringList expected;
    if (isRejected) {
        QString shown;
        QDebug(&shown).nospace() << text;
        expected += warningLine(u"Ignoring slot value :  "_s + shown);
    }
    expected += {settingLine(values), sentLine(values), pendingSignal(true), exitLine()};
    COMPARE_LINES(fixture.take().mid(1), expected);
}

void tst_DpiSlotValues::everyRejectedEntryIsWarnedOf()
{
    PluginFixture fixture;
    HostedDevice &device = ranged(fixture);
    device.setDpiSlotValues(words("800 1600 abc 9000 0"));
    const SlotValues values{800, 1600, 0, 0, 0};
    COMPARE_LINES(fixture.take(), {requestCall(words("800 1600 abc 9000 0")),
                                   warningLine(u"Ignoring slot value :  \"abc\""_s),
                                   warningLine(u"Ignoring slot value :  \"9000\""_s), settingLine(values),
                                   sentLine(values), pendingSignal(true), exitLine()});
}

void tst_DpiSlotValues::allEntriesRejectedIsSentAllTheSame()
{
    PluginFixture fixture({false, false, false});
    HostedDevice &device = ranged(fixture);
    device.setDpiSlotValues(words("a b c d e"));
    COMPARE_LINES(fixture.take(),
                  {requestCall(words("a b c d e")), sentLine({0, 0, 0, 0, 0}), pendingSignal(true)});
}

void tst_DpiSlotValues::invertedRangeRejectsAllButTheSpecialValues()
{
    PluginFixture fixture({false, true, false});
    HostedDevice &device = ranged(fixture, 8000, 100);
    device.setDpiSlotValues(words("100 8000 4000 65535 0"));
    COMPARE_LINES(fixture.take(), {requestCall(words("100 8000 4000 65535 0")),
                                   warningLine(u"Ignoring slot value :  \"100\""_s),
                                   warningLine(u"Ignoring slot value :  \"8000\""_s),
                                   warningLine(u"Ignoring slot value :  \"4000\""_s),
                                   sentLine({0, 0, 0, 65535, 0}), pendingSignal(true)});
}

void tst_DpiSlotValues::requestCarriesButtonAndActiveSlot()
{
    PluginFixture fixture({false, false, false});
    HostedDevice &device = ranged(fixture);
    device.dpiButtonIdChangedCallBack(-4);
    device.activeDpiSlotIndexChangedCallBack(7);
    fixture.take();
    device.setDpiSlotValues(words(factoryTexts));
    COMPARE_LINES(fixture.take(), {requestCall(words(factoryTexts)), sentLine(factoryValues, true, -4, 7),
                                   pendingSignal(true)});
}

void tst_DpiSlotValues::requestWithoutReceiver()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.create();
    QMetaObject::invokeMethod(device.object(), "onDpiMinChanged", Q_ARG(int, 100));
    QMetaObject::invokeMethod(device.object(), "onDpiMaxChanged", Q_ARG(int, 8000));
    fixture.take();
    device.setDpiSlotValues(words(factoryTexts));
    COMPARE_LINES(fixture.take(), {requestCall(words(factoryTexts)), settingLine(factoryValues),
                                   warningLine(u"Unknown IPhysicalDevice interface"_s), exitLine()});
    QVERIFY(!device.device()->isDpiSlotValuesChangePending());
}

void tst_DpiSlotValues::confirmationWithoutReceiver()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.create(nullptr, PluginFixture::mouse);
    device.start();
    QMetaObject::invokeMethod(device.object(), "onDpiMinChanged", Q_ARG(int, 100));
    QMetaObject::invokeMethod(device.object(), "onDpiMaxChanged", Q_ARG(int, 8000));
    device.setDpiSlotValues(words(factoryTexts));
    fixture.take();
    device.dpiSlotValuesConfirmed(factoryValues.data());
    COMPARE_LINES(takeConfirmation(fixture), {debugLine(u"dpiSlotValuesConfirmed exit"_s)});
    COMPARE_LINES(device.device()->dpiSlotValues(), {});
}

void tst_DpiSlotValues::refusedFromIdle()
{
    PluginFixture fixture;
    HostedDevice &device = ranged(fixture);
    fixture.receiver.answers.acceptsRequests = false;
    device.setDpiSlotValues(words(factoryTexts));
    COMPARE_LINES(fixture.take(), {requestCall(words(factoryTexts)), settingLine(factoryValues),
                                   sentLine(factoryValues, false), refusedLine(), exitLine()});
    QVERIFY(!device.device()->isDpiSlotValuesChangePending());
}

void tst_DpiSlotValues::refusedWhilePending()
{
    PluginFixture fixture;
    HostedDevice &device = pending(fixture, factoryTexts);
    fixture.receiver.answers.acceptsRequests = false;
    device.setDpiSlotValues(words("200 300 400 500 600"));
    const SlotValues values{200, 300, 400, 500, 600};
    COMPARE_LINES(fixture.take(), {requestCall(words("200 300 400 500 600")), settingLine(values),
                                   sentLine(values, false), refusedLine(), pendingSignal(false), exitLine()});
    QVERIFY(!device.device()->isDpiSlotValuesChangePending());
}

void tst_DpiSlotValues::secondRequestReplacesTheFirst()
{
    PluginFixture fixture;
    HostedDevice &device = pending(fixture, factoryTexts);
    device.setDpiSlotValues(words("200 300 400 500 600"));
    const SlotValues values{200, 300, 400, 500, 600};
    COMPARE_LINES(fixture.take(), {requestCall(words("200 300 400 500 600")), settingLine(values),
                                   sentLine(values), exitLine()});

    // A confirmation of the first disagrees with the second.
    device.dpiSlotValuesConfirmed(factoryValues.data());
    COMPARE_LINES(takeConfirmation(fixture),
                  {settingLine(values), sentLine(values), debugLine(u"dpiSlotValuesConfirmed exit"_s)});
    device.dpiSlotValuesConfirmed(values.data());
    QCOMPARE(device.device()->dpiSlotValues(), words("200 300 400 500 600"));
    QVERIFY(!device.device()->isDpiSlotValuesChangePending());
}

void tst_DpiSlotValues::sameValuesAreSentAgain()
{
    PluginFixture fixture({false, false, false});
    HostedDevice &device = pending(fixture, factoryTexts);
    device.dpiSlotValuesConfirmed(factoryValues.data());
    fixture.take();
    device.setDpiSlotValues(words(factoryTexts));
    COMPARE_LINES(fixture.take(),
                  {requestCall(words(factoryTexts)), sentLine(factoryValues), pendingSignal(true)});
}

void tst_DpiSlotValues::confirmationWithNothingPending()
{
    PluginFixture fixture;
    HostedDevice &device = ranged(fixture);
    device.dpiSlotValuesConfirmed(factoryValues.data());
    COMPARE_LINES(takeConfirmation(fixture), {debugLine(u"dpiSlotValuesConfirmed exit"_s)});
    COMPARE_LINES(device.device()->dpiSlotValues(), {});
}

void tst_DpiSlotValues::confirmationThatDisagreesSendsAgain_data()
{
    QTest::addColumn<int>("slot");
    QTest::newRow("first-slot") << 0;
    QTest::newRow("second-slot") << 1;
    QTest::newRow("third-slot") << 2;
    QTest::newRow("fourth-slot") << 3;
    QTest::newRow("fifth-slot") << 4;
}

void tst_DpiSlotValues::confirmationThatDisagreesSendsAgain()
{
    QFETCH(const int, slot);
    PluginFixture fixture;
    HostedDevice &device = pending(fixture, factoryTexts);
    SlotValues confirmed = factoryValues;
    confirmed.at(static_cast<size_t>(slot)) = 1500;
    device.dpiSlotValuesConfirmed(confirmed.data());
    COMPARE_LINES(takeConfirmation(fixture), {settingLine(factoryValues), sentLine(factoryValues),
                                              debugLine(u"dpiSlotValuesConfirmed exit"_s)});
    QVERIFY(device.device()->isDpiSlotValuesChangePending());
    COMPARE_LINES(device.device()->dpiSlotValues(), {});
}

void tst_DpiSlotValues::confirmationRepeatsWithoutLimit()
{
    PluginFixture fixture({false, false, false});
    HostedDevice &device = pending(fixture, factoryTexts);
    const SlotValues other{1, 1, 1, 1, 1};
    for (int i = 0; i < 1000; ++i) {
        device.dpiSlotValuesConfirmed(other.data());
        COMPARE_LINES(fixture.take(),
                      {u"call dpiSlotValuesConfirmed([1, 1, 1, 1, 1])"_s, sentLine(factoryValues)});
    }
    device.dpiSlotValuesConfirmed(factoryValues.data());
    QVERIFY(!device.device()->isDpiSlotValuesChangePending());
}

void tst_DpiSlotValues::refusedRepeatEndsTheRequest()
{
    PluginFixture fixture;
    HostedDevice &device = pending(fixture, factoryTexts);
    fixture.receiver.answers.acceptsRequests = false;
    const SlotValues other{800, 1600, 2400, 3200, 1};
    device.dpiSlotValuesConfirmed(other.data());
    COMPARE_LINES(takeConfirmation(fixture),
                  {settingLine(factoryValues), sentLine(factoryValues, false), refusedLine(),
                   pendingSignal(false), debugLine(u"dpiSlotValuesConfirmed exit"_s)});
    COMPARE_LINES(device.device()->dpiSlotValues(), {});
}

void tst_DpiSlotValues::requestedZeroAgreesWithAnything()
{
    PluginFixture fixture;
    HostedDevice &device = pending(fixture, "800 0 2400 3200 4000");
    const SlotValues confirmed{800, 1000, 2400, 3200, 4000};
    device.dpiSlotValuesConfirmed(confirmed.data());
    COMPARE_LINES(takeConfirmation(fixture),
                  changeLines({updatingLine(confirmed), valuesSignal(confirmed)}) +
                      QStringList({pendingSignal(false), debugLine(u"dpiSlotValuesConfirmed exit"_s)}));
    QCOMPARE(device.device()->dpiSlotValues(), words("800 1000 2400 3200 4000"));
}

void tst_DpiSlotValues::requestedLargestWordMustBeConfirmed()
{
    PluginFixture fixture({false, false, false});
    HostedDevice &device = pending(fixture, "65535 1600 2400 3200 4000");
    const SlotValues requested{65535, 1600, 2400, 3200, 4000};
    const SlotValues zero{0, 1600, 2400, 3200, 4000};
    device.dpiSlotValuesConfirmed(zero.data());
    COMPARE_LINES(fixture.take(),
                  {u"call dpiSlotValuesConfirmed([0, 1600, 2400, 3200, 4000])"_s, sentLine(requested)});
    device.dpiSlotValuesConfirmed(requested.data());
    QCOMPARE(device.device()->dpiSlotValues(), words("65535 1600 2400 3200 4000"));
}

void tst_DpiSlotValues::confirmationOfTheKnownValues()
{
    PluginFixture fixture;
    HostedDevice &device = ranged(fixture);
    device.dpiSlotValuesChangedCallBack(factoryValues.data());
    device.setDpiSlotValues(words(factoryTexts));
    fixture.take();
    device.dpiSlotValuesConfirmed(factoryValues.data());
    COMPARE_LINES(takeConfirmation(fixture),
                  changeLines({}) +
                      QStringList({pendingSignal(false), debugLine(u"dpiSlotValuesConfirmed exit"_s)}));
}

void tst_DpiSlotValues::confirmationAfterARefusedRequestIsIgnored()
{
    PluginFixture fixture({false, false, false});
    HostedDevice &device = pending(fixture, factoryTexts);
    fixture.receiver.answers.acceptsRequests = false;
    device.setDpiSlotValues(words("200 300 400 500 600"));
    fixture.take();
    device.dpiSlotValuesConfirmed(factoryValues.data());
    COMPARE_LINES(fixture.take(), {u"call dpiSlotValuesConfirmed([800, 1600, 2400, 3200, 4000])"_s});
    COMPARE_LINES(device.device()->dpiSlotValues(), {});
}

void tst_DpiSlotValues::storedValuesAreThereInTheSignal()
{
    PluginFixture fixture({false, false, false});
    HostedDevice &device = pending(fixture, factoryTexts);
    QList<QStringList> seen;
    QList<bool> flags;
    fixture.timeline.setObserver([&](const TimelineEntry &entry) {
        if (entry.kind == TimelineEntry::Kind::Signal) {
            seen.append(device.device()->dpiSlotValues());
            flags.append(device.device()->isDpiSlotValuesChangePending());
        }
    });
    device.dpiSlotValuesConfirmed(factoryValues.data());
    fixture.timeline.setObserver({});
    // The values are stored first, and the request ends only after their signal.
    QCOMPARE(seen, QList<QStringList>({words(factoryTexts), words(factoryTexts)}));
    QCOMPARE(flags, QList<bool>({true, false}));
}

void tst_DpiSlotValues::reportUnasked()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.create();
    device.dpiSlotValuesChangedCallBack(factoryValues.data());
    COMPARE_LINES(fixture.take(),
                  QStringList{u"call dpiSlotValuesChangedCallBack([800, 1600, 2400, 3200, 4000])"_s} +
                      changeLines({updatingLine(factoryValues), valuesSignal(factoryValues)}));
    QCOMPARE(device.device()->dpiSlotValues(), words(factoryTexts));
}

void tst_DpiSlotValues::reportOfTheSameValues()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    device.dpiSlotValuesChangedCallBack(factoryValues.data());
    fixture.take();
    device.dpiSlotValuesChangedCallBack(factoryValues.data());
    COMPARE_LINES(fixture.take(),
                  QStringList{u"call dpiSlotValuesChangedCallBack([800, 1600, 2400, 3200, 4000])"_s} +
                      changeLines({}));
}

void tst_DpiSlotValues::reportWhilePendingLeavesTheRequest()
{
    PluginFixture fixture;
    HostedDevice &device = pending(fixture, factoryTexts);
    const SlotValues other{1, 2, 3, 4, 5};
    device.dpiSlotValuesChangedCallBack(other.data());
    COMPARE_LINES(fixture.take(), QStringList{u"call dpiSlotValuesChangedCallBack([1, 2, 3, 4, 5])"_s} +
                                      changeLines({updatingLine(other), valuesSignal(other)}));
    QVERIFY(device.device()->isDpiSlotValuesChangePending());
    QCOMPARE(device.device()->dpiSlotValues(), words("1 2 3 4 5"));

    // Even a report of just what was requested is no confirmation.
    device.dpiSlotValuesChangedCallBack(factoryValues.data());
    QVERIFY(device.device()->isDpiSlotValuesChangePending());
    fixture.take();
    device.dpiSlotValuesConfirmed(factoryValues.data());
    COMPARE_LINES(takeConfirmation(fixture),
                  changeLines({}) +
                      QStringList({pendingSignal(false), debugLine(u"dpiSlotValuesConfirmed exit"_s)}));
}

void tst_DpiSlotValues::reportTakesAnyWords()
{
    PluginFixture fixture({false, false, false});
    HostedDevice &device = ranged(fixture);
    const SlotValues values{0, 1, 65535, 65534, 9000};
    device.dpiSlotValuesChangedCallBack(values.data());
    QCOMPARE(device.device()->dpiSlotValues(), words("0 1 65535 65534 9000"));
}

void tst_DpiSlotValues::valuesStayWhenTheRangeChanges()
{
    PluginFixture fixture({false, false, false});
    HostedDevice &device = ranged(fixture);
    device.dpiSlotValuesChangedCallBack(factoryValues.data());
    fixture.take();
    Q_EMIT fixture.receiver.dpiMaxChanged(1000);
    COMPARE_LINES(fixture.take(), {u"signal dpiMaxChanged(1000)"_s});
    QCOMPARE(device.device()->dpiSlotValues(), words(factoryTexts));
}

void tst_DpiSlotValues::currentDpiDoesNotFollowTheSlotsValue()
{
    PluginFixture fixture({false, false, false});
    HostedDevice &device = fixture.started();
    device.dpiValueChangedCallBack(1600);
    fixture.take();
    const SlotValues values{1, 2, 3, 4, 5};
    device.dpiSlotValuesChangedCallBack(values.data());
    COMPARE_LINES(fixture.take(),
                  {u"call dpiSlotValuesChangedCallBack([1, 2, 3, 4, 5])"_s, valuesSignal(values)});
    QCOMPARE(device.device()->dpiValue(), 1600);
}

void tst_DpiSlotValues::otherThreadChangesAtOnceAndSignalsLater()
{
    PluginFixture fixture({false, false, false});
    HostedDevice &device = ranged(fixture);
    OtherThread other;
    other.run([&] { device.setDpiSlotValues(words(factoryTexts)); });
    QVERIFY(device.device()->isDpiSlotValuesChangePending());
    COMPARE_LINES(fixture.take(), {requestCall(words(factoryTexts)) + u" on thread 2"_s,
                                   sentLine(factoryValues) + u" on thread 2"_s});
    deliverQueuedCalls();
    COMPARE_LINES(fixture.take(), {pendingSignal(true)});

    other.run([&] { device.dpiSlotValuesConfirmed(factoryValues.data()); });
    QCOMPARE(device.device()->dpiSlotValues(), words(factoryTexts));
    QVERIFY(!device.device()->isDpiSlotValuesChangePending());
    fixture.take();
    deliverQueuedCalls();
    COMPARE_LINES(fixture.take(), {valuesSignal(factoryValues), pendingSignal(false)});
}

void tst_DpiSlotValues::otherThreadSignalsCarryTheValueAtDelivery()
{
    PluginFixture fixture({false, false, false});
    HostedDevice &device = ranged(fixture);
    const SlotValues later{1, 2, 3, 4, 5};
    OtherThread other;
    other.run([&] {
        device.setDpiSlotValues(words(factoryTexts));
        device.dpiSlotValuesConfirmed(factoryValues.data());
        device.dpiSlotValuesChangedCallBack(later.data());
    });
    fixture.take();
    deliverQueuedCalls();
    COMPARE_LINES(fixture.take(),
                  {pendingSignal(false), valuesSignal(later), pendingSignal(false), valuesSignal(later)});
}

void tst_DpiSlotValues::reportFromAnotherThreadWhileRequesting()
{
    PluginFixture fixture({false, false, false});
    HostedDevice &device = ranged(fixture);
    OtherThread other;
    fixture.receiver.duringRequest = [&](const QString &) {
        other.run([&] { device.dpiSlotValuesChangedCallBack(factoryValues.data()); });
    };
    device.setDpiSlotValues(words("200 300 400 500 600"));
    COMPARE_LINES(fixture.take(),
                  {requestCall(words("200 300 400 500 600")), sentLine({200, 300, 400, 500, 600}),
                   u"call dpiSlotValuesChangedCallBack([800, 1600, 2400, 3200, 4000]) on thread 2"_s,
                   pendingSignal(true)});
    deliverQueuedCalls();
    COMPARE_LINES(fixture.take(), {valuesSignal(factoryValues)});
    QVERIFY(device.device()->isDpiSlotValuesChangePending());
}

void tst_DpiSlotValues::requestSurvivesStop()
{
    PluginFixture fixture({false, false, false});
    HostedDevice &device = pending(fixture, factoryTexts);
    device.stop();
    QVERIFY(device.device()->isDpiSlotValuesChangePending());
    device.dpiSlotValuesConfirmed(factoryValues.data());
    QCOMPARE(device.device()->dpiSlotValues(), words(factoryTexts));
}

void tst_DpiSlotValues::switchesOff()
{
    PluginFixture fixture({false, false, false});
    HostedDevice &device = ranged(fixture);
    fixture.receiver.answers.acceptsRequests = false;
    device.setDpiSlotValues(words("800 abc 2400 3200 4000"));
    COMPARE_LINES(fixture.take(), {requestCall(words("800 abc 2400 3200 4000")),
                                   sentLine({800, 0, 2400, 3200, 4000}, false)});
}

void tst_DpiSlotValues::pendingValuesAreKnownWhenTheFlagIsSignalled()
{
    // The mouse confirms from inside the signal; the values of the request before would not agree.
    PluginFixture fixture({false, false, false});
    HostedDevice &device = pending(fixture, "200 300 400 500 600");
    const SlotValues before{200, 300, 400, 500, 600};
    device.dpiSlotValuesConfirmed(before.data());
    fixture.take();
    fixture.onceInside(pendingSignal(true), [&] { device.dpiSlotValuesConfirmed(factoryValues.data()); });
    device.setDpiSlotValues(words(factoryTexts));
    COMPARE_LINES(fixture.take(),
                  {requestCall(words(factoryTexts)), sentLine(factoryValues), pendingSignal(true),
                   confirmationCall(factoryValues), valuesSignal(factoryValues), pendingSignal(false)});
}

void tst_DpiSlotValues::requestInsideTheValuesSignalEndsWithTheConfirmation_data()
{
    QTest::addColumn<bool>("isAccepted");
    QTest::newRow("accepted") << true;
    QTest::newRow("refused") << false;
}

void tst_DpiSlotValues::requestInsideTheValuesSignalEndsWithTheConfirmation()
{
    // An accepted request leaves the flag set, and the confirmation clears it when the signal is over. A
    // refused one clears the flag itself, and the confirmation finds nothing to clear.
    QFETCH(const bool, isAccepted);
    PluginFixture fixture({false, false, false});
    HostedDevice &device = pending(fixture, factoryTexts);
    const SlotValues other{200, 300, 400, 500, 600};
    QList<bool> flags;
    fixture.onceInside(valuesSignal(factoryValues), [&] {
        fixture.receiver.answers.acceptsRequests = isAccepted;
        device.setDpiSlotValues(words("200 300 400 500 600"));
        flags += device.device()->isDpiSlotValuesChangePending();
    });
    device.dpiSlotValuesConfirmed(factoryValues.data());
    COMPARE_LINES(fixture.take(), {confirmationCall(factoryValues), valuesSignal(factoryValues),
                                   requestCall(words("200 300 400 500 600")), sentLine(other, isAccepted),
                                   pendingSignal(false)});
    QCOMPARE(flags, QList<bool>{isAccepted});
    QVERIFY(!device.device()->isDpiSlotValuesChangePending());

    // Nobody waits for the inner request any more.
    device.dpiSlotValuesConfirmed(other.data());
    COMPARE_LINES(fixture.take(), {confirmationCall(other)});
    QCOMPARE(device.device()->dpiSlotValues(), words(factoryTexts));
}

void tst_DpiSlotValues::valuesArePendingUntilTheWarningIsWritten()
{
    // From inside the warning the mouse answers the request before with other values: it is sent again.
    PluginFixture fixture({false, true, false});
    HostedDevice &device = pending(fixture, factoryTexts);
    const SlotValues other{1, 1, 1, 1, 1};
    fixture.receiver.answers.acceptsRequests = false;
    fixture.onceInside(refusedLine(), [&] {
        fixture.receiver.answers.acceptsRequests = true;
        device.dpiSlotValuesConfirmed(other.data());
    });
    device.setDpiSlotValues(words("200 300 400 500 600"));
    COMPARE_LINES(fixture.take(),
                  {requestCall(words("200 300 400 500 600")), sentLine({200, 300, 400, 500, 600}, false),
                   refusedLine(), confirmationCall(other), sentLine(factoryValues), pendingSignal(false)});
}

void tst_DpiSlotValues::rangeBeyondAWord_data()
{
    QTest::addColumn<int>("minimum");
    QTest::addColumn<int>("maximum");
    QTest::addColumn<QStringList>("texts");
    QTest::addColumn<QStringList>("rejected");
    QTest::addColumn<QString>("sent");
    QTest::newRow("maximum") << 100 << 70000 << words("60000 65534 70000 65635 65535") << words("65635")
                             << u"60000, 65534, 4464, 0, 65535"_s;
    QTest::newRow("minimum") << 65636 << 131072 << words("100 65534 65636 70000 65535")
                             << words("100 65534 65636 70000") << u"0, 0, 0, 0, 65535"_s;
}

void tst_DpiSlotValues::rangeBeyondAWord()
{
    // The bounds are compared whole, unlike the values, of which the low 16 bits count.
    QFETCH(const int, minimum);
    QFETCH(const int, maximum);
    QFETCH(const QStringList, texts);
    QFETCH(const QStringList, rejected);
    QFETCH(const QString, sent);
    PluginFixture fixture({false, true, false});
    HostedDevice &device = ranged(fixture, minimum, maximum);
    device.setDpiSlotValues(texts);
    QStringList expected{requestCall(texts)};
    for (const QString &text : rejected)
        expected += warningLine(u"Ignoring slot value :  \"%1\""_s.arg(text));
    expected += {u"receiver setDpiSlotValues([%1], 15, 2) -> true"_s.arg(sent), pendingSignal(true)};
    COMPARE_LINES(fixture.take(), expected);
}

void tst_DpiSlotValues::textsThatEndBeforeMoreDigits()
{
    // Texts that share one buffer have no zero behind them.
    PluginFixture fixture({false, false, false});
    HostedDevice &device = ranged(fixture);
    const QString buffer = u"800160024003200400099"_s;
    QStringList texts;
    qsizetype start = 0;
    for (const qsizetype length : {3, 4, 4, 4, 4}) {
        texts += QString::fromRawData(buffer.constData() + start, length);
        start += length;
    }
    device.setDpiSlotValues(texts);
    COMPARE_LINES(fixture.take(),
                  {requestCall(words(factoryTexts)), sentLine(factoryValues), pendingSignal(true)});
}

QTEST_GUILESS_MAIN(tst_DpiSlotValues)
#include "tst_DpiSlotValues.moc"
