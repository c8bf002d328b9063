#pragma once

#include <QtCore/QString>

/// How many columns the text takes at most; a wide letter takes two.
int columnsOf(const QString &text);

/// One line of the text's letters as far as they fit, with an ellipsis for the rest. Only what XML may hold.
QString shortened(const QString &text, int mostColumns);

struct OperationText
{
    /// "setReportRate(500)"
    QString call;
    /// "true"; empty when there is none.
    QString result;
};

/// Divides "setReportRate(500) -> true" at its arrow; one inside a quoted text does not count.
OperationText operationText(const QString &text);
