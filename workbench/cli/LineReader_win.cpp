#include "LineReader.h"

#include <cstdio>
#include <io.h>
#include <iostream>
#include <string>

// The Windows console edits lines and keeps a history by itself.

LineReader::LineReader(const QStringList & /*firstWords*/) {}

LineReader::~LineReader() = default;

std::optional<QString> LineReader::readLine(const QString &prompt)
{
    if (_isatty(_fileno(stdin)) != 0)
        std::cout << prompt.toUtf8().constData() << std::flush;
    std::string line;
    return std::getline(std::cin, line) ? std::optional<QString>(QString::fromUtf8(line)) : std::nullopt;
}
