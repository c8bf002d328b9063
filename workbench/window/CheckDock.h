#pragma once

#include "CheckRun.h"
#include "Engine.h"

#include <QtCore/QDateTime>
#include <QtWidgets/QWidget>

class CheckDetails;
class CheckTree;
class QComboBox;
class QLabel;
class QLineEdit;
class QProgressBar;
class QPushButton;
class QSpinBox;
class QSplitter;

/// Checks the engine's library with "kvx check" and shows what came of it.
class CheckDock : public QWidget
{
    Q_OBJECT

public:
    explicit CheckDock(Engine *engine, QWidget *parent = nullptr);

Q_SIGNALS:
    /// Somebody wants to see the scenario, to run or to edit it.
    void scenarioWanted(const QString &title, const QString &text);

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    QWidget *makeWishes();
    QWidget *makeResults();
    QWidget *makeActions();
    void fillFilter();
    void noteCounts();
    void noteLibrary();
    void start();
    void cancel();
    void notePlan(int scenarios);
    void noteVerdict(const QString &scenario, const QString &verdict);
    void noteEnd(const QJsonObject &report, const QString &problem);
    void noteRunning(bool isRunning);
    void noteCurrent();
    QString repeatCommand() const;
    void copyCommand();
    void askForScenario();
    void askForReportFile();
    void saveReport(const QString &file);
    void openReport();

    Engine *const m_engine;
    CheckRun m_run;
    KvxSetup m_setup;       // of the last run
    QDateTime m_buildTime;  // of the library in it
    bool m_hasReport = false;
    QComboBox *m_level = nullptr;
    QLineEdit *m_names = nullptr;
    QSpinBox *m_jobs = nullptr;
    QPushButton *m_start = nullptr;
    QPushButton *m_cancel = nullptr;
    QProgressBar *m_progress = nullptr;
    QLabel *m_outcome = nullptr;
    QLabel *const m_otherLibrary;
    QSplitter *m_results = nullptr;
    QComboBox *m_filter = nullptr;
    CheckTree *m_tree = nullptr;
    CheckDetails *m_details = nullptr;
    QPushButton *m_openScenario = nullptr;
    QPushButton *m_copyCommand = nullptr;
    QPushButton *m_saveReport = nullptr;
    QPushButton *m_openReport = nullptr;
};
