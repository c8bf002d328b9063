#include "SessionCommand.h"

#include "Session.h"

using namespace Qt::StringLiterals;

namespace {

void printDifference(const Session::Difference &difference)
{
    printError(u"in the step \"%1\", %2 differs: expected %3, seen %4"_s.arg(
        difference.step, difference.what, difference.expected, difference.seen));
}

void printSummary(const Session &session)
{
    constexpr int nameWidth = 16;
    printLine({});
    const QList<QPair<QString, QString>> summary = session.summary();
    for (const auto &[name, value] : summary)
        printLine(u"  "_s + name.leftJustified(nameWidth) + value);
}

}  // namespace

ExitCode runSession(const SessionOptions &options)
{
    Session session(options.pluginFile.isEmpty() ? libraryBesideTheProgram() : options.pluginFile);
    if (const std::optional<QString> reason = session.load()) {
        printError(*reason);
        return ExitCode::Unusable;
    }
    if (options.isJson)
        printLine(QString::fromUtf8(Timeline::jsonHeader()));
    // After each step and not at the end, so that a step in which a plugin crashes is known.
    session.run([&](const QList<TimelineEntry> &entries) {
        if (options.isJson)
            printEntriesAsJson(entries);
        else
            printEntries(entries, Timeline::Style::Full);
    });

    const QList<Session::Difference> differences = session.differences();
    for (const Session::Difference &difference : differences)
        printDifference(difference);
    if (!options.isJson)
        printSummary(session);
    if (!differences.isEmpty()) {
        printError(u"session: %1 of %2 checks failed"_s.arg(differences.size()).arg(session.checkCount()));
        return ExitCode::Difference;
    }
    if (!options.isJson)
        printLine(u"session: all %1 checks passed"_s.arg(session.checkCount()));
    return ExitCode::Success;
}
