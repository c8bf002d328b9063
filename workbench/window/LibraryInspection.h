#pragma once

#include "Engine.h"

/// Runs "kvx inspect FILE" in a process of its own. Nothing blocks.
class LibraryInspection : public QObject
{
    Q_OBJECT

public:
    static constexpr int noExitCode = -1;

    explicit LibraryInspection(QObject *parent = nullptr);
    ~LibraryInspection() override;
    Q_DISABLE_COPY_MOVE(LibraryInspection)

    /// Ends one that still runs; that one emits nothing.
    void start(const Engine::Setup &setup, const QString &file);

Q_SIGNALS:
    /// exitCode: 0 for a whole plugin; noExitCode when kvx did not run to its end. text: what it printed, or the reason.
    void finished(const QString &file, int exitCode, const QString &text);

private:
    void endChild();
    void startChild();
    void takeEnd(int exitCode, const QString &text);

    QProcess m_process;
    std::optional<CheckSystem::ProcessTree> m_tree;  // of the process while it runs
    Engine::Setup m_setup;
    QString m_file;
    bool m_startsAgain = false;
};
