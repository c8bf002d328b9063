#pragma once

#include "StartedEngine.h"

#include <QtWidgets/QWidget>

/// A dock that is shown, with an engine whose child runs.
template <typename Dock>
struct DockFixture : StartedEngine
{
    explicit DockFixture(const QStringList &scenario = {},
                         const QString &library = QStringLiteral(KVX_LIBRARY))
        : StartedEngine(library), dock(&engine)
    {
        dock.resize(dock.sizeHint());
        dock.show();
        dock.activateWindow();
        require(QTest::qWaitForWindowActive(&dock, limit), QStringLiteral("the dock has no focus"));
        require(begin(scenario), QStringLiteral("the child has not taken the lines"));
    }

    /// Plays the lines and waits until the dock has the state that follows; takeLines() has nothing of it.
    bool begin(const QStringList &scenario)
    {
        // The answer to an empty line comes behind the state.
        const bool isPlayed = play(scenario) && play({QString()});
        lines.clear();
        return isPlayed;
    }

    template <typename Widget = QWidget>
    Widget *widget(QAnyStringView name) const
    {
        auto *found = dock.template findChild<Widget *>(name.toString());
        require(found != nullptr, QStringLiteral("there is no ") + name.toString());
        return found;
    }

    /// With the pointer, in its middle.
    void click(QAnyStringView name) { QTest::mouseClick(widget(name), Qt::LeftButton); }

    /// Puts the text where another one is, with the keyboard.
    void type(QAnyStringView name, const QString &text)
    {
        QWidget *field = widget(name);
        field->setFocus();
        QTest::keySequence(field, QKeySequence::SelectAll);
        QTest::keyClick(field, Qt::Key_Delete);
        QTest::keyClicks(field, text);
    }

    /// What was sent since the last call, when the dock has the state that follows.
    QStringList takeLines()
    {
        const bool isSettled = settle();
        const QStringList taken = std::exchange(lines, {});
        return isSettled && begin({}) ? taken : QStringList{QStringLiteral("-")};
    }

    Dock dock;
};
