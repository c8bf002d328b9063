#include "ScenarioHighlighter.h"

#include "ScenarioText.h"

#include <QtWidgets/QWidget>

using namespace Qt::StringLiterals;

ScenarioHighlighter::ScenarioHighlighter(QTextDocument *document, const QWidget *widget)
    : QSyntaxHighlighter(document), m_widget(widget)
{}

void ScenarioHighlighter::highlightBlock(const QString &line)
{
    const QPalette palette = m_widget->palette();
    const qsizetype comment = commentStart(line);
    const QString command = commandWord(line);

    QTextCharFormat words;
    if (command == "expect"_L1 || command == "="_L1 || command == "wait"_L1)
        words.setForeground(palette.link());
    else
        words.setFontWeight(QFont::Bold);
    setFormat(static_cast<int>(line.indexOf(command)), static_cast<int>(command.size()), words);

    const qsizetype outcome = QStringView(line).left(comment).lastIndexOf("=> "_L1);
    if (outcome > 0) {
        QTextCharFormat expected;
        expected.setForeground(palette.link());
        setFormat(static_cast<int>(outcome), static_cast<int>(comment - outcome), expected);
    }

    QTextCharFormat aside;
    aside.setForeground(palette.color(QPalette::PlaceholderText));
    aside.setFontItalic(true);
    setFormat(static_cast<int>(comment), static_cast<int>(line.size() - comment), aside);
}
