#include "Engine.h"
#include "FindBar.h"
#include "ReportFile.h"
#include "TimelineDock.h"

#include <QtGui/QAction>
#include <QtGui/QClipboard>
#include <QtGui/QGuiApplication>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QMessageBox>
#include <QtWidgets/QTableView>

using namespace Qt::StringLiterals;

namespace {

// kvx compares a line together with its device's id while there are several devices.
QString expectation(const Entry &entry, bool hasSeveralDevices)
{
    const int words = entry.receiver == 1 ? 1 : 2;  // in front of the id: "signal", "receiver 2"
    QString line = u"= "_s + entry.text.section(u' ', 0, words - 1);
    if (hasSeveralDevices && entry.device)
        line += u" [%1]"_s.arg(*entry.device);
    return line + u' ' + entry.text.section(u' ', words);
}

}  // namespace

void TimelineDock::addActions()
{
    // A shortcut without a menu of the window's: it must work beside the same one of another dock.
    const auto add = [this](QWidget *place, const QString &name, const QString &text,
                            const QKeySequence &shortcut, auto &&act) {
        auto *action = new QAction(text, this);
        action->setObjectName(name);
        action->setShortcut(shortcut);
        action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
        connect(action, &QAction::triggered, this, act);
        place->addAction(action);
    };
    add(m_table, u"timelineCopy"_s, tr("Copy"), QKeySequence::Copy,
        [this] { copyLines(&TimelineModel::line); });
    add(m_table, u"timelineCopyText"_s, tr("Copy the text only"), QKeySequence(tr("Ctrl+Shift+C")),
        [this] { copyLines([](const Entry &entry) { return entry.text; }); });
    add(m_table, u"timelineCopyExpectation"_s, tr("Copy as expectation"), {}, [this] {
        const bool hasSeveralDevices = m_engine->state().value("devices"_L1).toArray().size() > 1;
        copyLines([hasSeveralDevices](const Entry &entry) { return expectation(entry, hasSeveralDevices); });
    });
    m_table->setContextMenuPolicy(Qt::ActionsContextMenu);
    add(this, u"timelineFind"_s, tr("Find"), QKeySequence::Find, [this] { m_findBar->open(); });
    add(this, u"timelineFindNext"_s, tr("Find next"), QKeySequence(Qt::Key_F3), [this] { find(1, false); });
    add(this, u"timelineFindPrevious"_s, tr("Find previous"), QKeySequence(Qt::SHIFT | Qt::Key_F3),
        [this] { find(-1, false); });

    connect(m_findBar, &FindBar::textChanged, this, [this] { find(1, true); });
    connect(m_findBar, &FindBar::nextWanted, this, [this] { find(1, false); });
    connect(m_findBar, &FindBar::previousWanted, this, [this] { find(-1, false); });
    connect(m_findBar, &FindBar::closed, m_table, qOverload<>(&QWidget::setFocus));
}

void TimelineDock::find(int step, bool mayStay)
{
    m_findBar->setResult({});
    const QString text = m_findBar->text();
    const int count = m_model->rowCount();
    if (text.isEmpty() || count == 0)
        return;
    const QModelIndex current = m_table->currentIndex();
    const int before = step > 0 ? -1 : count;
    int row = current.isValid() ? current.row() - (mayStay ? step : 0) : before;
    bool hasWrapped = false;
    for (int tried = 0; tried < count; ++tried) {
        row += step;
        if (row < 0 || row >= count) {
            row = step > 0 ? 0 : count - 1;
            hasWrapped = current.isValid();
        }
        if (!m_model->entry(row).text.contains(text, Qt::CaseInsensitive))
            continue;
        m_table->setCurrentIndex(m_model->index(row, TimelineModel::Text));
        if (hasWrapped)
            m_findBar->setResult(step > 0 ? tr("From the first line again") : tr("From the last line again"));
        return;
    }
    m_findBar->setResult(tr("Not found"));
}

// One line has no line break at its end, so that it fits into a line of a text.
void TimelineDock::copyLines(const std::function<QString(const Entry &)> &textOf) const
{
    QStringList lines;
    const QList<int> rows = selectedRows();
    for (const int row : rows)
        lines.append(textOf(m_model->entry(row)));
    if (lines.size() > 1)
        lines.append(QString());
    if (!lines.isEmpty())
        QGuiApplication::clipboard()->setText(lines.join(u'\n'));
}

void TimelineDock::askForFile(const QString &title, const QString &suffix,
                              QByteArray (TimelineDock::*content)() const)
{
    auto *dialog = new QFileDialog(this, title);
    dialog->setObjectName(u"timelineExportDialog"_s);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setDefaultSuffix(suffix);
    dialog->setNameFilters({u"*."_s + suffix, u"*"_s});
    dialog->selectFile(u"timeline."_s + suffix);
    connect(dialog, &QFileDialog::fileSelected, this,
            [this, content](const QString &file) { save(file, (this->*content)()); });
    dialog->open();
}

void TimelineDock::save(const QString &file, const QByteArray &content)
{
    const std::optional<QString> error = writeReportFile(file, content);
    if (!error)
        return;
    auto *box =
        new QMessageBox(QMessageBox::Warning, tr("Export the timeline"), *error, QMessageBox::Ok, this);
    box->setObjectName(u"timelineExportError"_s);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setTextFormat(Qt::PlainText);
    box->open();
}

QByteArray TimelineDock::asText() const
{
    QByteArray content;
    for (int row = 0; row < m_model->rowCount(); ++row)
        content += TimelineModel::line(m_model->entry(row)).toUtf8() + '\n';
    return content;
}

QByteArray TimelineDock::asJsonLines() const
{
    QByteArray content = "{\"schemaVersion\":1}\n";
    for (int row = 0; row < m_model->rowCount(); ++row)
        content += m_model->entry(row).json.toUtf8() + '\n';
    return content;
}
