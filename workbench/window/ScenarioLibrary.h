#pragma once

#include "Engine.h"

#include <QtWidgets/QMenu>

/// Two menus with scenarios that come with kvx: the examples, which are files beside it, and those of the contract,
/// which kvx prints.
class ScenarioLibrary : public QObject
{
    Q_OBJECT

public:
    explicit ScenarioLibrary(Engine *engine, QObject *parent = nullptr);

    QMenu *examples() { return &m_examples; }
    QMenu *contract() { return &m_contract; }

Q_SIGNALS:
    void fileWanted(const QString &path);
    void textWanted(const QString &title, const QString &text);
    void problem(const QString &sentence);

private:
    void fillExamples();
    void askForContract();
    void fillContract(const QString &list);
    void askForScenario(const QString &name);

    Engine *m_engine;
    QMenu m_examples;
    QMenu m_contract;
    bool m_isFilling = false;
};
