#include "Difference.h"

#include <QtCore/QList>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

struct Line
{
    QChar mark = u' ';  // '-', '+'
    QString text;
};

// The longest common part of two lists that are not too long, by the usual table of lengths.
class Comparison
{
public:
    Comparison(const QStringList &expected, const QStringList &actual)
        : m_expected(expected),
          m_actual(actual),
          m_width(actual.size() + 1),
          m_lengths((expected.size() + 1) * m_width)
    {
        for (qsizetype row = expected.size() - 1; row >= 0; --row) {
            for (qsizetype column = actual.size() - 1; column >= 0; --column)
                length(row, column) = expected.at(row) == actual.at(column)
                                          ? length(row + 1, column + 1) + 1
                                          : std::max(length(row + 1, column), length(row, column + 1));
        }
    }

    QList<Line> lines()
    {
        QList<Line> lines;
        qsizetype row = 0;
        qsizetype column = 0;
        while (row < m_expected.size() || column < m_actual.size()) {
            const bool isRowLeft = row < m_expected.size();
            const bool isColumnLeft = column < m_actual.size();
            if (isRowLeft && isColumnLeft && m_expected.at(row) == m_actual.at(column)) {
                lines.append({u' ', m_expected.at(row++)});
                ++column;
            } else if (isRowLeft && (!isColumnLeft || length(row + 1, column) >= length(row, column + 1))) {
                lines.append({u'-', m_expected.at(row++)});
            } else {
                lines.append({u'+', m_actual.at(column++)});
            }
        }
        return lines;
    }

private:
    int &length(qsizetype row, qsizetype column) { return m_lengths[row * m_width + column]; }

    const QStringList &m_expected;
    const QStringList &m_actual;
    const qsizetype m_width;
    QList<int> m_lengths;
};

QList<Line> allLines(const QStringList &expected, const QStringList &actual)
{
    // Without what both begin with: commands leave long blocks that differ at their end.
    qsizetype common = 0;
    while (common < std::min(expected.size(), actual.size()) && expected.at(common) == actual.at(common))
        ++common;
    QList<Line> lines;
    const QStringList shared = expected.first(common);
    for (const QString &text : shared)
        lines.append({u' ', text});
    const QStringList missing = expected.sliced(common);
    const QStringList surplus = actual.sliced(common);
    constexpr qsizetype mostCells = 4'000'000;
    if ((missing.size() + 1) * (surplus.size() + 1) <= mostCells)
        return lines + Comparison(missing, surplus).lines();
    for (const QString &text : missing)
        lines.append({u'-', text});
    for (const QString &text : surplus)
        lines.append({u'+', text});
    return lines;
}

}  // namespace

QStringList difference(const QStringList &expected, const QStringList &actual)
{
    constexpr qsizetype context = 3;
    const QList<Line> lines = allLines(expected, actual);
    const auto differs = [](const Line &line) { return line.mark != u' '; };
    const auto isNear = [&](qsizetype index) {
        const auto begin = lines.cbegin() + std::max(qsizetype{0}, index - context);
        const auto end = lines.cbegin() + std::min(lines.size(), index + context + 1);
        return std::any_of(begin, end, differs);
    };
    QStringList shown;
    bool isFirst = true;
    bool isLeftOut = false;
    for (qsizetype index = 0; index < lines.size(); ++index) {
        const Line &line = lines.at(index);
        if (!isNear(index)) {
            isLeftOut = true;
            continue;
        }
        if (std::exchange(isLeftOut, false))
            shown.append(u"   ..."_s);
        shown.append((isFirst && differs(line) ? u"=> "_s : u"   "_s) + line.mark + u' ' + line.text);
        isFirst = isFirst && !differs(line);
    }
    return shown;
}
