#pragma once

#include <QtCore/QString>

#include <cstddef>
#include <cstdint>

/// Reads one input, which may hold anything, and checks what the reader made of it. Each fuzz_*.cpp has one; libFuzzer
/// or CorpusMain.cpp calls it. Answers 0.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

/// Ends the program as a crash does unless the condition holds; what: the rule that is broken, for standard error.
void mustHold(bool condition, const char *what);

/// Whether a terminal shows the text on one line.
bool isOneLine(const QString &text);
