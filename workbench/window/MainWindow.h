#pragma once

#include "Engine.h"
#include "SessionWatch.h"
#include "Transcript.h"

#include <QtCore/QPointer>
#include <QtCore/QSettings>
#include <QtWidgets/QMainWindow>

class CheckDock;
class CommandField;
class LibraryDock;
class NoticeBar;
class QDockWidget;
class QLabel;
class RecentFiles;
class ScenarioDock;
class SequenceDock;
class TextWindow;
class TimelineDock;

/// The window: it puts the docks together and owns the engine. What it remembers is in the settings of the user.
class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    // MainWindow.cpp          session, files
    // MainWindow_Docks.cpp    docks, their places, what connects them
    // MainWindow_Menus.cpp    menus, bars

    /// An empty wrapper is the one of the settings.
    explicit MainWindow(KvxSetup setup, QWidget *parent = nullptr);
    ~MainWindow() override;
    Q_DISABLE_COPY_MOVE(MainWindow)

    Engine *engine() { return &m_engine; }
    SessionWatch *watch() { return &m_watch; }
    const Transcript *transcript() const { return &m_transcript; }

    /// A fresh library with one started mouse.
    void newSession();
    /// A fresh library, and nothing else.
    void newEmptySession();
    /// Opens a scenario, or loads a library and begins a new session. False when it can be neither.
    bool openFile(const QString &path);

    static bool isLibrary(const QString &path);
    static bool isScenario(const QString &path);

protected:
    void closeEvent(QCloseEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dropEvent(QDropEvent *event) override;
    bool event(QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void showEvent(QShowEvent *event) override;

private:
    void openLibrary(const QString &file);
    void takeState();
    void takeAnswer(const Answer &answer);
    void showAnswer(const Answer &answer);
    void showPrinted(const Answer &answer);
    void say(const QString &text, bool isProblem);
    void setWrapper(const QString &words);
    void showTitle();

    // Of the set of docks.
    static constexpr int layoutVersion = 1;
    QDockWidget *addDock(QWidget *content, const QString &name, const QString &title);
    void makeDocks();
    void connectDocks();
    void placeDocks();
    void shareRoom();
    void followSize();
    bool isUsualLayout() const;
    void saveLayout();
    void restoreLayout();
    void showFloatingDocks();
    QDockWidget *dock(const char *name) const;
    void showDock(const char *name);

    void makeBars();
    void makeMenus();
    void makeFileMenu();
    void makeSessionMenu();
    void makeViewMenu();
    void makeHelpMenu();
    void askForWrapper();
    void showCommands();
    void showAbout();

    QSettings m_settings;
    Engine m_engine;
    Transcript m_transcript;
    SessionWatch m_watch;
    QList<QDockWidget *> m_docks;
    CheckDock *m_check = nullptr;
    LibraryDock *m_library = nullptr;
    ScenarioDock *m_scenario = nullptr;
    SequenceDock *m_sequence = nullptr;
    TimelineDock *m_timeline = nullptr;
    NoticeBar *m_notice = nullptr;
    CommandField *m_command = nullptr;
    RecentFiles *m_recent = nullptr;
    QLabel *m_status = nullptr;
    QLabel *m_answer = nullptr;
    QPointer<TextWindow> m_printed;  // of the last typed command
    QString m_help;                  // what "help" printed
    int m_helpNumber = 0;            // number of the line "help" that was sent
    bool m_isUsualLayout = false;    // until a dock is moved or resized
    bool m_isNarrow = false;         // the docks are placed for a narrow window
    bool m_isFirstState = false;
    bool m_startsMouse = false;
};
