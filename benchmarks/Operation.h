#pragma once

#include <QtCore/QString>

#include <functional>
#include <memory>

/// Something that can be done over and over.
class Operation
{
public:
    virtual ~Operation() = default;

    /// Does it so many times; one virtual call for all, so that the loop costs next to nothing.
    virtual void run(qint64 times) = 0;
};

/// An operation that can be measured, by its name: "what/variant".
struct Subject
{
    QString name;
    /// How many times make one measured unit.
    qint64 batch = 1;
    std::function<std::unique_ptr<Operation>()> make;
    /// Whether other threads take part, so that their time counts.
    bool hasThreads = false;
};
