#include "LineReader.h"

#include <QtCore/QScopedPointer>

#include <editline/readline.h>

#include <cstring>
#include <iostream>
#include <string>
#include <unistd.h>

namespace {

// libedit's completion takes a plain function, so its words cannot be a member.
QStringList completions;  // clazy:exclude=non-pod-global-static

char *nextCompletion(const char *text, int state)
{
    static qsizetype next = 0;
    if (state == 0)
        next = 0;
    while (next < completions.size()) {
        const QByteArray word = completions.at(next++).toUtf8();
        if (word.startsWith(text))
            return strdup(word.constData());  // libedit frees it
    }
    return nullptr;
}

char **completeFirstWord(const char *text, int start, int /*end*/)
{
    rl_attempted_completion_over = 1;
    return start == 0 ? rl_completion_matches(text, nextCompletion) : nullptr;
}

}  // namespace

LineReader::LineReader(const QStringList &firstWords)
{
    completions = firstWords;
    rl_attempted_completion_function = completeFirstWord;
}

LineReader::~LineReader()
{
    completions.clear();
    clear_history();
}

std::optional<QString> LineReader::readLine(const QString &prompt)
{
    if (isatty(STDIN_FILENO) == 0) {
        std::string line;
        return std::getline(std::cin, line) ? std::optional<QString>(QString::fromUtf8(line)) : std::nullopt;
    }
    const QScopedPointer<char, QScopedPointerPodDeleter> line(readline(prompt.toUtf8().constData()));
    if (!line)
        return std::nullopt;
    if (*line.get() != '\0')
        add_history(line.get());
    return QString::fromUtf8(line.get());
}
