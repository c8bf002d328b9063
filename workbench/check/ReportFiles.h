#pragma once

#include <QtCore/QString>

#include <optional>

struct CheckReport;

/// Each writes the whole file or leaves it as it was. No value, or why the file could not be written.

/// For build servers: one testsuite, a testcase for each scenario.
std::optional<QString> writeJUnit(const CheckReport &report, const QString &file);

/// For programs, as check-report.schema.json describes.
std::optional<QString> writeJson(const CheckReport &report, const QString &file);

/// For readers: one page that needs nothing else.
std::optional<QString> writeHtml(const CheckReport &report, const QString &file);
