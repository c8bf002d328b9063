#pragma once

#include "SequenceLayout.h"

#include <QtCore/QXmlStreamWriter>

/// Writes a part of a diagram, or all of it, once.
class SequenceDrawing
{
public:
    /// remark: one line above everything, or empty. The layout must outlive this.
    SequenceDrawing(const SequenceLayout &layout, const SequencePalette &palette, const QString &remark);
    Q_DISABLE_COPY_MOVE(SequenceDrawing)

    QByteArray svg(int top, int height);

private:
    void writeLifelines();
    void writeHeads(QLatin1StringView id, int y);
    void writeHead(const Lifeline &lifeline, int y);
    void writeRow(const SequenceRow &row, int y);
    void writeMargin(const SequenceEntry &entry, int baseline);
    void writeArrow(const SequenceRow &row, int y);
    void writeNote(const SequenceEntry &entry, int y);

    struct LineEnds
    {
        int from = 0;
        int to = 0;
        int y = 0;
    };
    void writeLine(const char *meaning, const LineEnds &ends, const QString &dashes);
    void writeLabel(const char *meaning, const QString &text, int x, int baseline);
    void writeText(const char *meaning, const QString &text, int x, int baseline, const char *anchor,
                   const QString &colour);
    void writeRectangle(int x, int y, int width, int height, const QString &fill,
                        const QString &stroke = QString());
    void attribute(const char *name, const QString &value);
    void attribute(const char *name, int value) { attribute(name, QString::number(value)); }

    const SequenceLayout &m_layout;
    const SequencePalette m_palette;
    const QString m_remark;
    QByteArray m_bytes;
    QXmlStreamWriter m_xml;
};
