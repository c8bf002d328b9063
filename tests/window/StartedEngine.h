#pragma once

#include "Engine.h"

#include <QtCore/QFile>
#include <QtTest/QTest>

/// The library with the fault of this name, see tests/broken.
inline QString brokenLibrary(const QString &name)
{
    return QStringLiteral(KVX_BROKEN_LIBRARIES "/") + name + u'/' +
           QStringLiteral(KVX_LIBRARY).section(u'/', -1);
}

/// Nothing when the file cannot be read.
inline QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// Ends the program when a test does not have what it needs.
inline void require(bool condition, const QString &what)
{
    if (!condition)
        qFatal("%s", qPrintable(what));
}

/// An engine with a child that hosts the built library, and what came of it.
struct StartedEngine
{
    explicit StartedEngine(const QString &library = QStringLiteral(KVX_LIBRARY))
    {
        engine.setSetup({QStringLiteral(KVX_COMMAND), library, {}});
        QObject::connect(&engine, &Engine::entriesCame, &engine,
                         [this](const QList<Entry> &came) { entries += came; });
        QObject::connect(&engine, &Engine::answered, &engine,
                         [this](const Answer &answer) { answers.append(answer); });
        QObject::connect(&engine, &Engine::sent, &engine,
                         [this](int /*number*/, const QString &line) { lines.append(line); });
        QObject::connect(&engine, &Engine::ended, &engine,
                         [this](const EngineEnd &end) { ends.append(end); });
        engine.start();
    }

    /// Sends the lines and waits for their answers.
    bool play(const QStringList &scenario)
    {
        for (const QString &line : scenario)
            engine.send(line);
        return settle();
    }

    /// Waits until the child has a state and no line waits for its answer. False when it ended instead.
    bool settle()
    {
        const bool isSettled = QTest::qWaitFor(
            [this] { return !ends.isEmpty() || (!engine.state().isEmpty() && !engine.isBusy()); }, limit);
        return isSettled && ends.isEmpty();
    }

    static constexpr int limit = 60000;  // ms; a failure, never a measure

    Engine engine;
    QList<Entry> entries;
    QList<Answer> answers;
    /// All that was sent, by whomever.
    QStringList lines;
    QList<EngineEnd> ends;
};
