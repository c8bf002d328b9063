#include "ScenarioEditor.h"

#include "MixedColor.h"
#include "ScenarioHighlighter.h"

#include <QtCore/QMimeData>
#include <QtGui/QFontDatabase>
#include <QtGui/QPainter>
#include <QtGui/QTextBlock>
#include <QtWidgets/QScrollBar>

#include <algorithm>

/// The margin with the numbers; the editor paints it.
class LineNumbers : public QWidget
{
public:
    explicit LineNumbers(ScenarioEditor *editor) : QWidget(editor), m_editor(editor) {}

protected:
    void paintEvent(QPaintEvent *event) override { m_editor->paintNumbers(event); }

private:
    ScenarioEditor *m_editor;
};

ScenarioEditor::ScenarioEditor(QWidget *parent) : QPlainTextEdit(parent), m_numbers(new LineNumbers(this))
{
    setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    setLineWrapMode(NoWrap);
    setTabChangesFocus(true);
    new ScenarioHighlighter(document(), this);
    connect(this, &QPlainTextEdit::blockCountChanged, this, &ScenarioEditor::placeNumbers);
    connect(this, &QPlainTextEdit::updateRequest, this, [this](const QRect &area, int scrolled) {
        scrolled != 0 ? m_numbers->scroll(0, scrolled)
                      : m_numbers->update(0, area.y(), m_numbers->width(), area.height());
    });
    placeNumbers();
}

void ScenarioEditor::setCurrentLine(qsizetype line)
{
    if (line == m_currentLine)
        return;
    m_currentLine = line;
    markLines();
    showLine(line);
}

void ScenarioEditor::setProblemLine(qsizetype line)
{
    if (line == m_problemLine)
        return;
    m_problemLine = line;
    markLines();
    showLine(line);
}

QStringList ScenarioEditor::lines() const
{
    QStringList lines = toPlainText().split(u'\n');
    if (lines.last().isEmpty())
        lines.removeLast();
    return lines;
}

void ScenarioEditor::replaceText(const QString &text)
{
    setCurrentLine(-1);
    setProblemLine(-1);
    QTextCursor cursor(document());
    cursor.select(QTextCursor::Document);
    cursor.insertText(text);
    moveCursor(QTextCursor::Start);
}

// The text cursor stays where the user left it. No line is wrapped, so the bar counts lines.
void ScenarioEditor::showLine(qsizetype line)
{
    QScrollBar *bar = verticalScrollBar();
    const int value = static_cast<int>(line);
    if (line >= 0 && (value < bar->value() || value >= bar->value() + bar->pageStep()))
        bar->setValue(value - bar->pageStep() / 2);
}

void ScenarioEditor::markLines()
{
    constexpr double share = 0.3;  // the text is readable on it
    QList<QTextEdit::ExtraSelection> marks;
    const auto mark = [this, &marks](qsizetype line, const QColor &color) {
        const QTextBlock block = document()->findBlockByNumber(static_cast<int>(line));
        if (line < 0 || !block.isValid())
            return;
        QTextEdit::ExtraSelection selection;
        selection.cursor = QTextCursor(block);
        selection.format.setBackground(mixed(palette().color(QPalette::Base), color, share));
        selection.format.setProperty(QTextFormat::FullWidthSelection, true);
        marks.append(selection);
    };
    mark(m_currentLine, palette().color(QPalette::Highlight));
    mark(m_problemLine, Qt::red);
    setExtraSelections(marks);
    m_numbers->update();
}

int ScenarioEditor::numbersWidth() const
{
    constexpr qsizetype fewestDigits = 3;
    const qsizetype digits = std::max(fewestDigits, QString::number(blockCount()).size());
    // Two more: the mark and a blank.
    return fontMetrics().horizontalAdvance(QString(digits + 2, u'0'));
}

void ScenarioEditor::placeNumbers()
{
    setViewportMargins(numbersWidth(), 0, 0, 0);
    const QRect area = contentsRect();
    m_numbers->setGeometry(area.left(), area.top(), numbersWidth(), area.height());
}

void ScenarioEditor::paintNumbers(const QPaintEvent *event)
{
    QPainter painter(m_numbers);
    painter.fillRect(event->rect(), palette().color(QPalette::AlternateBase));
    painter.setFont(font());
    const int blank = fontMetrics().horizontalAdvance(u' ');
    for (QTextBlock block = firstVisibleBlock(); block.isValid(); block = block.next()) {
        const QRect line = blockBoundingGeometry(block).translated(contentOffset()).toAlignedRect();
        if (line.top() > event->rect().bottom())
            break;
        const bool isCurrent = block.blockNumber() == m_currentLine;
        const bool isProblem = block.blockNumber() == m_problemLine;
        const QRect place(0, line.top(), m_numbers->width() - blank, line.height());
        painter.setPen(
            palette().color(isCurrent || isProblem ? QPalette::Active : QPalette::Disabled, QPalette::Text));
        painter.drawText(place, Qt::AlignRight | Qt::AlignTop, QString::number(block.blockNumber() + 1));
        if (isCurrent || isProblem)
            painter.drawText(place, Qt::AlignLeft | Qt::AlignTop,
                             QString(QChar(isProblem ? u'\u2717' : u'\u25b8')));
    }
}

void ScenarioEditor::resizeEvent(QResizeEvent *event)
{
    QPlainTextEdit::resizeEvent(event);
    placeNumbers();
}

void ScenarioEditor::changeEvent(QEvent *event)
{
    QPlainTextEdit::changeEvent(event);
    if (event->type() == QEvent::FontChange)
        placeNumbers();
    else if (event->type() == QEvent::PaletteChange)
        markLines();
}

bool ScenarioEditor::canInsertFromMimeData(const QMimeData *source) const
{
    return !source->hasUrls() && QPlainTextEdit::canInsertFromMimeData(source);
}
