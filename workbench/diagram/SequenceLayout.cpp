#include "SequenceLayout.h"

#include "SequenceText.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr int smallestNotesWidth = 480;
constexpr int smallestGap = 130;
constexpr int labelRoom = 36;  // between a label and the lifelines on both sides
constexpr int arrowHeight = 34;

// The gaps between the lifelines, wide enough for their heads.
QList<int> gapsForHeads(const QList<Lifeline> &lifelines)
{
    QList<int> gaps;
    for (qsizetype index = 1; index < lifelines.size(); ++index) {
        const int heads = (SequenceLayout::headWidth(lifelines.at(index - 1)) +
                           SequenceLayout::headWidth(lifelines.at(index))) /
                              2 +
                          SequenceLayout::edge;
        gaps.append(std::max(smallestGap, heads));
    }
    return gaps;
}

struct Span
{
    qsizetype first = 0;
    qsizetype last = 0;
    int width = 0;
};

QList<Span> spansOf(const QList<SequenceRow> &rows, const QList<Lifeline> &lifelines)
{
    QList<Span> spans;
    for (const SequenceRow &row : rows) {
        if (!row.arrow)
            continue;
        const auto [first, last] =
            std::minmax({lifelines.indexOf(row.arrow->from), lifelines.indexOf(row.arrow->to)});
        spans.append(
            {first, last,
             std::max(SequenceLayout::widthOf(row.arrow->label), SequenceLayout::widthOf(row.arrow->answer)) +
                 labelRoom});
    }
    // Short ones first: what they need is there for the long ones.
    std::stable_sort(spans.begin(), spans.end(), [](const Span &left, const Span &right) {
        return left.last - left.first < right.last - right.first;
    });
    return spans;
}

void widen(QList<int> &gaps, const Span &span)
{
    int width = 0;
    for (qsizetype index = span.first; index < span.last; ++index)
        width += gaps.at(index);
    const int count = static_cast<int>(span.last - span.first);
    const int missing = span.width - width;
    if (missing <= 0)
        return;
    for (qsizetype index = span.first; index < span.last; ++index)
        gaps[index] += (missing + count - 1) / count;
}

int heightOf(const SequenceRow &row)
{
    if (!row.arrow)
        return SequenceLayout::noteHeight;
    return row.arrow->answer.isEmpty() ? arrowHeight : arrowHeight + SequenceLayout::answerHeight;
}

}  // namespace

SequenceLayout::SequenceLayout(const QList<SequenceRow> &drawnRows, bool hasRemark)
    : rows(drawnRows), lifelines(lifelinesOf(drawnRows)), headsTop(edge + (hasRemark ? noteHeight : 0))
{
    placeLifelines();
    placeRows();
}

void SequenceLayout::placeLifelines()
{
    QList<int> gaps = gapsForHeads(lifelines);
    const QList<Span> spans = spansOf(rows, lifelines);
    for (const Span &span : spans)
        widen(gaps, span);
    int right = notesLeft;
    for (qsizetype index = 0; index < lifelines.size(); ++index) {
        const int place = index == 0 ? notesLeft + headWidth(lifelines.first()) / 2
                                     : places.constLast() + gaps.at(index - 1);
        places.append(place);
        right = place + headWidth(lifelines.at(index)) / 2;
    }
    size.setWidth(std::max(right, notesLeft + smallestNotesWidth) + edge);
}

void SequenceLayout::placeRows()
{
    const bool hasHeads = !lifelines.isEmpty();
    feetTop = headsTop + (hasHeads ? headHeight + edge / 2 : 0);
    for (const SequenceRow &row : std::as_const(rows)) {
        tops.append(feetTop);
        feetTop += heightOf(row);
    }
    tops.append(feetTop);
    feetTop += edge;
    size.setHeight(feetTop + (hasHeads ? headHeight + edge : 0));
}

int SequenceLayout::xOf(const Lifeline &lifeline) const
{
    return places.at(lifelines.indexOf(lifeline));
}

int SequenceLayout::widthOf(const QString &text)
{
    return columnsOf(text) * columnWidth;
}

int SequenceLayout::headWidth(const Lifeline &lifeline)
{
    return widthOf(lifeline.name()) + edge;
}
