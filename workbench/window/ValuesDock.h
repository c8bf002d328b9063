#pragma once

#include "Engine.h"
#include "ValuesModel.h"

#include <QtWidgets/QLabel>
#include <QtWidgets/QTableView>
#include <QtWidgets/QWidget>

/// The values of the current device beside those of their last signals.
class ValuesDock : public QWidget
{
    Q_OBJECT

public:
    explicit ValuesDock(Engine *engine, QWidget *parent = nullptr);

private:
    QWidget *makeBar();
    void fillTable();
    void copyRows();
    void showSummary();

    const Engine *m_engine;
    ValuesModel m_model;
    ValuesFilter m_filter;
    QTableView *m_table = new QTableView(this);
    QLabel *m_summary = new QLabel(this);
};
