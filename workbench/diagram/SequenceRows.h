#pragma once

#include "SequenceDiagram.h"

/// Who takes part, from left to right.
struct Lifeline
{
    enum class Kind { HostServices, Host, Library, Device, Receiver, Mouse };

    Kind kind = Kind::Host;
    /// Of a device and its mouse the id, of a receiver its number.
    quint64 number = 0;

    QString name() const;

    friend bool operator==(const Lifeline &left, const Lifeline &right)
    {
        return left.kind == right.kind && left.number == right.number;
    }
    friend bool operator<(const Lifeline &left, const Lifeline &right)
    {
        return left.kind != right.kind ? left.kind < right.kind : left.number < right.number;
    }
};

struct SequenceArrow
{
    Lifeline from;
    Lifeline to;
    /// Whom it passes on its way.
    std::optional<Lifeline> through;
    QString label;
    /// What comes back; empty for nothing.
    QString answer;
};

/// An entry, and how it is drawn: as an arrow, or as a note.
struct SequenceRow
{
    SequenceEntry entry;
    std::optional<SequenceArrow> arrow;
};

QList<SequenceRow> sequenceRows(const QList<SequenceEntry> &entries);

/// All that the arrows join, from left to right.
QList<Lifeline> lifelinesOf(const QList<SequenceRow> &rows);
