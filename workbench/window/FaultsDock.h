#pragma once

#include "Engine.h"
#include "FaultRow.h"

#include <QtCore/QHash>
#include <QtCore/QMap>
#include <QtWidgets/QGridLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QWidget>

/// What goes wrong between the library and the mouse: one row an operation.
class FaultsDock : public QWidget
{
    Q_OBJECT

public:
    explicit FaultsDock(Engine *engine, QWidget *parent = nullptr);

private:
    QWidget *makeRows();
    void showState(const QJsonObject &state);
    /// operations: as the child's first state has them. Once; later states and children have the same.
    void addRows(const QJsonArray &operations);
    void addHeading(const QString &text);
    void addRow(const QString &operation);
    void showAnswer(const Answer &answer);

    Engine *m_engine;
    QLabel *m_summary = new QLabel(this);
    QPushButton *m_clear = new QPushButton(tr("Clear all"), this);
    QWidget *m_rowsWidget = new QWidget;  // the scroll area owns it
    QGridLayout *m_grid = new QGridLayout(m_rowsWidget);
    QMap<QString, FaultRow *> m_rows;  // by operation
    QHash<int, FaultRow *> m_asked;    // by the number of the line that was sent
};
