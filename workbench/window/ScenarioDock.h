#pragma once

#include "ScenarioPlayer.h"

#include <QtWidgets/QWidget>

#include <functional>

class QLabel;
class QMenu;
class QTabWidget;
class ScenarioEditor;
class ScenarioLibrary;
class Transcript;

/// A scenario as text: written, opened, saved, played in a fresh child; and the transcript of the session.
class ScenarioDock : public QWidget
{
    Q_OBJECT

public:
    ScenarioDock(Engine *engine, const Transcript *transcript, QWidget *parent = nullptr);

    /// Asks first when the text has changes that are not saved. False when the file cannot be read; message() says why.
    bool openFile(const QString &path);
    void openText(const QString &title, const QString &text);
    /// Does it at once, or after the user has answered what becomes of changes that are not saved, or never.
    void whenSaved(const std::function<void()> &action);

    bool isModified() const;
    void forgetChanges();
    /// Of the opened file; empty for a text without one.
    QString path() const { return m_path; }
    /// What is said below the text.
    QString message() const;

    void addFileActions(QMenu *menu) const;
    void addPlayActions(QMenu *menu) const;

Q_SIGNALS:
    /// A file was opened or saved.
    void fileUsed(const QString &path);
    /// By a file, an empty text or the transcript: somebody wants to see it.
    void textReplaced();

private:
    void makeActions();
    void makeWidgets();
    void connectPlayer();
    void followTranscript();
    void openExample(const QString &path);
    void showText(const QString &title, const QString &path, const QString &text);
    void say(const QString &message);
    void conclude(const QString &outcome);
    void showPlay();
    void showTitle();
    void askForFile();
    void save(const std::function<void()> &then = {});
    void saveAs(const std::function<void()> &then = {});
    void write(const QString &path, const std::function<void()> &then);
    void takeTranscript();
    void insertHead();

    const Transcript *m_transcript;
    ScenarioPlayer m_player;
    ScenarioLibrary *m_library;
    QString m_folder;  // of the last file; Qt would take that of any dialog
    QString m_path;
    QString m_title;
    QString m_outcome;  // what the last run of the text came to

    ScenarioEditor *m_editor = nullptr;
    ScenarioEditor *m_transcriptView = nullptr;
    QTabWidget *m_tabs = nullptr;
    QLabel *m_message = nullptr;
    QAction *m_new = nullptr;
    QAction *m_open = nullptr;
    QAction *m_save = nullptr;
    QAction *m_saveAs = nullptr;
    QAction *m_take = nullptr;
    QAction *m_head = nullptr;
    QAction *m_play = nullptr;
    QAction *m_step = nullptr;
    QAction *m_pause = nullptr;
    QAction *m_stop = nullptr;
};
