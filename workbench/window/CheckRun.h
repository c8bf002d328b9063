#pragma once

#include "KvxProcess.h"

#include <QtCore/QJsonObject>
#include <QtCore/QTemporaryDir>

/// What a check is asked for.
struct CheckWish
{
    /// load, contract or stress.
    QString level;
    /// Scenarios, folders and files, none for all; also further options.
    QStringList words;
    /// How many processes at a time; 0: kvx decides.
    int jobs = 0;
};

/// Runs "kvx check" as a child process. For the thread that it lives on; nothing blocks.
class CheckRun : public QObject
{
    Q_OBJECT

public:
    explicit CheckRun(QObject *parent = nullptr);

    /// Does nothing while one runs.
    void start(const KvxSetup &setup, const CheckWish &wish);
    /// Asks the child to end and to write its report; the second call ends it at once.
    void cancel();

    bool isRunning() const { return m_process.isRunning(); }
    /// The report for readers of the last run that ended with a report. Gone with the next start.
    QString htmlFile() const { return fileFor("report.html"); }

Q_SIGNALS:
    /// So many scenarios are going to run.
    void planned(int scenarios);
    /// One scenario has ended. verdict: as reports write it.
    void verdictCame(const QString &scenario, const QString &verdict);
    /// report: as share/kvx/check-report.schema.json describes it; empty when there is none. problem: why there is none.
    void ended(const QJsonObject &report, const QString &problem);

private:
    QString fileFor(const char *name) const
    {
        return m_folder ? m_folder->filePath(QLatin1StringView(name)) : QString();
    }
    void readOutput();
    void takeLine(const QString &line);
    void takeEnd();
    QString problem();

    std::optional<QTemporaryDir> m_folder;  // of the reports; outlives the process, which writes into it
    KvxProcess m_process;
    bool m_isCancelled = false;
    bool m_isListing = false;  // the lines that come are verdicts
};
