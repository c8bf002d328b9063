#include "ScenarioLibrary.h"

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QJsonDocument>

using namespace Qt::StringLiterals;

namespace {

// In a package and in a build tree they are in a folder above kvx.
QFileInfoList examplesNear(const QString &kvx)
{
    constexpr int levels = 4;
    QDir folder = QFileInfo(kvx).absoluteDir();
    for (int level = 0; level < levels; ++level) {
        const QDir examples(folder.filePath(u"examples"_s));
        const QFileInfoList files = examples.entryInfoList({u"*.kvx"_s}, QDir::Files, QDir::Name);
        if (!files.isEmpty() || !folder.cdUp())
            return files;
    }
    return {};
}

void addNote(QMenu &menu, const QString &note)
{
    menu.clear();
    menu.addAction(note)->setEnabled(false);
}

}  // namespace

ScenarioLibrary::ScenarioLibrary(Engine *engine, QObject *parent) : QObject(parent), m_engine(engine)
{
    m_examples.setTitle(tr("E&xamples"));
    m_examples.setObjectName("examplesMenu"_L1);
    m_contract.setTitle(tr("Con&tract"));
    m_contract.setObjectName("contractMenu"_L1);
    m_contract.setToolTipsVisible(true);
    addNote(m_examples, tr("No examples were found beside kvx"));
    addNote(m_contract, tr("kvx is asked for its scenarios..."));
    connect(&m_examples, &QMenu::aboutToShow, this, &ScenarioLibrary::fillExamples);
    connect(&m_contract, &QMenu::aboutToShow, this, &ScenarioLibrary::askForContract);
}

void ScenarioLibrary::fillExamples()
{
    const QFileInfoList files = examplesNear(m_engine->setup().kvx);
    if (files.isEmpty())
        return;
    m_examples.clear();
    for (const QFileInfo &file : files)
        m_examples.addAction(file.completeBaseName(), this,
                             [this, path = file.filePath()] { Q_EMIT fileWanted(path); });
}

void ScenarioLibrary::askForContract()
{
    if (std::exchange(m_isFilling, true))
        return;
    askKvx(m_engine->setup(), {u"check"_s, u"--list"_s, u"--json"_s}, this, [this](const KvxAnswer &answer) {
        if (answer.problem.isEmpty()) {
            fillContract(answer.output);
            return;
        }
        m_isFilling = false;  // asked again next time
        addNote(m_contract, tr("kvx does not list its scenarios: %1").arg(answer.problem));
    });
}

void ScenarioLibrary::fillContract(const QString &list)
{
    m_contract.clear();
    const QJsonArray scenarios = QJsonDocument::fromJson(list.toUtf8())["scenarios"_L1].toArray();
    QHash<QString, QMenu *> folders;
    for (const auto &scenario : scenarios) {
        const QString name = scenario["name"_L1].toString();
        const QString folder = name.section(u'/', 0, -2);
        QMenu *menu = folders.value(folder);
        if (!menu) {
            menu = folder.isEmpty() ? &m_contract : m_contract.addMenu(folder);
            menu->setToolTipsVisible(true);
            folders.insert(folder, menu);
        }
        QAction *action =
            menu->addAction(name.section(u'/', -1), this, [this, name] { askForScenario(name); });
        action->setToolTip(scenario["title"_L1].toString());
    }
    if (m_contract.isEmpty())
        addNote(m_contract, tr("kvx has no scenarios"));
}

void ScenarioLibrary::askForScenario(const QString &name)
{
    askKvxForScenario(m_engine->setup(), name, this,
                      [this, name](const QString &text, const QString &sentence) {
                          if (sentence.isEmpty())
                              Q_EMIT textWanted(name, text);
                          else
                              Q_EMIT problem(sentence);
                      });
}
