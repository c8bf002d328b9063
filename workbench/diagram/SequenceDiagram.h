#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QList>
#include <QtCore/QRect>
#include <QtCore/QString>

#include <optional>

struct SequenceLayout;

/// One line of a timeline, as kvx prints it.
struct SequenceEntry
{
    quint64 sequence = 0;
    qint64 time = 0;  ///< in microseconds
    int thread = 1;
    std::optional<quint64> device;
    int receiver = 1;
    /// call, receiver, report, signal, host; any other kind becomes a note.
    QString kind;
    /// The entry as a scenario writes it: "signal reportRateChanged(500)".
    QString text;
};

/// The colours of a diagram, as SVG writes them.
struct SequencePalette
{
    QString background;
    QString text;
    QString faintText;
    QString line;
    QString lifeline;
    QString box;
    QString note;
    QString verdict;

    static SequencePalette light();
    static SequencePalette dark();
};

/// A part of a diagram that is as wide as all of it.
struct SequenceBand
{
    /// In the whole picture.
    QRect place;
    QByteArray svg;
};

/// Draws timeline entries as a sequence diagram of host, library, devices, receivers and mice: one SVG with plain
/// attributes only, which browsers and SVG Tiny readers show alike.
class SequenceDiagram
{
public:
    /// More would make a picture that no viewer shows well. A line in the picture says how many there are.
    static constexpr qsizetype mostEntries = 1000;

    /// The element with the names of all lifelines, in the first band.
    static constexpr QLatin1StringView headsId{"heads"};

    void add(const SequenceEntry &entry);
    bool isEmpty() const { return m_entries.isEmpty(); }

    /// The whole picture in UTF-8. Without entries it says that there are none.
    QByteArray svg(const SequencePalette &palette) const;
    /// The same in parts, from top to bottom: a reader of SVG takes long for all of a long picture.
    QList<SequenceBand> bands(const SequencePalette &palette) const;

    /// The full text of the entry that is drawn at this height; empty where there is none.
    QString textAt(int y) const;

private:
    QString remark() const;
    SequenceLayout layout() const;

    QList<SequenceEntry> m_entries;  // at most mostEntries
    qsizetype m_count = 0;           // of all that were added
};
