#pragma once

#include <QtCore/QDebug>
#include <QtCore/QLoggingCategory>

#include <tuple>
#include <type_traits>

// A log line is put together from its operands first and written in a function of its own. Streamed on the
// spot, as with qCDebug, it would make each operation save registers for a line that is hardly ever written.

/// The operands of one line: numbers and texts of literals by value, all else by reference to what outlives the line.
template <typename... Operands>
struct LogOperands
{
    std::tuple<Operands...> values;

    template <typename Operand>
    auto operator<<(const Operand &operand) const
    {
        using Decayed = std::decay_t<const Operand &>;
        using Held = std::conditional_t<std::is_scalar_v<Decayed>, Decayed, const Operand &>;
        return LogOperands<Operands..., Held>{std::tuple_cat(values, std::tuple<Held>(operand))};
    }
};

/// Writes one line to a category, if that is enabled; <<= binds less than the << between its operands.
template <QtMsgType type>
struct LogLine
{
    const QLoggingCategory &(*category)();
    const char *file;
    int line;
    const char *function;

    template <typename... Operands>
    Q_NEVER_INLINE void operator<<=(const LogOperands<Operands...> &operands) const
    {
        if (category().isEnabled(type))
            std::apply([this](const auto &...values) { (stream() << ... << values); }, operands.values);
    }

private:
    QDebug stream() const
    {
        const QMessageLogger logger(file, line, function, category().categoryName());
        if constexpr (type == QtDebugMsg)
            return logger.debug();
        else if constexpr (type == QtWarningMsg)
            return logger.warning();
        else
            return logger.critical();
    }
};
