#include "ScenarioHead.h"

#include <QtCore/QRegularExpression>
#include <QtCore/QtGlobal>

using namespace Qt::StringLiterals;

namespace {

#ifdef Q_OS_WIN
const QLatin1StringView ownSystem = "windows"_L1;
#else
const QLatin1StringView ownSystem = "linux"_L1;
#endif

// In the order of the enumerations.
QStringList severityNames()
{
    return {u"error"_s, u"warning"_s, u"note"_s};
}

QStringList keys()
{
    return {u"title"_s, u"why"_s, u"level"_s, u"severity"_s, u"system"_s};
}

// Sets what the key is for; what is wrong with the value, or nothing.
QString setValue(ScenarioHead &head, const QString &key, const QString &value)
{
    const auto wrongWord = [&](const QStringList &known) {
        return u"\"%1\" is no %2; write %3"_s.arg(value, key, known.join(u", "_s));
    };
    const QStringList systems{u"linux"_s, u"windows"_s};
    if (value.isEmpty())
        return u"the %1 is empty; write it behind the colon"_s.arg(key);
    if (key == u"title") {
        head.title = value;
    } else if (key == u"why") {
        head.why = value;
    } else if (key == u"level") {
        const std::optional<Level> level = levelOf(value);
        if (!level)
            return wrongWord(levelNames());
        head.level = *level;
    } else if (key == u"severity") {
        const qsizetype index = severityNames().indexOf(value);
        if (index < 0)
            return wrongWord(severityNames());
        head.severity = static_cast<Severity>(index);
    } else if (!systems.contains(value)) {
        return wrongWord(systems);
    } else {
        head.system = value;
    }
    return {};
}

}  // namespace

QString ScenarioHead::reasonToSkip() const
{
    if (system.isEmpty() || system == ownSystem)
        return {};
    return system == u"windows" ? u"for Windows only"_s : u"for Linux only"_s;
}

std::optional<HeadProblem> readScenarioHead(const QStringList &lines, ScenarioHead &head)
{
    static const QRegularExpression headLine(u"^#\\s*([a-z]+):(.*)$"_s,
                                             QRegularExpression::DotMatchesEverythingOption);
    QStringList given;
    int &number = head.length;
    number = 0;
    for (const QString &line : lines) {
        const QRegularExpressionMatch match = headLine.match(line);
        if (!match.hasMatch())
            break;
        ++number;
        const QString key = match.captured(1);
        if (!keys().contains(key))
            return HeadProblem{number,
                               u"\"%1\" is no key of a head; there are %2"_s.arg(key, keys().join(u", "_s))};
        if (given.contains(key))
            return HeadProblem{number, u"the head has \"%1\" twice; delete one of the lines"_s.arg(key)};
        given.append(key);
        const QString problem = setValue(head, key, match.captured(2).trimmed());
        if (!problem.isEmpty())
            return HeadProblem{number, problem};
    }
    for (const QString &key : {u"title"_s, u"why"_s, u"level"_s}) {
        if (!given.contains(key))
            return HeadProblem{number + 1,
                               u"the head has no %1; write \"# %1: ...\" in the first lines"_s.arg(key)};
    }
    return std::nullopt;
}

QString levelName(Level level)
{
    return levelNames().at(static_cast<qsizetype>(level));
}

QString severityName(Severity severity)
{
    return severityNames().at(static_cast<qsizetype>(severity));
}

std::optional<Level> levelOf(const QString &word)
{
    const qsizetype index = levelNames().indexOf(word);
    return index < 0 ? std::nullopt : std::optional<Level>(static_cast<Level>(index));
}

QStringList levelNames()
{
    return {u"load"_s, u"contract"_s, u"stress"_s};
}
