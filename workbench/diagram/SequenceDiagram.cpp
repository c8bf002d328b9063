#include "SequenceDiagram.h"

#include "SequenceDrawing.h"

#include <algorithm>
#include <iterator>

using namespace Qt::StringLiterals;

SequencePalette SequencePalette::light()
{
    return {u"#ffffff"_s, u"#1b1f24"_s, u"#5b6470"_s, u"#1f4e8c"_s,
            u"#a3adb8"_s, u"#e8eef6"_s, u"#f4f5f7"_s, u"#fff1cc"_s};
}

SequencePalette SequencePalette::dark()
{
    return {u"#1e2126"_s, u"#e8eaed"_s, u"#a5adb8"_s, u"#8ab8f5"_s,
            u"#5c6570"_s, u"#2d3644"_s, u"#2a2e35"_s, u"#4d3f14"_s};
}

void SequenceDiagram::add(const SequenceEntry &entry)
{
    ++m_count;
    if (m_entries.size() < mostEntries)
        m_entries.append(entry);
}

QString SequenceDiagram::remark() const
{
    if (m_count == 0)
        return u"There are no entries to draw."_s;
    if (m_count > mostEntries)
        return u"The first %1 of %2 entries; the others are not drawn."_s.arg(mostEntries).arg(m_count);
    return {};
}

SequenceLayout SequenceDiagram::layout() const
{
    return {sequenceRows(m_entries), !remark().isEmpty()};
}

QByteArray SequenceDiagram::svg(const SequencePalette &palette) const
{
    const SequenceLayout layout = this->layout();
    return SequenceDrawing(layout, palette, remark()).svg(0, layout.size.height());
}

QList<SequenceBand> SequenceDiagram::bands(const SequencePalette &palette) const
{
    constexpr int mostHeight = 240;  // pixels
    const SequenceLayout layout = this->layout();
    QList<SequenceBand> bands;
    for (int top = 0; top < layout.size.height(); top += mostHeight) {
        const int height = std::min(mostHeight, layout.size.height() - top);
        bands.append({{0, top, layout.size.width(), height},
                      SequenceDrawing(layout, palette, remark()).svg(top, height)});
    }
    return bands;
}

QString SequenceDiagram::textAt(int y) const
{
    const QList<int> tops = layout().tops;
    const qsizetype row = std::distance(tops.begin(), std::upper_bound(tops.begin(), tops.end(), y)) - 1;
    return row < 0 || row >= m_entries.size() ? QString() : m_entries.at(row).text;
}
