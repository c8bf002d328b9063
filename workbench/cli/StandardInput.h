#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QtGlobal>

#include <memory>
#include <optional>

/// The lines of standard input, read on a thread of its own, which ends with the input or with the program. One in a
/// program.
class StandardInput
{
public:
    /// A line that is longer has one byte more than this; the rest of it is left out.
    static constexpr qsizetype longestLine = 1 << 20;  // bytes

    StandardInput();
    ~StandardInput();
    Q_DISABLE_COPY_MOVE(StandardInput)

    /// The next line, without its end. Runs the event loop until there is one; no value at the end of the input.
    std::optional<QByteArray> nextLine();

private:
    struct Shared;
    // The thread has it, too: it cannot be ended while it waits for input.
    std::shared_ptr<Shared> m_shared;
};
