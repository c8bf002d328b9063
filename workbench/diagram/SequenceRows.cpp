#include "SequenceRows.h"

#include "SequenceText.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

using Kind = Lifeline::Kind;

constexpr int mostLabelColumns = 64;
constexpr int mostAnswerColumns = 40;

// Where it is not known which device took part: the only one there is, or else the library.
Lifeline unnamedSide(const QList<SequenceEntry> &entries)
{
    std::optional<quint64> only;
    for (const SequenceEntry &entry : entries) {
        if (only && entry.device && *entry.device != *only)
            return {Kind::Library};
        if (entry.device)
            only = entry.device;
    }
    return only ? Lifeline{Kind::Device, *only} : Lifeline{Kind::Library};
}

// The arrow says the kind, the lifeline the receiver.
QString withoutKindAndThread(const SequenceEntry &entry)
{
    QString text = entry.text;
    for (const QString &word : {entry.kind, QString::number(entry.receiver)}) {
        if (text.startsWith(word + u' '))
            text.remove(0, word.size() + 1);
    }
    if (const QString thread = u" on thread "_s + QString::number(entry.thread); text.endsWith(thread))
        text.chop(thread.size());
    return text;
}

std::optional<SequenceArrow> endsOf(const SequenceEntry &entry, const Lifeline &unnamed)
{
    const Lifeline device = entry.device ? Lifeline{Kind::Device, *entry.device} : unnamed;
    const Lifeline receiver{Kind::Receiver, static_cast<quint64>(entry.receiver)};
    if (entry.kind == "call"_L1)
        return SequenceArrow{{Kind::Host}, entry.device ? device : Lifeline{Kind::Library}, {}, {}, {}};
    if (entry.kind == "receiver"_L1)
        return SequenceArrow{device, receiver, {}, {}, {}};
    if (entry.kind == "report"_L1)
        return SequenceArrow{{Kind::Mouse, device.number}, device, receiver, {}, {}};
    if (entry.kind == "signal"_L1)
        return SequenceArrow{device, {Kind::Host}, {}, {}, {}};
    if (entry.kind == "host"_L1)
        return SequenceArrow{device, {Kind::HostServices}, {}, {}, {}};
    return std::nullopt;
}

std::optional<SequenceArrow> arrowOf(const SequenceEntry &entry, const Lifeline &unnamed)
{
    std::optional<SequenceArrow> arrow = endsOf(entry, unnamed);
    if (!arrow)
        return arrow;
    QString text = withoutKindAndThread(entry);
    // During any other call more can happen, and its result comes after that.
    if (entry.kind == "receiver"_L1) {
        const OperationText operation = operationText(text);
        arrow->answer = shortened(operation.result, mostAnswerColumns);
        text = operation.call;
    }
    arrow->label = shortened(text, mostLabelColumns);
    if (entry.thread != 1)
        arrow->label += u" (thread %1)"_s.arg(entry.thread);
    return arrow;
}

}  // namespace

QString Lifeline::name() const
{
    switch (kind) {
    case Kind::HostServices:
        return u"host services"_s;
    case Kind::Host:
        return u"host"_s;
    case Kind::Library:
        return u"library"_s;
    case Kind::Device:
        return u"device %1"_s.arg(number);
    case Kind::Receiver:
        return u"receiver %1"_s.arg(number);
    case Kind::Mouse:
        return u"mouse %1"_s.arg(number);
    }
    return {};
}

QList<SequenceRow> sequenceRows(const QList<SequenceEntry> &entries)
{
    const Lifeline unnamed = unnamedSide(entries);
    QList<SequenceRow> rows;
    rows.reserve(entries.size());
    for (const SequenceEntry &entry : entries)
        rows.append({entry, arrowOf(entry, unnamed)});
    return rows;
}

QList<Lifeline> lifelinesOf(const QList<SequenceRow> &rows)
{
    QList<Lifeline> lifelines;
    for (const SequenceRow &row : rows) {
        if (!row.arrow)
            continue;
        lifelines << row.arrow->from << row.arrow->to;
        if (row.arrow->through)
            lifelines << *row.arrow->through;
    }
    std::sort(lifelines.begin(), lifelines.end());
    lifelines.erase(std::unique(lifelines.begin(), lifelines.end()), lifelines.end());
    return lifelines;
}
