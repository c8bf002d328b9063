#include "FuzzTarget.h"
#include "Scenario.h"
#include "Words.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QJsonDocument>
#include <QtCore/QPluginLoader>

#include <map>

using namespace Qt::StringLiterals;

namespace {

QString pluginFile()
{
    return QStringLiteral(KVX_PLUGIN_FILE);
}

// For the life of the process. Keeps the library loaded, so that a scenario only counts one more user of it.
void prepareOnce()
{
    static int argc = 1;
    static char program[] = "fuzz_Scenario";
    static char *argv[] = {program, nullptr};
    static const auto *application = new QCoreApplication(argc, argv);
    static QPluginLoader library;
    if (application && !library.isLoaded()) {
        library.setLoadHints({});
        library.setFileName(pluginFile());
        mustHold(library.load(), "the plugin loads");
    }
}

// The command itself, behind the word for the thread that it comes from or the line that it runs in.
QString commandOf(const QStringList &words)
{
    return words.value(words.value(0) == u"other-thread" ? 1 : words.value(0) == u"when" ? 2 : 0);
}

// Which devices were started. The plugin counts a device that is started twice as two and keeps one of them
// when it is destroyed, so a host must not do that, and neither may a scenario that goes on afterwards.
class Starts
{
public:
    bool isSecond(const QStringList &words) const
    {
        const auto current = m_started.find(m_current);
        return commandOf(words) == u"start" && current != m_started.cend() && current->second;
    }

    bool areNone() const { return m_started.empty(); }

    void follow(const QStringList &words, const CommandResult &result)
    {
        const QString command = commandOf(words);
        if (result.code == ExitCode::Unusable)
            return;
        const bool isNew = command == u"mouse" || command == u"device";
        if (isNew || command == u"use")
            m_current = words.value(1).toULongLong();
        if (isNew || command == u"start")
            m_started[m_current] = command == u"start";
        if (command == u"unload")
            m_started.clear();
        if (command == u"remove" || (command == u"call" && words.value(1).startsWith(u'~'))) {
            m_started.erase(m_current);
            m_current = m_started.empty() ? 0 : m_started.cbegin()->first;
        }
    }

private:
    std::map<DeviceId, bool> m_started;
    DeviceId m_current = 0;
};

// Whether the line would only multiply the messages: copies of copies, and answers to them without end.
bool takesLong(const QStringList &words)
{
    constexpr int mostCopies = 3;
    const qsizetype repeat = words.indexOf(u"repeat"_s);
    const std::optional<int> copies = numberOf(words.value(repeat + 1));
    const bool isMany =
        words.value(0) == u"parallel" || (words.value(0) == u"random" && words.value(1).size() > 1);
    return isMany || words.value(0) == u"resend-limit" || (repeat >= 0 && copies && *copies > mostCopies);
}

void checkResult(const QString &line, const QStringList &words, const CommandResult &result)
{
    mustHold((result.code == ExitCode::Success) == result.message.isEmpty(),
             "a line that fails says why, any other says nothing");
    mustHold(!result.message.contains(u'\n'), "a message is one line");
    mustHold(!result.isEnd || words.value(0) == u"quit", "nothing but quit ends a scenario");
    // A word in quotes may be shown with them; what was wrong may be the lines before it.
    if (words.value(0) == u"wait" && result.code == ExitCode::Difference && !line.contains(u'"') &&
        !result.message.startsWith(u"line "))
        mustHold(result.message.contains(words.value(1)), "a wait in vain says for what");
}

void checkEntries(Scenario &scenario, const CommandResult &result)
{
    const QList<TimelineEntry> entries = scenario.takeEntries();
    mustHold(result.code != ExitCode::Unusable || entries.isEmpty(), "an unusable line does nothing");
    quint64 last = 0;
    for (const TimelineEntry &entry : entries) {
        mustHold(entry.sequence > last, "entries are numbered in their order");
        last = entry.sequence;
        mustHold(!Timeline::line(entry, scenario.lineStyle()).contains(u'\n'), "an entry is one line");
        const QByteArray json = Timeline::jsonLine(entry);
        mustHold(!json.contains('\n') && QJsonDocument::fromJson(json).isObject(),
                 "an entry is one object of JSON on one line");
    }
    mustHold(scenario.takeEntries().isEmpty(), "entries are taken once");
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    constexpr qsizetype mostLines = 40;
    prepareOnce();
    const QString text =
        QString::fromUtf8(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    Scenario scenario([](const QString &) {});
    mustHold(!scenario.load(pluginFile()), "the plugin can be used");
    mustHold(scenario.execute(u"answer-delay 0"_s).code == ExitCode::Success, "answers need no time");
    scenario.takeEntries();
    Starts starts;
    const QStringList lines = text.split(u'\n').mid(0, mostLines);
    for (const QString &line : lines) {
        const QStringList words = wordsOf(line).value_or(QStringList());
        // The library stays loaded here, so its devices would outlive the scenario.
        const bool leavesDevices = words.value(0) == u"unload" && !starts.areNone();
        if (takesLong(words) || starts.isSecond(words) || leavesDevices)
            continue;
        // On behind a failure, as at a prompt: more lines are reached.
        const CommandResult result = scenario.execute(line);
        starts.follow(words, result);
        checkResult(line, words, result);
        checkEntries(scenario, result);
        if (result.isEnd)
            break;
    }
    return 0;
}
