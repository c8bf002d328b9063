#include "ScenarioWord.h"

#include <algorithm>

QString scenarioWord(const QString &text)
{
    const bool needsQuotes =
        text.isEmpty() || text.startsWith(u'#') || text.contains(u'"') ||
        std::any_of(text.cbegin(), text.cend(), [](QChar character) { return character.isSpace(); });
    if (!needsQuotes)
        return text;
    QString word = text;
    word.replace(u'\\', QLatin1StringView("\\\\")).replace(u'"', QLatin1StringView("\\\""));
    return u'"' + word + u'"';
}
