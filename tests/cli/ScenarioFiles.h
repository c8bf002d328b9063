#pragma once

#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QTemporaryDir>

/// Scenario files that a test writes, in a folder whose name has letters that a shell reads otherwise.
class ScenarioFiles
{
public:
    ScenarioFiles();

    /// Writes a scenario with a head and answers its path. more: further lines of the head.
    QString write(const QString &name, const QStringList &lines, const QStringList &more = {}) const;
    /// Writes any text.
    QString writeText(const QString &name, const QString &text) const;
    QString path(const QString &name) const;

private:
    QTemporaryDir m_folder;
};

/// A library with one fault, by its name in tests/broken/variants.toml.
QString brokenLibrary(const QString &name);
