#pragma once

#include <QtCore/QObject>

#include <functional>
#include <utility>

/// Runs a function inside an emission.
class SignalHook : public QObject
{
    Q_OBJECT

public:
    explicit SignalHook(std::function<void()> hook) : m_hook(std::move(hook)) {}

public Q_SLOTS:
    void run() { m_hook(); }

private:
    std::function<void()> m_hook;
};
