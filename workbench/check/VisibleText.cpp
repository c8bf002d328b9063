#include "VisibleText.h"

using namespace Qt::StringLiterals;

namespace {

bool isVisible(char32_t character)
{
    switch (QChar::category(character)) {
    case QChar::Other_Control:
        return character == U'\n' || character == U'\t';
    case QChar::Other_Format:  // among them those that change the direction of the text
    case QChar::Other_Surrogate:
    case QChar::Other_NotAssigned:
    case QChar::Separator_Line:
    case QChar::Separator_Paragraph:
        return false;
    default:
        return true;
    }
}

}  // namespace

QString visibleText(const QString &text)
{
    const QStringView rest(text);
    QString visible;
    visible.reserve(text.size());
    for (qsizetype index = 0; index < rest.size(); ++index) {
        const QChar first = rest.at(index);
        const bool isPair =
            first.isHighSurrogate() && index + 1 < rest.size() && rest.at(index + 1).isLowSurrogate();
        const char32_t character =
            isPair ? QChar::surrogateToUcs4(first, rest.at(index + 1)) : char32_t(first.unicode());
        if (isVisible(character))
            visible += rest.mid(index, isPair ? 2 : 1);
        else if (first != u'\r' || rest.mid(index + 1, 1) != u"\n")  // Windows ends a line with both
            visible += u"\u27e8U+%1\u27e9"_s.arg(QString::number(character, 16).toUpper(), 4, u'0');
        index += isPair ? 1 : 0;
    }
    return visible;
}
