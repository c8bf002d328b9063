#include "ScenarioPlay.h"

#include "Words.h"

#include <QtCore/QFile>

#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

// No scenario that a hand writes comes near; what does is some other kind of file.
constexpr qint64 largestScenario = 1 << 20;  // bytes

// The "=" lines behind the one that went wrong: with them, all lines are known that were expected of the
// command.
QStringList expectedBehind(const QStringList &lines, qsizetype index)
{
    QStringList expected;
    const QStringList behind = lines.mid(index + 1);
    for (const QString &line : behind) {
        const QString command = withoutComment(line);
        if (command.startsWith(u"= "))
            expected.append(behindFirstWord(line));
        else if (!command.isEmpty())
            break;
    }
    return expected;
}

}  // namespace

std::optional<QStringList> readScenario(const QString &fileName, QString &problem)
{
    QFile file(fileName);
    const bool isOpen =
        fileName == u"-" ? file.open(stdin, QIODevice::ReadOnly) : file.open(QIODevice::ReadOnly);
    if (!isOpen) {
        problem =
            u"\"%1\" cannot be read: %2; give the path of a scenario"_s.arg(fileName, file.errorString());
        return std::nullopt;
    }
    const QByteArray bytes = file.read(largestScenario + 1);
    if (bytes.size() > largestScenario || bytes.contains('\0')) {
        problem = u"\"%1\" is no scenario; give a text file with one command a line"_s.arg(fileName);
        return std::nullopt;
    }
    return QString::fromUtf8(bytes).split(u'\n');
}

PlayResult playLines(Scenario &scenario, const QStringList &lines, const PlayHooks &hooks)
{
    PlayResult played;
    for (qsizetype index = 0; index < lines.size(); ++index) {
        const QString command = withoutComment(lines.at(index));
        played.line = static_cast<int>(index) + 1;
        if (!command.isEmpty())
            hooks.beforeCommand(played.line, command);
        played.result = scenario.execute(command, index);
        hooks.afterCommand();
        if (played.skipped.isEmpty())
            played.skipped = played.result.skipped;
        if (played.result.code != ExitCode::Success && command.startsWith(u"= "))
            played.result.expected += expectedBehind(lines, index);
        if (played.result.code != ExitCode::Success || played.result.isEnd)
            return played;
        if (played.result.nextLine)
            index = *played.result.nextLine - 1;
    }
    played.result = scenario.finish();
    return played;
}
