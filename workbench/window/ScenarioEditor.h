#pragma once

#include <QtWidgets/QPlainTextEdit>

/// A text with line numbers, in which one line is the current one of a play and one has a problem.
class ScenarioEditor : public QPlainTextEdit
{
    Q_OBJECT

public:
    explicit ScenarioEditor(QWidget *parent = nullptr);

    /// From 0; -1 for none. The view scrolls there.
    void setCurrentLine(qsizetype line);
    void setProblemLine(qsizetype line);
    qsizetype currentLine() const { return m_currentLine; }
    qsizetype problemLine() const { return m_problemLine; }

    QStringList lines() const;
    /// Replaces the text; undo brings the former one back.
    void replaceText(const QString &text);

protected:
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;
    /// A file is for the window, not for the text.
    bool canInsertFromMimeData(const QMimeData *source) const override;

private:
    friend class LineNumbers;
    int numbersWidth() const;
    void placeNumbers();
    void paintNumbers(const QPaintEvent *event);
    void markLines();
    void showLine(qsizetype line);

    QWidget *m_numbers;
    qsizetype m_currentLine = -1;
    qsizetype m_problemLine = -1;
};
