#include "ReportFile.h"

#include <QtCore/QSaveFile>

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

// What was written in part has no error yet; the next part has it, such as a disk that is full.
bool writeAll(QIODevice &device, QByteArrayView content)
{
    while (!content.isEmpty()) {
        const qint64 written = device.write(content.data(), content.size());
        if (written <= 0)
            return false;
        content = content.sliced(written);
    }
    return true;
}

}  // namespace

std::optional<QString> writeReportFile(const QString &file, const QByteArray &content)
{
    QSaveFile saved(file);
    if (saved.open(QIODevice::WriteOnly | QIODevice::Unbuffered) && writeAll(saved, content) &&
        saved.commit())
        return std::nullopt;
    return u"%1 cannot be written: %2"_s.arg(file, saved.errorString());
}

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
