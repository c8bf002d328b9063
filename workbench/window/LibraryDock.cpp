#include "LibraryDock.h"

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtGui/QFontDatabase>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

QWidget *besideEachOther(QWidget *wide, const QList<QWidget *> &others)
{
    auto *const row = new QWidget(wide->parentWidget());
    auto *const layout = new QHBoxLayout(row);
    layout->setContentsMargins({});
    layout->addWidget(wide, 1);
    for (QWidget *other : others)
        layout->addWidget(other);
    return row;
}

}  // namespace

LibraryDock::LibraryDock(Engine *engine, QWidget *parent) : QWidget(parent), m_engine(engine)
{
    m_verdict->setObjectName(u"libraryVerdict"_s);
    m_verdict->setTextFormat(Qt::PlainText);
    m_verdict->setWordWrap(true);
    m_report->setObjectName(u"libraryReport"_s);
    m_report->setAccessibleName(tr("Inspection of the library"));
    m_report->setReadOnly(true);
    m_report->setTabChangesFocus(true);
    m_report->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));

    auto *const layout = new QVBoxLayout(this);
    layout->addWidget(makePathRow());
    layout->addWidget(m_verdict);
    layout->addWidget(m_report, 1);
    layout->addWidget(makeReloadRow());
    layout->addWidget(makeLoadRow());

    connect(engine, &Engine::started, this, &LibraryDock::noteStart);
    connect(engine, &Engine::stateChanged, this, &LibraryDock::showState);
    connect(engine, &Engine::answered, this, &LibraryDock::showAnswer);
    connect(engine, &Engine::ended, this, [this] {
        showState({});
        m_residence->setText(tr("No process runs."));
    });
    connect(&m_watch, &LibraryWatch::changed, this, &LibraryDock::noteFile);
    if (engine->isRunning())
        noteStart();
    showState(engine->state());
}

QWidget *LibraryDock::makePathRow()
{
    m_path->setObjectName(u"libraryPath"_s);
    m_path->setAccessibleName(tr("Path of the library"));
    m_path->setPlaceholderText(tr("Path of a library"));
    connect(m_path, &QLineEdit::returnPressed, this, &LibraryDock::open);

    const auto makeButton = [&](const QString &name, const QString &text, auto slot) {
        auto *const button = new QPushButton(text);
        button->setObjectName(name);
        connect(button, &QPushButton::clicked, this, slot);
        return button;
    };
    return besideEachOther(
        m_path, {makeButton(u"libraryChoose"_s, tr("Choose…"), &LibraryDock::chooseFile),
                 makeButton(u"libraryInspect"_s, tr("Inspect"), [this] { inspect(m_path->text()); }),
                 makeButton(u"libraryOpen"_s, tr("Open"), &LibraryDock::open)});
}

QWidget *LibraryDock::makeReloadRow()
{
    m_change->setObjectName(u"libraryChange"_s);
    m_change->setWordWrap(true);
    m_reload->setObjectName(u"libraryReload"_s);
    m_reload->setToolTip(tr("Starts a fresh process with the library as it is now"));
    connect(m_reload, &QPushButton::clicked, this, &LibraryDock::reload);
    m_reloadsItself->setObjectName(u"libraryReloadsItself"_s);
    return besideEachOther(m_change, {m_reloadsItself, m_reload});
}

QWidget *LibraryDock::makeLoadRow()
{
    m_residence->setObjectName(u"libraryResidence"_s);
    m_residence->setTextFormat(Qt::PlainText);
    m_residence->setWordWrap(true);
    m_unload->setObjectName(u"libraryUnload"_s);
    m_unload->setToolTip(tr("Unloads the library in the same process, which shows whether it leaves it"));
    connect(m_unload, &QPushButton::clicked, this, [this] { m_engine->send(u"unload"_s); });
    m_load->setObjectName(u"libraryLoad"_s);
    m_load->setToolTip(tr("Loads the library again in the same process"));
    connect(m_load, &QPushButton::clicked, this, [this] { m_engine->send(u"load"_s); });
    return besideEachOther(m_residence, {m_unload, m_load});
}

void LibraryDock::chooseFile()
{
    auto *const dialog = new QFileDialog(this, tr("Open a library"), QFileInfo(m_path->text()).absolutePath(),
                                         tr("Libraries (*.so *.dll);;All files (*)"));
    dialog->setObjectName(u"libraryDialog"_s);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setFileMode(QFileDialog::ExistingFile);
    connect(dialog, &QFileDialog::fileSelected, this, [this](const QString &file) {
        m_path->setText(QDir::toNativeSeparators(file));
        open();
    });
    dialog->open();
}

void LibraryDock::open()
{
    const QString file = m_path->text().trimmed();
    if (file.isEmpty())
        m_verdict->setText(tr("There is no path to open."));
    else
        Q_EMIT libraryWanted(QFileInfo(file).absoluteFilePath());
}

void LibraryDock::inspect(const QString &file)
{
    if (std::exchange(m_isChangeInspected, false))
        m_watch.lookAgain();
    m_verdict->setText(tr("Inspecting %1").arg(QDir::toNativeSeparators(file)));
    // Not deleted here: this can be inside its signal.
    if (m_inspection) {
        m_inspection->disconnect(this);
        m_inspection->deleteLater();
    }
    m_inspection =
        askKvx(m_engine->setup(), {u"inspect"_s, file.trimmed()}, this,
               [this, file = file.trimmed()](const KvxAnswer &answer) { showInspection(file, answer); });
}

void LibraryDock::showInspection(const QString &file, const KvxAnswer &answer)
{
    const bool isWhole = answer.exitCode == 0;
    const QString name = QFileInfo(file).fileName();
    if (isWhole)
        m_verdict->setText(tr("%1 is a device plugin.").arg(name));
    else if (answer.exitCode != KvxAnswer::noExitCode)
        m_verdict->setText(tr("⚠ %1 cannot be used (exit code %2).").arg(name).arg(answer.exitCode));
    else
        m_verdict->setText(tr("⚠ %1 was not inspected.").arg(name));
    m_report->setPlainText(isWhole ? answer.output.trimmed() : answer.problem);
    if (std::exchange(m_isChangeInspected, false))
        noteChange(isWhole);
}

void LibraryDock::noteStart()
{
    m_loadedFile = m_engine->setup().pluginFile;
    m_path->setText(QDir::toNativeSeparators(m_loadedFile));
    m_watch.watch(m_loadedFile);
    m_change->clear();
    m_reload->setEnabled(!m_loadedFile.isEmpty());
    m_report->clear();
    if (m_loadedFile.isEmpty())
        m_verdict->setText(tr("The library beside kvx."));
    else
        inspect(m_loadedFile);
}

void LibraryDock::noteFile()
{
    if (!QFileInfo::exists(m_loadedFile)) {
        m_change->setText(tr("The file is gone; waiting for another."));
        return;
    }
    m_change->setText(tr("The file changes."));
    inspect(m_loadedFile);
    m_isChangeInspected = true;
}

void LibraryDock::noteChange(bool isWhole)
{
    if (!isWhole) {
        m_change->setText(tr("The file has changed and is not whole yet."));
        m_watch.lookAgain();
        return;
    }
    m_watch.acceptChange();
    m_change->setText(tr("The file was built again after it was loaded."));
    if (m_reloadsItself->isChecked())
        reload();
}

void LibraryDock::reload()
{
    Q_EMIT libraryWanted(m_loadedFile);
}

void LibraryDock::showState(const QJsonObject &state)
{
    const bool isLoaded = state.value("isLoaded"_L1).toBool();
    m_unload->setEnabled(isLoaded);
    m_load->setEnabled(!state.isEmpty() && !isLoaded);
    if (isLoaded)
        m_residence->setText(tr("The library is in the process."));
}

void LibraryDock::showAnswer(const Answer &answer)
{
    if (answer.command.section(u' ', 0, 0) != "unload"_L1 && answer.command.section(u' ', 0, 0) != "load"_L1)
        return;
    if (answer.result != "done"_L1)
        m_residence->setText(u"⚠ "_s + answer.message);
    else if (answer.command == "unload"_L1)
        m_residence->setText(tr("Unloaded: nothing of the library is left in the process."));
}
