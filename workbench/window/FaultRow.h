#pragma once

#include <QtCore/QObject>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QGridLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QSpinBox>
#include <QtWidgets/QToolButton>

/// The fields of one operation that faults can be set for. Below them in the grid, when there is any, what is in force
/// and what was wrong with the line.
class FaultRow : public QObject
{
    Q_OBJECT

public:
    enum Column { Operation, Effect, Value, Times, Set, ColumnCount };

    /// The widgets belong to the grid's widget.
    FaultRow(const QString &operation, QGridLayout *grid, QObject *parent);

    /// The faults of this operation, in words.
    void showInForce(const QString &faults);
    /// What was wrong with the line; empty when nothing was.
    void showProblem(const QString &problem);

Q_SIGNALS:
    void lineEntered(const QString &line);

private:
    QWidget *parentWidget() const { return m_effect->parentWidget(); }
    void noteEffect();
    QString line() const;

    QString m_operation;
    QComboBox *m_effect;
    QLineEdit *m_value;
    QSpinBox *m_times;
    QToolButton *m_set;
    QLabel *m_inForce;
    QLabel *m_problem;
};
