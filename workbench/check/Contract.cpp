#include "Contract.h"

#include "ScenarioPlay.h"

#include <QtCore/QDirIterator>
#include <QtCore/QFileInfo>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr QLatin1StringView contractFolder{":/contract/"};
constexpr QLatin1StringView suffix{".kvx"};

ContractScenario scenarioOf(const QString &name, const QString &file)
{
    ContractScenario scenario;
    scenario.name = name;
    scenario.file = file;
    const std::optional<QStringList> lines = readScenario(file, scenario.defect);
    if (!lines)
        return scenario;
    if (const std::optional<HeadProblem> problem = readScenarioHead(*lines, scenario.head))
        scenario.defect = u"\"%1\" line %2: %3"_s.arg(name, QString::number(problem->line), problem->message);
    return scenario;
}

// How many letters must be changed, added or left out to make one of the other.
qsizetype distanceBetween(const QString &one, const QString &other)
{
    QList<qsizetype> row(other.size() + 1);
    for (qsizetype column = 0; column < row.size(); ++column)
        row[column] = column;
    for (const QChar letter : one) {
        qsizetype diagonal = row.first()++;
        for (qsizetype column = 1; column < row.size(); ++column) {
            const qsizetype above = row.at(column);
            const qsizetype changed = diagonal + (other.at(column - 1) == letter ? 0 : 1);
            row[column] = std::min({above + 1, row.at(column - 1) + 1, changed});
            diagonal = above;
        }
    }
    return row.last();
}

QStringList nearest(const QString &word, QStringList names)
{
    constexpr qsizetype most = 3;
    constexpr qsizetype lettersToAFault = 3;
    const auto distance = [&](const QString &name) {
        const QString last = name.section(u'/', -1);
        return std::min(distanceBetween(word, name), distanceBetween(word, last));
    };
    names.removeIf([&](const QString &name) {
        return distance(name) > std::max(qsizetype{1}, word.size() / lettersToAFault);
    });
    std::stable_sort(names.begin(), names.end(),
                     [&](const QString &a, const QString &b) { return distance(a) < distance(b); });
    return names.first(std::min(most, names.size()));
}

QString unknownName(const QString &word, const QList<ContractScenario> &contract)
{
    QStringList names;
    for (const ContractScenario &scenario : contract) {
        names.append(scenario.name);
        if (!scenario.folder().isEmpty() && !names.contains(scenario.folder()))
            names.append(scenario.folder());
    }
    names = nearest(word, names);
    return u"\"%1\" is no scenario and no folder of the contract%2; see kvx check --list"_s.arg(
        word, names.isEmpty() ? QString() : u"; near are "_s + names.join(u", "_s));
}

bool isIn(const QString &folder, const ContractScenario &scenario)
{
    return scenario.name.startsWith(folder + u'/');
}

// A folder may be written with a slash behind it, as a shell completes it.
QString withoutLastSlash(QString word)
{
    if (word.endsWith(u'/'))
        word.chop(1);
    return word;
}

class Selector
{
public:
    explicit Selector(const Selection &selection) : m_selection(selection) {}

    Selected run()
    {
        if (m_selection.wanted.isEmpty())
            take([](const ContractScenario &) { return true; });
        for (const QString &word : m_selection.wanted)
            takeWord(word);
        for (const QString &word : m_selection.excluded)
            exclude(withoutLastSlash(word));
        if (m_selected.problem.isEmpty() && m_selected.scenarios.isEmpty())
            m_selected.problem =
                u"no scenario is left to run; give another --level or exclude less; see kvx check --list"_s;
        return m_selected;
    }

private:
    template <typename Condition>
    void take(const Condition &isWanted)
    {
        for (const ContractScenario &scenario : std::as_const(m_contract)) {
            if (scenario.head.level <= m_selection.level && isWanted(scenario))
                add(scenario);
        }
    }

    void add(const ContractScenario &scenario)
    {
        const auto isSame = [&](const ContractScenario &other) { return other.name == scenario.name; };
        if (std::none_of(m_selected.scenarios.cbegin(), m_selected.scenarios.cend(), isSame))
            m_selected.scenarios.append(scenario);
    }

    void takeWord(const QString &word)
    {
        if (word.endsWith(suffix)) {
            const ContractScenario scenario = scenarioOf(word, word);
            if (!QFileInfo(word).isFile())
                m_selected.problem = u"\"%1\" is no file; give a scenario"_s.arg(word);
            else if (!scenario.defect.isEmpty())
                m_selected.problem = scenario.defect;
            add(scenario);
            return;
        }
        const QString name = withoutLastSlash(word);
        bool isKnown = false;
        for (const ContractScenario &scenario : std::as_const(m_contract)) {
            if (scenario.name == name)
                add(scenario);
            isKnown = isKnown || scenario.name == name || isIn(name, scenario);
        }
        if (!isKnown)
            m_selected.problem =
                QFileInfo(word).isFile()
                    ? u"\"%1\" is a file, but no scenario (*.kvx); check one library at a time"_s.arg(word)
                    : unknownName(word, m_contract);
        take([&](const ContractScenario &scenario) { return isIn(name, scenario); });
    }

    void exclude(const QString &name)
    {
        const auto isMeant = [&](const ContractScenario &scenario) {
            return scenario.name == name || isIn(name, scenario);
        };
        if (std::none_of(m_contract.cbegin(), m_contract.cend(), isMeant))
            m_selected.problem = unknownName(name, m_contract);
        m_selected.scenarios.removeIf(isMeant);
    }

    const Selection &m_selection;
    QList<ContractScenario> m_contract = contractScenarios();
    Selected m_selected;
};

}  // namespace

QList<ContractScenario> contractScenarios()
{
    QList<ContractScenario> scenarios;
    QDirIterator files(contractFolder, {u'*' + suffix}, QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString file = files.next();
        scenarios.append(scenarioOf(file.sliced(contractFolder.size()).chopped(suffix.size()), file));
    }
    std::sort(scenarios.begin(), scenarios.end(),
              [](const ContractScenario &a, const ContractScenario &b) { return a.name < b.name; });
    return scenarios;
}

Selected select(const Selection &selection)
{
    return Selector(selection).run();
}
