#include "CheckPrinter.h"

#include "CheckSystem.h"
#include "Difference.h"
#include "Output.h"

#include <algorithm>
#include <array>
#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

constexpr std::array verdictsInOrder = {Verdict::Pass,    Verdict::Fail,   Verdict::Crash,   Verdict::Timeout,
                                        Verdict::Skipped, Verdict::Waived, Verdict::KitError};

constexpr int progressWidth = 78;

bool wentWrong(const ScenarioVerdict &verdict)
{
    return verdict.verdict == Verdict::Fail || verdict.verdict == Verdict::Crash ||
           verdict.verdict == Verdict::Timeout || verdict.verdict == Verdict::KitError;
}

QString counts(const CheckReport &report)
{
    QStringList parts;
    for (const Verdict verdict : verdictsInOrder) {
        if (const qsizetype number = countOf(report.verdicts, verdict))
            parts.append(u"%1 %2"_s.arg(number).arg(wordOf(verdict)));
    }
    return parts.isEmpty() ? u"nothing finished"_s : parts.join(u", "_s);
}

QString seconds(std::chrono::milliseconds time)
{
    return QString::number(std::chrono::duration<double>(time).count(), 'f', 1) + u" s"_s;
}

QStringList features(const QList<ScenarioVerdict> &verdicts)
{
    QStringList names;
    for (const ScenarioVerdict &verdict : verdicts) {
        if (!names.contains(featureOf(verdict.name)))
            names.append(featureOf(verdict.name));
    }
    return names;
}

QStringList lastLines(const QStringList &lines)
{
    constexpr qsizetype most = 20;
    return lines.size() <= most ? lines : QStringList{u"..."_s} + lines.last(most);
}

QString heading(const ScenarioVerdict &verdict)
{
    const bool isError = verdict.head.severity == Severity::Error;
    return wordOf(verdict.verdict).toUpper() + u' ' + verdict.name +
           (isError ? QString() : u" (%1)"_s.arg(severityName(verdict.head.severity)));
}

}  // namespace

CheckPrinter::CheckPrinter(qsizetype planned) : m_planned(planned), m_isTerminal(CheckSystem::isTerminal())
{
    m_clock.start();
}

void CheckPrinter::printBeginning(const CheckReport &report, const QString &note)
{
    print(u"library  "_s + report.pluginFile);
    print(u"plan     %1, level %2, seed %3"_s.arg(counted(m_planned, u"scenario"_s), levelName(report.level))
              .arg(report.seed));
    if (!note.isEmpty())
        print(u"note: "_s + note);
    printProgress();
}

void CheckPrinter::printVerdict(const ScenarioVerdict &verdict)
{
    constexpr int wordWidth = 11;
    ++m_finished;
    m_notPassed += wentWrong(verdict) ? 1 : 0;
    if (!m_isTerminal || wentWrong(verdict))
        print(wordOf(verdict.verdict).leftJustified(wordWidth) + verdict.name);
    printProgress();
}

void CheckPrinter::printEnd(const CheckReport &report)
{
    clearProgress();
    for (const ScenarioVerdict &verdict : report.verdicts) {
        if (wentWrong(verdict))
            printFailure(verdict);
    }
    print({});
    printTable(report);
    for (const ScenarioVerdict &verdict : report.verdicts) {
        if (verdict.verdict == Verdict::Skipped)
            print(u"skipped: %1: %2"_s.arg(verdict.name, verdict.message));
        else if (verdict.verdict == Verdict::Waived)
            print(u"waived: %1: %2"_s.arg(verdict.name, verdict.waiver));
    }
    for (const QString &problem : report.problems)
        print(u"problem: "_s + problem);
    print(u"%1 of %2 in %3, seed %4"_s.arg(report.verdicts.size())
              .arg(counted(report.planned, u"scenario"_s), seconds(report.time))
              .arg(report.seed));
    print(u"%1: %2"_s.arg(answerOf(report), counts(report)));
}

void CheckPrinter::print(const QString &line)
{
    clearProgress();
    printLine(onOneLine(line));
}

// Blanks rather than codes to clear a line, which some consoles print.
void CheckPrinter::printProgress()
{
    constexpr qsizetype enoughToGuess = 3;
    if (!m_isTerminal)
        return;
    QString text = u"%1 of %2"_s.arg(m_finished).arg(m_planned);
    if (m_notPassed > 0)
        text += u", %1 went wrong"_s.arg(m_notPassed);
    if (m_finished >= enoughToGuess && m_finished < m_planned) {
        const std::chrono::milliseconds left(m_clock.elapsed() * (m_planned - m_finished) / m_finished);
        text += u", about %1 left"_s.arg(seconds(left));
    }
    std::fputs((u'\r' + text.leftJustified(progressWidth)).toUtf8().constData(), stdout);
    std::fflush(stdout);
}

void CheckPrinter::clearProgress() const
{
    if (m_isTerminal)
        std::fputs(('\r' + QByteArray(progressWidth, ' ') + '\r').constData(), stdout);
}

void CheckPrinter::printFailure(const ScenarioVerdict &verdict)
{
    print({});
    print(heading(verdict));
    print(u"  promise   "_s + verdict.head.title);
    print(u"  otherwise "_s + verdict.head.why);
    const QString line = verdict.line > 0 ? u"scenario line %1: "_s.arg(verdict.line) : QString();
    print(u"  found     "_s + line + verdict.message);
    if (!verdict.expected.isEmpty() || !verdict.actual.isEmpty())
        printBlock(u"expected (-) and actual (+)"_s, difference(verdict.expected, verdict.actual));
    const bool hasEndedEarly = verdict.verdict == Verdict::Crash || verdict.verdict == Verdict::Timeout;
    if (!verdict.lastCall.isEmpty())
        print(u"  last step "_s + verdict.lastCall);
    printBlock(u"log of the library"_s, lastLines(verdict.log));
    if (hasEndedEarly || verdict.verdict == Verdict::KitError)
        printBlock(u"standard error"_s, lastLines(verdict.standardError.split(u'\n', Qt::SkipEmptyParts)));
    print(u"  repeat    "_s + verdict.repeatCommand);
}

void CheckPrinter::printBlock(const QString &title, const QStringList &lines)
{
    if (lines.isEmpty())
        return;
    print(u"  %1:"_s.arg(title));
    for (const QString &line : lines)
        print(u"    "_s + line);
}

void CheckPrinter::printTable(const CheckReport &report)
{
    constexpr int nameWidth = 20;
    constexpr int numberWidth = 10;
    const auto row = [](const QString &name, const QList<ScenarioVerdict> &verdicts) {
        QString line = name.leftJustified(nameWidth);
        for (const Verdict verdict : verdictsInOrder)
            line += QString::number(countOf(verdicts, verdict)).rightJustified(numberWidth);
        return line;
    };
    QString head(nameWidth, u' ');
    for (const Verdict verdict : verdictsInOrder)
        head += wordOf(verdict).rightJustified(numberWidth);
    print(head);
    const QStringList names = features(report.verdicts);
    for (const QString &name : names) {
        QList<ScenarioVerdict> verdicts = report.verdicts;
        verdicts.removeIf([&](const ScenarioVerdict &verdict) { return featureOf(verdict.name) != name; });
        print(row(name, verdicts));
    }
    print(row(u"all"_s, report.verdicts));
}
