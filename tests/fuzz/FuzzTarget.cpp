#include "FuzzTarget.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

void mustHold(bool condition, const char *what)
{
    if (condition)
        return;
    std::fprintf(stderr, "broken: %s\n", what);
    std::fflush(stderr);
    std::abort();
}

bool isOneLine(const QString &text)
{
    // Line feed to carriage return, next line, and the two separators.
    return std::none_of(text.cbegin(), text.cend(), [](QChar character) {
        const char16_t code = character.unicode();
        return (code >= 0x0a && code <= 0x0d) || code == 0x85 || code == 0x2028 || code == 0x2029;
    });
}
