#pragma once

#include "Engine.h"
#include "LibraryWatch.h"

#include <QtCore/QPointer>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPlainTextEdit>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QWidget>

/// The library: which one, what it says of itself, and whether it is in the child's process.
class LibraryDock : public QWidget
{
    Q_OBJECT

public:
    explicit LibraryDock(Engine *engine, QWidget *parent = nullptr);

    /// Asks for a file and opens it.
    void chooseFile();

Q_SIGNALS:
    /// The child is to start again with this file.
    void libraryWanted(const QString &file);

private:
    QWidget *makePathRow();
    QWidget *makeReloadRow();
    QWidget *makeLoadRow();
    void open();
    void inspect(const QString &file);
    void showInspection(const QString &file, const KvxAnswer &answer);
    void noteStart();
    void noteFile();
    /// The changed file's inspection.
    void noteChange(bool isWhole);
    void reload();
    void showState(const QJsonObject &state);
    void showAnswer(const Answer &answer);

    Engine *m_engine;
    QPointer<KvxProcess> m_inspection;
    LibraryWatch m_watch;
    QString m_loadedFile;
    bool m_isChangeInspected = false;
    QLineEdit *m_path = new QLineEdit(this);
    QLabel *m_verdict = new QLabel(this);
    QPlainTextEdit *m_report = new QPlainTextEdit(this);
    QLabel *m_change = new QLabel(this);
    QPushButton *m_reload = new QPushButton(tr("Reload"), this);
    QCheckBox *m_reloadsItself = new QCheckBox(tr("Reload after each rebuild"), this);
    QLabel *m_residence = new QLabel(this);
    QPushButton *m_unload = new QPushButton(tr("Unload"), this);
    QPushButton *m_load = new QPushButton(tr("Load"), this);
};
