#include "CheckReport.h"
#include "ReportFile.h"
#include "ReportFiles.h"
#include "VisibleText.h"

#include <QtCore/QXmlStreamWriter>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

/// Build servers know only these. A failure that does not break the contract is none: else a build would be red that
/// kvx calls good.
enum class Kind { Passed, Failure, Error, Skipped };

Kind kindOf(const ScenarioVerdict &verdict)
{
    switch (verdict.verdict) {
    case Verdict::Pass:
        return Kind::Passed;
    case Verdict::Fail:
        return breaksTheContract(verdict) ? Kind::Failure : Kind::Skipped;
    case Verdict::Crash:
    case Verdict::Timeout:
    case Verdict::KitError:
        return Kind::Error;
    case Verdict::Skipped:
    case Verdict::Waived:
        return Kind::Skipped;
    }
    return Kind::Error;
}

/// A testcase of the report.
struct Case
{
    QString className;
    QString name;
    Kind kind = Kind::Passed;
    QString type;
    QString message;
    QString details;
    QString output;
    QString errorOutput;
    std::chrono::milliseconds time{0};
};

QString seconds(std::chrono::milliseconds time)
{
    return QString::number(std::chrono::duration<double>(time).count(), 'f', 3);
}

QString messageOf(const ScenarioVerdict &verdict)
{
    if (verdict.verdict == Verdict::Waived)
        return u"waived: %1 (%2: %3)"_s.arg(verdict.waiver, wordOf(verdict.unwaived), verdict.message);
    if (verdict.verdict == Verdict::Fail && verdict.head.severity != Severity::Error)
        return u"%1: %2"_s.arg(severityName(verdict.head.severity), verdict.message);
    return verdict.message;
}

QString block(const QString &title, const QStringList &lines)
{
    return lines.isEmpty() ? QString() : u"%1:\n  %2\n"_s.arg(title, lines.join(u"\n  "_s));
}

QString detailsOf(const ScenarioVerdict &verdict)
{
    QString details = u"Promise: %1\nOtherwise: %2\n"_s.arg(verdict.head.title, verdict.head.why);
    if (verdict.line > 0)
        details += u"Line of the scenario: %1\n"_s.arg(verdict.line);
    details += block(u"Expected"_s, verdict.expected) + block(u"Actual"_s, verdict.actual);
    if (!verdict.lastCall.isEmpty())
        details += u"Last step: %1\n"_s.arg(verdict.lastCall);
    return details + u"Seed: %1\nRepeat: %2\n"_s.arg(verdict.seed).arg(verdict.repeatCommand);
}

Case caseOf(const ScenarioVerdict &verdict)
{
    const qsizetype slash = verdict.name.lastIndexOf(u'/');
    const QString folder = slash < 0 ? QString() : u'.' + verdict.name.first(slash).replace(u'/', u'.');
    const Kind kind = kindOf(verdict);
    return {u"contract"_s + folder,
            verdict.name.sliced(slash + 1),
            kind,
            wordOf(verdict.verdict),
            messageOf(verdict),
            kind == Kind::Passed ? QString() : detailsOf(verdict),
            verdict.log.join(u'\n'),
            verdict.standardError,
            verdict.time};
}

QList<Case> casesOf(const CheckReport &report)
{
    QList<Case> cases;
    for (const ScenarioVerdict &verdict : report.verdicts)
        cases.append(caseOf(verdict));
    // Kit errors are cases of their own.
    const bool hasKitErrors = countOf(report.verdicts, Verdict::KitError) > 0;
    if (report.verdicts.size() < report.planned || (outcomeOf(report) == Outcome::NoAnswer && !hasKitErrors))
        cases.append(
            {u"check"_s, u"complete"_s, Kind::Error, u"incomplete"_s, answerOf(report), {}, {}, {}, {}});
    if (!report.problems.isEmpty())
        cases.append({u"check"_s,
                      u"problems"_s,
                      Kind::Failure,
                      u"problem"_s,
                      report.problems.join(u"; "_s),
                      {},
                      {},
                      {},
                      {}});
    return cases;
}

class Writer
{
public:
    explicit Writer(QByteArray &content) : m_xml(&content)
    {
        m_xml.setAutoFormatting(true);
        m_xml.setAutoFormattingIndent(1);
    }

    void write(const CheckReport &report)
    {
        const QList<Case> cases = casesOf(report);
        m_xml.writeStartDocument();
        m_xml.writeStartElement(u"testsuites"_s);
        writeNumbers(report, cases);
        m_xml.writeStartElement(u"testsuite"_s);
        writeNumbers(report, cases);
        attribute(u"timestamp"_s, report.started.toUTC().toString(u"yyyy-MM-ddTHH:mm:ss"_s));
        writeProperties(report);
        for (const Case &testCase : cases)
            writeCase(testCase);
        m_xml.writeEndDocument();
    }

private:
    void attribute(const QString &name, const QString &value)
    {
        m_xml.writeAttribute(name, visibleText(value));
    }

    void writeNumbers(const CheckReport &report, const QList<Case> &cases)
    {
        const auto count = [&](Kind kind) {
            return QString::number(std::count_if(
                cases.cbegin(), cases.cend(), [&](const Case &testCase) { return testCase.kind == kind; }));
        };
        attribute(u"name"_s, u"kvx check"_s);
        attribute(u"tests"_s, QString::number(cases.size()));
        attribute(u"failures"_s, count(Kind::Failure));
        attribute(u"errors"_s, count(Kind::Error));
        attribute(u"skipped"_s, count(Kind::Skipped));
        attribute(u"time"_s, seconds(report.time));
    }

    void writeProperties(const CheckReport &report)
    {
        m_xml.writeStartElement(u"properties"_s);
        writeProperty(u"library"_s, report.pluginFile);
        writeProperty(u"answer"_s, answerOf(report));
        writeProperty(u"level"_s, levelName(report.level));
        writeProperty(u"seed"_s, QString::number(report.seed));
        for (const auto &[name, value] : report.environment)
            writeProperty(name, value);
        m_xml.writeEndElement();
    }

    void writeProperty(const QString &name, const QString &value)
    {
        m_xml.writeEmptyElement(u"property"_s);
        attribute(u"name"_s, name);
        attribute(u"value"_s, value);
    }

    void writeCase(const Case &testCase)
    {
        m_xml.writeStartElement(u"testcase"_s);
        attribute(u"classname"_s, testCase.className);
        attribute(u"name"_s, testCase.name);
        attribute(u"time"_s, seconds(testCase.time));
        writeResult(testCase);
        writeText(u"system-out"_s, testCase.output);
        writeText(u"system-err"_s, testCase.errorOutput);
        m_xml.writeEndElement();
    }

    void writeResult(const Case &testCase)
    {
        if (testCase.kind == Kind::Passed)
            return;
        m_xml.writeStartElement(testCase.kind == Kind::Failure ? u"failure"_s
                                : testCase.kind == Kind::Error ? u"error"_s
                                                               : u"skipped"_s);
        attribute(u"type"_s, testCase.type);
        attribute(u"message"_s, testCase.message);
        m_xml.writeCharacters(visibleText(testCase.details));
        m_xml.writeEndElement();
    }

    void writeText(const QString &element, const QString &text)
    {
        if (!text.isEmpty())
            m_xml.writeTextElement(element, visibleText(text));
    }

    QXmlStreamWriter m_xml;
};

}  // namespace

std::optional<QString> writeJUnit(const CheckReport &report, const QString &file)
{
    QByteArray content;
    Writer(content).write(report);
    return writeReportFile(file, content);
}
