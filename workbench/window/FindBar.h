#pragma once

#include <QtWidgets/QWidget>

class QLabel;
class QLineEdit;

/// A text to look for, next and previous. Hidden until open(); Escape dismisses it.
class FindBar : public QWidget
{
    Q_OBJECT

public:
    explicit FindBar(QWidget *parent = nullptr);

    /// Shows it with the text selected and the focus in it.
    void open();
    void dismiss();
    QString text() const;
    /// A few words beside the text: wrapped, not found.
    void setResult(const QString &result);

Q_SIGNALS:
    /// The text is another one: the place that is found may stay where it is.
    void textChanged();
    void nextWanted();
    void previousWanted();
    void closed();

protected:
    void keyPressEvent(QKeyEvent *event) override;

private:
    QLineEdit *m_text;
    QLabel *m_result;
};
