#pragma once

#include <QtCore/QString>

#include <functional>
#include <memory>
#include <vector>

/// Something that can be done over and over.
class Operation
{
public:
    virtual ~Operation() = default;

    /// Does it so many times; one virtual call for all, so that the loop costs next to nothing.
    virtual void run(qint64 calls) = 0;
};

/// An operation that is measured. The least code that does the same, its floor, has the same name and "/floor".
struct Subject
{
    QString name;
    /// How many calls are measured together.
    qint64 calls = 1;
    std::function<std::unique_ptr<Operation>()> make;
};

/// All that is measured.
std::vector<Subject> allSubjects();

/// The parts of it that have files of their own.
void addForeignThread(std::vector<Subject> &subjects);
void addLoading(std::vector<Subject> &subjects);
void addRegistry(std::vector<Subject> &subjects);
