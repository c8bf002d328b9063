#pragma once

#include <QtGui/QSyntaxHighlighter>

class QWidget;

/// Sets comments, the first word of a line, and what a line expects apart, in colours of the widget's palette.
class ScenarioHighlighter : public QSyntaxHighlighter
{
    Q_OBJECT

public:
    ScenarioHighlighter(QTextDocument *document, const QWidget *widget);

protected:
    void highlightBlock(const QString &line) override;

private:
    const QWidget *m_widget;
};
