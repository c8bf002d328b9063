#include "SequenceText.h"

#include "VisibleText.h"

#include <QtCore/QList>
#include <QtCore/QTextBoundaryFinder>

#include <limits>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

// Scripts whose letters are as wide as high, and pictures.
bool isWide(char32_t character)
{
    return (character >= 0x1100 && character <= 0x115f) || (character >= 0x2e80 && character <= 0xa4cf) ||
           (character >= 0xac00 && character <= 0xd7a3) || (character >= 0xf900 && character <= 0xfaff) ||
           (character >= 0xff00 && character <= 0xff60) || character >= 0x1f000;
}

// Where the first letters end that take so many columns at most, and how many they take.
std::pair<qsizetype, int> measured(const QString &text, int mostColumns)
{
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    qsizetype begin = 0;
    int columns = 0;
    for (qsizetype end = 0; (end = finder.toNextBoundary()) >= 0; begin = end) {
        const QList<uint> letter = QStringView(text).mid(begin, end - begin).toUcs4();
        const int width = isWide(letter.value(0)) ? 2 : 1;
        if (columns + width > mostColumns)
            break;
        columns += width;
    }
    return {begin, columns};
}

}  // namespace

int columnsOf(const QString &text)
{
    return measured(text, std::numeric_limits<int>::max()).second;
}

QString shortened(const QString &text, int mostColumns)
{
    // A letter may have any number of marks.
    constexpr qsizetype mostUnitsPerColumn = 8;
    QString beginning = visibleText(text.left(mostColumns * mostUnitsPerColumn)).simplified();
    const bool isWhole = text.size() <= mostColumns * mostUnitsPerColumn;
    if (isWhole && measured(beginning, mostColumns).first == beginning.size())
        return beginning;
    return beginning.left(measured(beginning, mostColumns - 1).first) + u'…';
}

OperationText operationText(const QString &text)
{
    const QString arrow = u" -> "_s;
    bool isQuoted = false;
    for (qsizetype index = 0; index < text.size(); ++index) {
        if (isQuoted && text.at(index) == u'\\')
            ++index;
        else if (text.at(index) == u'"')
            isQuoted = !isQuoted;
        else if (!isQuoted && QStringView(text).mid(index).startsWith(arrow))
            return {text.left(index), text.mid(index + arrow.size())};
    }
    return {text, {}};
}
