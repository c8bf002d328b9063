#include "RefusalStory.h"
#include "TimelineText.h"

#include <QtCore/QRegularExpression>
#include <QtTest/QTest>

#include <optional>

using namespace Qt::StringLiterals;

namespace {

/// A call that the receiver may refuse, as it stands on the timeline.
struct ReceiverCall
{
    QString operation;
    RequestKind kind = RequestKind::None;
    bool isAccepted = false;
    std::size_t step = 0;
    qsizetype line = 0;
};

RequestKind kindOf(const QString &operation, const QString &arguments)
{
    if (operation == u"setReportRate" || operation == u"getReportRateInfo")
        return RequestKind::ReportRate;
    if (operation == u"setDpiSlotValues")
        return RequestKind::SlotValues;
    if (operation == u"setDpiButtonAndActiveSlot")
        return arguments.endsWith(u", 0"_s) ? RequestKind::DpiButton : RequestKind::ActiveSlot;
    return RequestKind::None;
}

std::optional<ReceiverCall> readCall(const QString &line)
{
    static const QRegularExpression pattern(u"^receiver (\\w+)\\((.*)\\) -> (true|false)$"_s);
    const QRegularExpressionMatch match = pattern.match(line);
    if (!match.hasMatch() || !refusableOperations().contains(match.captured(1)))
        return std::nullopt;
    return ReceiverCall{match.captured(1), kindOf(match.captured(1), match.captured(2)),
                        match.captured(3) == u"true"};
}

std::vector<ReceiverCall> callsOf(const StorySeen &story)
{
    std::vector<ReceiverCall> calls;
    for (std::size_t step = 0; step < story.steps.size(); ++step) {
        const QStringList &lines = story.steps[step].lines;
        for (qsizetype line = 0; line < lines.size(); ++line) {
            if (std::optional<ReceiverCall> call = readCall(lines.at(line))) {
                call->step = step;
                call->line = line;
                calls.push_back(*call);
            }
        }
    }
    return calls;
}

struct FlagWords
{
    QLatin1StringView signal;
    QLatin1StringView warning;
};

constexpr FlagWords flagWords[flagCount] = {
    {QLatin1StringView("isReportRateChangePendingChanged"),
     QLatin1StringView("Dongle set report rate failed")},
    {QLatin1StringView("isDpiSlotValuesChangePendingChanged"),
     QLatin1StringView("Dongle set dpi slot values failed")},
    {QLatin1StringView("isActiveDpiSlotIndexChangePendingChanged"),
     QLatin1StringView("Dongle set active DPI slot index failed")},
    {QLatin1StringView("isDpiButtonIdChangePendingChanged"),
     QLatin1StringView("Dongle set dpi button id failed")},
};

QString flagLine(std::size_t flag, bool isPending)
{
    return u"signal %1(%2)"_s.arg(flagWords[flag].signal, isPending ? u"true"_s : u"false"_s);
}

bool isWarnedOf(const ReceiverCall &call)
{
    return call.kind != RequestKind::None && call.operation != u"getReportRateInfo";
}

// The lines of the step in which the call is refused, from those of the same step when it is accepted.
QStringList refusedStep(const StorySeen &accepted, const ReceiverCall &call)
{
    const QStringList &lines = accepted.steps[call.step].lines;
    QStringList expected = lines.mid(0, call.line);
    QStringList rest = lines.mid(call.line + 1);
    expected += QString(lines.at(call.line)).replace(u" -> true"_s, u" -> false"_s);
    if (call.operation == u"getReportRateInfo") {
        // Of a rate that it does not know the device says nothing and asks for no other.
        while (!rest.isEmpty() && rest.constFirst() != u"receiver getLevelValue() -> 33")
            rest.removeFirst();
    } else if (isWarnedOf(call)) {
        const auto flag = static_cast<std::size_t>(call.kind);
        const bool wasPending = call.kind == RequestKind::ReportRate  // raised before the request, not after
                                || (call.step > 0 && accepted.steps[call.step - 1].isPending[flag]);
        expected += warningLine(QString(flagWords[flag].warning));
        if (wasPending)
            expected += flagLine(flag, false);
        else
            rest.removeOne(flagLine(flag, true));
    }
    return expected + rest;
}

// Where a refusal in this step has left no trace any more.
std::size_t settledStep(const StorySeen &story, const ReceiverCall &call)
{
    std::size_t step = call.step;
    while (step < story.steps.size() && (story.steps[step].kind != call.kind || !story.steps[step].settles))
        ++step;
    return step;
}

QString comparison(const QString &what, const QStringList &actual, const QStringList &expected)
{
    if (actual == expected)
        return {};
    return u"%1 is\n%2\nand should be\n%3"_s.arg(what, actual.join(u'\n'), expected.join(u'\n'));
}

// What the story says with one call refused: the same, but for the refused call, and for its kind of request
// until the mouse has told its state.
QString timelineProblem(const StorySeen &accepted, const StorySeen &seen, const ReceiverCall &call)
{
    const std::size_t refused = call.step;
    const std::size_t settled = call.kind == RequestKind::None ? refused : settledStep(accepted, call);
    for (std::size_t step = 0; step < accepted.steps.size(); ++step) {
        const bool mayDiffer = accepted.steps[step].kind == call.kind && step > refused && step <= settled;
        if (mayDiffer)
            continue;
        const QStringList expected =
            step == refused ? refusedStep(accepted, call) : accepted.steps[step].lines;
        QString problem = comparison(u"step %1"_s.arg(step), seen.steps[step].lines, expected);
        if (!problem.isEmpty())
            return problem;
    }
    return seen.values == accepted.values ? QString()
                                          : u"at the end: %1, not %2"_s.arg(seen.values, accepted.values);
}

// Whether the request that a flag is for was accepted in the step; the last answer counts.
std::optional<bool> answerIn(const StepSeen &step, std::size_t flag)
{
    std::optional<bool> answer;
    for (const QString &line : step.lines) {
        const std::optional<ReceiverCall> call = readCall(line);
        if (call && isWarnedOf(*call) && static_cast<std::size_t>(call->kind) == flag)
            answer = call->isAccepted;
    }
    return answer;
}

// What the flag is by its signals.
bool signalledFlag(const StepSeen &step, std::size_t flag, bool before)
{
    bool isPending = before;
    for (const QString &line : step.lines) {
        if (line == flagLine(flag, true) || line == flagLine(flag, false))
            isPending = line == flagLine(flag, true);
    }
    return isPending;
}

// A flag is up from an accepted request on, and down from a refused one on; beside that only the mouse's word
// on the same kind of request takes it down, and does so when it settles it.
bool isFlagRight(const StepSeen &step, std::size_t flag, bool before)
{
    const bool isPending = step.isPending[flag];
    const bool isToldByMouse = static_cast<std::size_t>(step.kind) == flag;
    if (signalledFlag(step, flag, before) != isPending || (isToldByMouse && step.settles && isPending))
        return false;
    if (const std::optional<bool> answer = answerIn(step, flag))
        return isPending == *answer;
    return isPending == before || (isToldByMouse && before);
}

QString flagProblem(const StorySeen &seen)
{
    std::array<bool, flagCount> before{};
    for (std::size_t index = 0; index < seen.steps.size(); ++index) {
        const StepSeen &step = seen.steps[index];
        for (std::size_t flag = 0; flag < flagCount; ++flag) {
            if (!isFlagRight(step, flag, before[flag]))
                return u"step %1: %2 is not as the answers and signals of\n%3"_s.arg(index).arg(
                    flagWords[flag].signal, step.lines.join(u'\n'));
        }
        before = step.isPending;
    }
    return {};
}

int refusalWarnings(const StorySeen &seen)
{
    int count = 0;
    for (const StepSeen &step : seen.steps) {
        for (const FlagWords &words : flagWords)
            count += static_cast<int>(step.lines.count(warningLine(QString(words.warning))));
    }
    return count;
}

}  // namespace

// One long story, as often as the receiver has calls in it that it can refuse, and each time another one is
// refused.
class tst_RefusalSweep : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void nothingIsRefused();
    void eachCallIsRefusedOnce();
};

void tst_RefusalSweep::nothingIsRefused()
{
    const StorySeen story = playStory(0);
    const std::vector<ReceiverCall> calls = callsOf(story);
    QCOMPARE(static_cast<int>(calls.size()), story.calls);
    QCOMPARE(story.refusals, 0);
    QCOMPARE(refusalWarnings(story), 0);
    QCOMPARE(flagProblem(story), QString());
    QCOMPARE(story.steps.back().isPending, (std::array<bool, flagCount>{}));
    QCOMPARE(story.values,
             u"rate 1000 of 250 1000, slots 1100 1200 1300 1400 1500, active 2, DPI 750, button 9"_s);
}

void tst_RefusalSweep::eachCallIsRefusedOnce()
{
    const StorySeen accepted = playStory(0);
    const std::vector<ReceiverCall> calls = callsOf(accepted);
    QStringList refusedOperations;
    int refusedCall = 1;
    for (StorySeen seen = playStory(refusedCall); seen.refusals > 0; seen = playStory(++refusedCall)) {
        QVERIFY(refusedCall <= accepted.calls);
        const ReceiverCall &call = calls.at(static_cast<std::size_t>(refusedCall) - 1);
        const QString name =
            u"call %1, %2, in step %3: "_s.arg(refusedCall).arg(call.operation).arg(call.step);
        const int warnings = refusalWarnings(seen);
        QVERIFY2(seen.refusals == 1, qPrintable(name + u"%1 refusals"_s.arg(seen.refusals)));
        QVERIFY2(warnings == (isWarnedOf(call) ? 1 : 0), qPrintable(name + u"%1 warnings"_s.arg(warnings)));
        for (const QString &problem : {timelineProblem(accepted, seen, call), flagProblem(seen)})
            QVERIFY2(problem.isEmpty(), qPrintable(name + problem));
        if (!refusedOperations.contains(call.operation))
            refusedOperations += call.operation;
    }
    // The first run in which nothing was refused is the one after the last call.
    QCOMPARE(refusedCall, accepted.calls + 1);
    refusedOperations.sort();
    QCOMPARE(refusedOperations, refusableOperations());
    qInfo("each of %d calls was refused once", accepted.calls);
}

QTEST_GUILESS_MAIN(tst_RefusalSweep)
#include "tst_RefusalSweep.moc"
