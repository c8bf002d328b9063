#include "CheckDetails.h"

#include "Difference.h"
#include "JsonStrings.h"
#include "MixedColor.h"
#include "VisibleText.h"

#include <QtCore/QEvent>
#include <QtCore/QJsonArray>

using namespace Qt::StringLiterals;

namespace {

QString escaped(const QString &text)
{
    return visibleText(text).toHtmlEscaped();
}

QString paragraph(const QString &text)
{
    return text.isEmpty() ? QString() : u"<p>%1</p>"_s.arg(text);
}

// Already escaped.
QString block(const QString &title, const QString &lines)
{
    return lines.isEmpty() ? QString() : u"<p><b>%1</b></p><pre>%2</pre>"_s.arg(title, lines);
}

QString differenceOf(const QJsonObject &scenario, const QColor &base)
{
    constexpr double share = 0.25;
    constexpr qsizetype markColumn = 3;
    const QString missing = mixed(base, Qt::red, share).name();
    const QString surplus = mixed(base, Qt::green, share).name();
    QStringList marked;
    const QStringList lines =
        difference(stringsOf(scenario["expected"_L1]), stringsOf(scenario["actual"_L1]));
    for (const QString &line : lines) {
        const QChar mark = line.size() > markColumn ? line.at(markColumn) : u' ';
        marked.append(mark == u' ' || line.startsWith("   ..."_L1)
                          ? escaped(line)
                          : u"<span style=\"background-color:%1\">%2</span>"_s.arg(
                                mark == u'-' ? missing : surplus, escaped(line)));
    }
    return marked.join(u'\n');
}

}  // namespace

CheckDetails::CheckDetails(QWidget *parent) : QTextBrowser(parent)
{
    setOpenLinks(false);
}

void CheckDetails::showScenario(const QJsonObject &scenario, const QString &command)
{
    m_scenario = scenario;
    m_command = command;
    render();
}

void CheckDetails::changeEvent(QEvent *event)
{
    QTextBrowser::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        render();
}

void CheckDetails::render()
{
    if (m_scenario.isEmpty()) {
        clear();
        return;
    }
    const auto text = [this](QLatin1StringView key) { return escaped(m_scenario[key].toString()); };
    const auto lines = [this](QLatin1StringView key) {
        return escaped(stringsOf(m_scenario[key]).join(u'\n'));
    };
    const int line = m_scenario["line"_L1].toInt();
    const QString place = line > 0 ? tr("line %1: ").arg(line) : QString();
    const QString message = text("message"_L1);
    QString html = u"<h3>%1: %2</h3>"_s.arg(text("verdict"_L1), text("name"_L1));
    html += paragraph(u"<b>%1</b>"_s.arg(text("title"_L1)));
    html += paragraph(text("why"_L1));
    html += paragraph(message.isEmpty() ? QString() : tr("Found: %1").arg(place + message));
    html += paragraph(text("waiver"_L1).isEmpty() ? QString() : tr("Waiver: %1").arg(text("waiver"_L1)));
    html += block(tr("Expected (-) and actual (+)"), differenceOf(m_scenario, palette().base().color()));
    html += block(tr("Last call"), text("lastCall"_L1));
    html += block(tr("Log of the library"), lines("log"_L1));
    html += block(tr("Standard error"), text("standardError"_L1));
    html += block(tr("Repeat"), escaped(m_command));
    setHtml(html);
}
