#pragma once

#include "Entry.h"

#include <QtCore/QSet>

/// Which lines of the timeline are shown. Fresh, it lets all through.
struct TimelineFilter
{
    bool accepts(const Entry &entry) const
    {
        return !hiddenKinds.contains(entry.kind) && (!device || entry.device == *device) &&
               (text.isEmpty() || entry.text.contains(text, Qt::CaseInsensitive));
    }

    QSet<QString> hiddenKinds;
    /// Unset: any. Set, but without a number inside: those of no device.
    std::optional<std::optional<quint64>> device;
    /// A part of the entry's text, in upper or lower case.
    QString text;
};
