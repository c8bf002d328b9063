#include "Scenario.h"

#include "ScenarioWriter.h"

#include <algorithm>
#include <iterator>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

QStringList withoutLog(const QStringList &lines)
{
    QStringList rest;
    for (const QString &line : lines) {
        if (!isLogLine(line))
            rest.append(line);
    }
    return rest;
}

// Addresses are others in every run.
bool isTheSameInEveryRun(const QString &line)
{
    return !line.contains(u"0x") && !line.contains(u'\n');
}

void expectLog(ScenarioWriter &writer, const Deviation &deviation)
{
    QStringList log;
    std::copy_if(deviation.expectedLines.cbegin(), deviation.expectedLines.cend(), std::back_inserter(log),
                 &isLogLine);
    if (std::all_of(log.cbegin(), log.cend(), &isTheSameInEveryRun)) {
        writer.expectLog(log);
        return;
    }
    for (const QString &line : std::as_const(log)) {
        if (isTheSameInEveryRun(line) && !deviation.seenLines.contains(line))
            writer.expectLogLine(line);
    }
}

void writeBoth(ScenarioWriter &writer, const Deviation &deviation)
{
    if (deviation.expectedLines != deviation.seenLines) {
        writer.writeComment(u"expected:\n  "_s + deviation.expectedLines.join(u"\n  "_s));
        writer.writeComment(u"seen:\n  "_s + deviation.seenLines.join(u"\n  "_s));
    }
    for (const Deviation::Value &value : deviation.values)
        writer.writeComment(u"device %1, %2: expected \"%3\", seen \"%4\""_s.arg(
            QString::number(value.device), value.difference.getter, value.difference.expected,
            value.difference.seen));
}

// The getters that kvx knows by their names.
bool isKnownToScenarios(const QString &getter)
{
    static const QStringList names{u"modelCode"_s,
                                   u"name"_s,
                                   u"instanceNumber"_s,
                                   u"firmwareVersion"_s,
                                   u"hasBatteryLevel"_s,
                                   u"batteryLevel"_s,
                                   u"statusValue"_s,
                                   u"deviceValue"_s,
                                   u"levelValue"_s,
                                   u"ppid"_s,
                                   u"isSmartPointerSupported"_s,
                                   u"dpiMin"_s,
                                   u"dpiMax"_s,
                                   u"dpiDelta"_s,
                                   u"dpiValue"_s,
                                   u"dpiSlotValues"_s,
                                   u"isDpiSlotValuesChangePending"_s,
                                   u"activeDpiSlotIndex"_s,
                                   u"isActiveDpiSlotIndexChangePending"_s,
                                   u"dpiButtonId"_s,
                                   u"isDpiButtonIdChangePending"_s,
                                   u"reportRate"_s,
                                   u"reportRateValues"_s,
                                   u"isReportRateChangePending"_s};
    return names.contains(getter);
}

void writeExpectations(ScenarioWriter &writer, const Deviation &deviation)
{
    const bool isOnlyTheLog = withoutLog(deviation.expectedLines) == withoutLog(deviation.seenLines);
    if (writer.isCommand() && !isOnlyTheLog)
        writer.expectLines(*deviation.operation, deviation.insideReport.get(), deviation.expectedLines);
    if (writer.isCommand() && isOnlyTheLog && deviation.expectedLines != deviation.seenLines)
        expectLog(writer, deviation);
    for (const Deviation::Value &value : deviation.values) {
        if (isKnownToScenarios(value.difference.getter))
            writer.expectValue(value.device, value.difference.getter, value.difference.expected);
    }
}

}  // namespace

QString scenarioText(const SequenceResult &result)
{
    ScenarioWriter writer;
    for (const OperationPointer &operation : result.operations)
        writer.write(*operation);
    if (result.deviation) {
        if (!result.deviation->operation)
            writer.writeComment(u"the library is unloaded"_s);
        writeBoth(writer, *result.deviation);
        if (!writer.isWhole())
            writer.writeComment(
                u"Not all of it has commands, so the run alone does not show the deviation."_s);
        else if (result.deviation->operation)
            writeExpectations(writer, *result.deviation);
    }
    return writer.text();
}
