#include "Commands.h"
#include "MouseFields.h"
#include "ScenarioPlay.h"
#include "StandardInput.h"
#include "StepLines.h"
#include "Words.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QJsonArray>
#include <QtCore/QStringDecoder>
#include <QtCore/QTimer>

#include <algorithm>
#include <atomic>
#include <tuple>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

class JsonShell
{
public:
    JsonShell();
    Q_DISABLE_COPY_MOVE(JsonShell)

    ExitCode run(const QString &pluginFile);

private:
    void observe(const TimelineEntry &entry);
    void printSoon();
    bool printEntries();
    void printState();
    void printAnswer(int number, const QString &command, const CommandResult &result,
                     const QString &word = {});

    CommandResult answer(int number, const QByteArray &line);
    CommandResult execute(const QString &command);
    CommandResult playOtherRounds(const QString &end);

    // These outlive the scenario, whose entries come until it is gone.
    QTimer m_timer;
    QElapsedTimer m_sinceLastPrint;
    std::atomic<bool> m_isPrintDue{false};
    QJsonObject m_state;
    QStringList m_printed;
    // Behind an open "repeat".
    QStringList m_repeatedLines;
    Scenario m_scenario;
};

JsonShell::JsonShell() : m_scenario([this](const QString &text) { m_printed += text.split(u'\n'); })
{
    m_timer.setSingleShot(true);
    QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] {
        m_isPrintDue = false;
        if (printEntries())
            printState();
    });
    m_scenario.addObserver([this](const TimelineEntry &entry) { observe(entry); });
}

ExitCode JsonShell::run(const QString &pluginFile)
{
    printLines(Timeline::jsonHeader() + '\n');
    if (const std::optional<QString> reason = m_scenario.load(pluginFile)) {
        printEntries();
        printAnswer(0, {}, CommandResult::unusable(*reason), u"unloadable"_s);
        return ExitCode::Unusable;
    }
    printEntries();
    printState();
    StandardInput input;
    int number = 0;
    while (const std::optional<QByteArray> line = input.nextLine()) {
        if (answer(++number, *line).isEnd)
            break;
    }
    printEntries();
    return ExitCode::Success;
}

// On any thread.
void JsonShell::observe(const TimelineEntry &entry)
{
    if (const std::optional<QString> line = begunLine(entry))
        printLine(*line);
    if (!m_isPrintDue.exchange(true))
        QMetaObject::invokeMethod(&m_timer, [this] { printSoon(); }, Qt::QueuedConnection);
}

// At once, but what comes in quick succession together.
void JsonShell::printSoon()
{
    constexpr qint64 interval = 20;  // ms
    const qint64 passed = m_sinceLastPrint.isValid() ? m_sinceLastPrint.elapsed() : interval;
    m_timer.start(static_cast<int>(std::max(qint64{0}, interval - passed)));
}

bool JsonShell::printEntries()
{
    QByteArray lines;
    const QList<TimelineEntry> entries = m_scenario.takeEntries();
    for (const TimelineEntry &entry : entries) {
        QJsonObject object = Timeline::jsonObject(entry);
        object.insert(u"text"_s, Timeline::line(entry, Timeline::Style::Plain));
        lines += jsonText(object).toUtf8() + '\n';
    }
    if (lines.isEmpty())
        return false;
    printLines(lines);
    m_sinceLastPrint.start();
    return true;
}

void JsonShell::printState()
{
    const QJsonObject state = m_scenario.state();
    if (state == m_state)
        return;
    QJsonObject printed = state;
    if (m_state.isEmpty()) {
        printed.insert(u"mouseFields"_s, mouseFields({}));
        printed.insert(u"operations"_s, Scenario::operations());
    }
    m_state = state;
    printLine(jsonText({{u"state"_s, printed}}));
}

QString wordOf(const CommandResult &result)
{
    if (result.isEnd)
        return u"end"_s;
    if (result.code != ExitCode::Success)
        return resultWord(result.code);
    return result.skipped.isEmpty() ? u"done"_s : u"skipped"_s;
}

void JsonShell::printAnswer(int number, const QString &command, const CommandResult &result,
                            const QString &word)
{
    printLine(jsonText({{u"answer"_s, number},
                        {u"command"_s, command},
                        {u"result"_s, word.isEmpty() ? wordOf(result) : word},
                        {u"message"_s, result.message.isEmpty() ? result.skipped : result.message},
                        {u"expected"_s, QJsonArray::fromStringList(result.expected)},
                        {u"actual"_s, QJsonArray::fromStringList(result.actual)},
                        {u"printed"_s, QJsonArray::fromStringList(m_printed)}}));
}

// Why the bytes are no line of a scenario.
std::optional<QString> problemOf(const QByteArray &line)
{
    if (line.size() > StandardInput::longestLine)
        return u"the line is longer than %1 bytes; write a shorter one"_s.arg(StandardInput::longestLine);
    if (line.contains('\0'))
        return u"the line has a NUL character; write text"_s;
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    std::ignore = static_cast<QString>(decoder(line));
    return decoder.hasError() ? std::optional<QString>(u"the line is no UTF-8; write it in UTF-8"_s)
                              : std::nullopt;
}

CommandResult JsonShell::answer(int number, const QByteArray &line)
{
    m_printed.clear();
    QString command;
    CommandResult result;
    if (const std::optional<QString> problem = problemOf(line)) {
        result = CommandResult::unusable(*problem);
    } else {
        command = withoutComment(QString::fromUtf8(line));
        result = execute(command);
    }
    printEntries();
    printAnswer(number, command, result);
    if (!result.isEnd)
        printState();
    return result;
}

CommandResult JsonShell::execute(const QString &command)
{
    const bool isRepeated = m_scenario.isRepeating();
    CommandResult result = m_scenario.execute(command, isRepeated ? m_repeatedLines.size() : -1);
    if (!isRepeated || !m_scenario.isRepeating()) {
        m_repeatedLines.clear();
        return result;
    }
    if (result.nextLine)
        return playOtherRounds(command);
    if (!command.isEmpty() && command != u"end" && result.code != ExitCode::Unusable)
        m_repeatedLines.append(command);
    return result;
}

CommandResult JsonShell::playOtherRounds(const QString &end)
{
    const QStringList lines = std::exchange(m_repeatedLines, {}) + QStringList{end};
    // What the rounds print may be more than fits into the memory.
    const auto beforeCommand = [this](int line, const QString & /*command*/) {
        if (line == 1)
            m_printed.clear();
    };
    PlayResult played = playLines(m_scenario, lines, {beforeCommand, [this] { printEntries(); }});
    CommandResult result = std::move(played.result);
    result.skipped = played.skipped;
    if (m_scenario.isRepeating()) {
        m_scenario.stopRepeating();
        result.message =
            u"repeat ends in a later round at \"%1\": %2"_s.arg(lines.at(played.line - 1), result.message);
    }
    return result;
}

}  // namespace

ExitCode runJsonShell(const QString &pluginFile)
{
    return JsonShell().run(pluginFile);
}
