#pragma once

#include "SequenceRows.h"

#include <QtCore/QSize>

/// Where everything of a diagram is, in pixels.
struct SequenceLayout
{
    SequenceLayout(const QList<SequenceRow> &drawnRows, bool hasRemark);

    static constexpr int fontSize = 13;
    // Of the widest common sans-serif font, so that others fit too.
    static constexpr int columnWidth = 8;
    static constexpr int edge = 16;
    static constexpr int notesLeft = 192;
    static constexpr int headHeight = 28;
    static constexpr int noteHeight = 28;
    static constexpr int answerHeight = 22;

    static int widthOf(const QString &text);
    static int headWidth(const Lifeline &lifeline);
    int xOf(const Lifeline &lifeline) const;

    QList<SequenceRow> rows;
    QList<Lifeline> lifelines;
    QList<int> places;  ///< of the lifelines, from the left
    int headsTop = 0;
    QList<int> tops;  ///< of the rows, and the bottom of the last one
    int feetTop = 0;
    QSize size;

private:
    void placeLifelines();
    void placeRows();
};
