#include "Waivers.h"

#include <QtCore/QFile>

#include <algorithm>
#include <string_view>
#include <toml++/toml.h>

using namespace Qt::StringLiterals;

namespace {

QString textOf(std::string_view text)
{
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

QDate dateOf(const toml::date &date)
{
    return QDate(date.year, date.month, date.day);
}

class WaiverReader
{
public:
    explicit WaiverReader(const QString &file) : m_file(file) {}

    Waivers read()
    {
        QFile file(m_file);
        if (!file.open(QFile::ReadOnly)) {
            m_waivers.problem =
                u"\"%1\" cannot be read: %2; give a file of waivers"_s.arg(m_file, file.errorString());
            return m_waivers;
        }
        const QByteArray bytes = file.readAll();
        const toml::parse_result parsed =
            toml::parse(std::string_view(bytes.constData(), static_cast<std::size_t>(bytes.size())));
        if (parsed)
            readTable(parsed.table());
        else
            refuse(parsed.error().source().begin.line,
                   textOf(parsed.error().description()) + u"; a waiver begins with [[waiver]]"_s);
        return m_waivers;
    }

private:
    void refuse(toml::source_index line, const QString &what)
    {
        if (m_waivers.problem.isEmpty())
            m_waivers.problem = u"\"%1\" line %2: %3"_s.arg(m_file).arg(line).arg(what);
    }

    void readTable(const toml::table &table)
    {
        for (const auto &[key, value] : table) {
            const toml::array *const waivers = value.as_array();
            if (key.str() != "waiver" || !waivers || !waivers->is_homogeneous<toml::table>())
                return refuse(key.source().begin.line, u"only tables [[waiver]] may be here"_s);
            waivers->for_each([this](const toml::table &waiver) { readWaiver(waiver); });
        }
    }

    void readWaiver(const toml::table &table)
    {
        Waiver waiver;
        for (const auto &[key, value] : table) {
            const toml::source_index line = key.source().begin.line;
            if (key.str() == "name" && value.is_string())
                waiver.name = textOf(value.as_string()->get());
            else if (key.str() == "reason" && value.is_string())
                waiver.reason = textOf(value.as_string()->get());
            else if (key.str() == "until" && value.is_date())
                waiver.until = dateOf(value.as_date()->get());
            else
                refuse(line,
                       u"\"%1\" is wrong; a waiver has name = \"...\", reason = \"...\" and, if it ends, "
                       "until = 2027-01-31"_s.arg(textOf(key.str())));
        }
        const toml::source_index line = table.source().begin.line;
        if (waiver.name.isEmpty() || waiver.reason.trimmed().isEmpty())
            refuse(line, u"a waiver needs a name and a reason"_s);
        const auto isSame = [&](const Waiver &other) { return other.name == waiver.name; };
        if (std::any_of(m_waivers.all.cbegin(), m_waivers.all.cend(), isSame))
            refuse(line, u"\"%1\" has two waivers; delete one"_s.arg(waiver.name));
        m_waivers.all.append(waiver);
    }

    const QString m_file;
    Waivers m_waivers;
};

bool isOver(const Waiver &waiver, const QDate &today)
{
    return waiver.until.isValid() && waiver.until < today;
}

}  // namespace

Waivers readWaivers(const QString &file)
{
    return WaiverReader(file).read();
}

void applyWaiver(const QList<Waiver> &waivers, const QDate &today, ScenarioVerdict &verdict)
{
    verdict.unwaived = verdict.verdict;
    const bool isFailure = verdict.verdict == Verdict::Fail || verdict.verdict == Verdict::Crash ||
                           verdict.verdict == Verdict::Timeout;
    for (const Waiver &waiver : waivers) {
        if (isFailure && waiver.name == verdict.name && !isOver(waiver, today)) {
            verdict.verdict = Verdict::Waived;
            verdict.waiver = waiver.reason;
        }
    }
}

QStringList staleWaivers(const QList<Waiver> &waivers, const QDate &today,
                         const QList<ScenarioVerdict> &verdicts, const QStringList &names)
{
    QStringList problems;
    const auto passes = [&](const QString &name) {
        return std::any_of(verdicts.cbegin(), verdicts.cend(), [&](const ScenarioVerdict &verdict) {
            return verdict.name == name && verdict.verdict == Verdict::Pass;
        });
    };
    for (const Waiver &waiver : waivers) {
        const auto isInside = [&](const QString &name) { return name.startsWith(waiver.name + u'/'); };
        if (std::any_of(names.cbegin(), names.cend(), isInside))
            problems.append(
                u"the waiver for \"%1\" names a folder, which cannot be waived; name its scenarios"_s.arg(
                    waiver.name));
        else if (!names.contains(waiver.name))
            problems.append(
                u"the waiver for \"%1\" names no scenario; correct or delete it"_s.arg(waiver.name));
        else if (isOver(waiver, today))
            problems.append(
                u"the waiver for \"%1\" ended on %2; repair the library or agree on a later day"_s.arg(
                    waiver.name, waiver.until.toString(Qt::ISODate)));
        else if (passes(waiver.name))
            problems.append(
                u"the waiver for \"%1\" is not needed any more, the scenario passes; delete it"_s.arg(
                    waiver.name));
    }
    return problems;
}
