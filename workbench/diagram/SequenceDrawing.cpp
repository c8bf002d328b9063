#include "SequenceDrawing.h"

#include "SequenceText.h"
#include "VisibleText.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

using Layout = SequenceLayout;

constexpr int numberRight = 56;
constexpr int timeRight = 176;
constexpr int arrowHead = 9;

constexpr QLatin1StringView threadDashes{"9 5"};
constexpr QLatin1StringView answerDashes{"2 3"};

}  // namespace

SequenceDrawing::SequenceDrawing(const SequenceLayout &layout, const SequencePalette &palette,
                                 const QString &remark)
    : m_layout(layout), m_palette(palette), m_remark(remark), m_xml(&m_bytes)
{}

QByteArray SequenceDrawing::svg(int top, int height)
{
    m_xml.setAutoFormatting(true);
    m_xml.setAutoFormattingIndent(1);
    m_xml.writeStartDocument();
    m_xml.writeStartElement(u"svg"_s);
    m_xml.writeDefaultNamespace(u"http://www.w3.org/2000/svg"_s);
    attribute("width", m_layout.size.width());
    attribute("height", height);
    attribute("viewBox", u"0 %1 %2 %3"_s.arg(top).arg(m_layout.size.width()).arg(height));
    attribute("font-family", u"sans-serif"_s);
    attribute("font-size", Layout::fontSize);
    m_xml.writeTextElement(u"title"_s, u"Sequence diagram"_s);
    writeRectangle(0, top, m_layout.size.width(), height, m_palette.background);
    if (!m_remark.isEmpty() && top == 0)
        writeText("remark", m_remark, Layout::edge, Layout::edge + Layout::fontSize, "start", m_palette.text);
    writeLifelines();
    const auto isIn = [=](int begin, int end) { return begin < top + height && end > top; };
    if (isIn(m_layout.headsTop, m_layout.headsTop + Layout::headHeight))
        writeHeads(SequenceDiagram::headsId, m_layout.headsTop);
    for (qsizetype index = 0; index < m_layout.rows.size(); ++index) {
        if (isIn(m_layout.tops.at(index), m_layout.tops.at(index + 1)))
            writeRow(m_layout.rows.at(index), m_layout.tops.at(index));
    }
    // In a long picture the upper heads are out of sight.
    if (isIn(m_layout.feetTop, m_layout.size.height()))
        writeHeads("feet"_L1, m_layout.feetTop);
    m_xml.writeEndDocument();
    return m_bytes;
}

void SequenceDrawing::writeLifelines()
{
    for (qsizetype index = 0; index < m_layout.lifelines.size(); ++index) {
        const Lifeline &lifeline = m_layout.lifelines.at(index);
        m_xml.writeStartElement(u"g"_s);
        attribute("class", u"lifeline"_s);
        m_xml.writeTextElement(u"title"_s, lifeline.name());
        m_xml.writeEmptyElement(u"line"_s);
        attribute("x1", m_layout.places.at(index));
        attribute("y1", m_layout.headsTop + Layout::headHeight);
        attribute("x2", m_layout.places.at(index));
        attribute("y2", m_layout.feetTop);
        attribute("stroke", m_palette.lifeline);
        m_xml.writeEndElement();
    }
}

void SequenceDrawing::writeHeads(QLatin1StringView id, int y)
{
    m_xml.writeStartElement(u"g"_s);
    attribute("id", id);
    for (const Lifeline &lifeline : std::as_const(m_layout.lifelines))
        writeHead(lifeline, y);
    m_xml.writeEndElement();
}

void SequenceDrawing::writeHead(const Lifeline &lifeline, int y)
{
    const int width = Layout::headWidth(lifeline);
    const int x = m_layout.xOf(lifeline);
    writeRectangle(x - width / 2, y, width, Layout::headHeight, m_palette.box, m_palette.lifeline);
    writeText("head", lifeline.name(), x, y + Layout::headHeight / 2 + Layout::fontSize / 3, "middle",
              m_palette.text);
}

void SequenceDrawing::writeRow(const SequenceRow &row, int y)
{
    m_xml.writeStartElement(u"g"_s);
    attribute("class", row.arrow ? row.entry.kind : u"note"_s);
    m_xml.writeTextElement(u"title"_s, visibleText(row.entry.text));
    if (row.arrow)
        writeArrow(row, y);
    else
        writeNote(row.entry, y);
    m_xml.writeEndElement();
}

void SequenceDrawing::writeMargin(const SequenceEntry &entry, int baseline)
{
    constexpr double microseconds = 1000;  // in a millisecond
    const QString time = QString::number(static_cast<double>(entry.time) / microseconds, 'f', 3);
    writeText("number", QString::number(entry.sequence), numberRight, baseline, "end", m_palette.faintText);
    writeText("time", time + u" ms"_s, timeRight, baseline, "end", m_palette.faintText);
}

void SequenceDrawing::writeArrow(const SequenceRow &row, int y)
{
    const SequenceArrow &arrow = *row.arrow;
    const int from = m_layout.xOf(arrow.from);
    const int to = m_layout.xOf(arrow.to);
    const int labelBaseline = y + Layout::fontSize + 3;
    const int lineY = y + Layout::fontSize + 10;
    writeMargin(row.entry, labelBaseline);
    writeLine("arrow", {from, to, lineY}, row.entry.thread == 1 ? QString() : threadDashes);
    if (arrow.through) {
        m_xml.writeEmptyElement(u"circle"_s);
        attribute("cx", m_layout.xOf(*arrow.through));
        attribute("cy", lineY);
        attribute("r", 4);
        attribute("fill", m_palette.line);
    }
    writeLabel("label", arrow.label, (from + to) / 2, labelBaseline);
    if (arrow.answer.isEmpty())
        return;
    writeLine("answer-arrow", {to, from, lineY + Layout::answerHeight}, answerDashes);
    writeLabel("answer", arrow.answer, (from + to) / 2, labelBaseline + Layout::answerHeight + 1);
}

void SequenceDrawing::writeNote(const SequenceEntry &entry, int y)
{
    const int baseline = y + Layout::noteHeight / 2 + Layout::fontSize / 3;
    const int width = m_layout.size.width() - Layout::notesLeft - Layout::edge;
    writeMargin(entry, baseline);
    writeRectangle(Layout::notesLeft, y + 2, width, Layout::noteHeight - 4,
                   entry.kind == "verdict"_L1 ? m_palette.verdict : m_palette.note, m_palette.lifeline);
    writeText("label", shortened(entry.text, (width - Layout::edge) / Layout::columnWidth),
              Layout::notesLeft + Layout::edge / 2, baseline, "start", m_palette.text);
}

void SequenceDrawing::writeLine(const char *meaning, const LineEnds &ends, const QString &dashes)
{
    const int direction = ends.to > ends.from ? 1 : -1;
    m_xml.writeEmptyElement(u"line"_s);
    attribute("class", QString::fromLatin1(meaning));
    attribute("x1", ends.from);
    attribute("y1", ends.y);
    attribute("x2", ends.to);
    attribute("y2", ends.y);
    attribute("stroke", m_palette.line);
    attribute("stroke-width", u"1.5"_s);
    if (!dashes.isEmpty())
        attribute("stroke-dasharray", dashes);
    m_xml.writeEmptyElement(u"polygon"_s);
    const int back = ends.to - direction * arrowHead;
    attribute("points", u"%1,%2 %3,%4 %3,%5"_s.arg(ends.to)
                            .arg(ends.y)
                            .arg(back)
                            .arg(ends.y - arrowHead / 2)
                            .arg(ends.y + arrowHead / 2));
    attribute("fill", m_palette.line);
}

void SequenceDrawing::writeLabel(const char *meaning, const QString &text, int x, int baseline)
{
    // Lifelines that pass behind the letters would make them hard to read.
    const int width = std::max(0, Layout::widthOf(text) - Layout::edge);
    writeRectangle(x - width / 2, baseline - Layout::fontSize + 1, width, Layout::fontSize + 3,
                   m_palette.background);
    writeText(meaning, text, x, baseline, "middle", m_palette.text);
}

void SequenceDrawing::writeText(const char *meaning, const QString &text, int x, int baseline,
                                const char *anchor, const QString &colour)
{
    m_xml.writeStartElement(u"text"_s);
    attribute("class", QString::fromLatin1(meaning));
    attribute("x", x);
    attribute("y", baseline);
    attribute("text-anchor", QString::fromLatin1(anchor));
    attribute("fill", colour);
    attribute("xml:space", u"preserve"_s);
    m_xml.writeCharacters(text);
    m_xml.writeEndElement();
}

void SequenceDrawing::writeRectangle(int x, int y, int width, int height, const QString &fill,
                                     const QString &stroke)
{
    m_xml.writeEmptyElement(u"rect"_s);
    attribute("x", x);
    attribute("y", y);
    attribute("width", width);
    attribute("height", height);
    attribute("fill", fill);
    if (!stroke.isEmpty())
        attribute("stroke", stroke);
}

void SequenceDrawing::attribute(const char *name, const QString &value)
{
    m_xml.writeAttribute(QString::fromLatin1(name), value);
}
