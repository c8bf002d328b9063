#include "StepReader.h"

#include "Timeline.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>

using namespace Qt::StringLiterals;

namespace {

QStringList texts(const QJsonValue &array)
{
    QStringList list;
    const QJsonArray values = array.toArray();
    for (const auto &value : values)
        list.append(value.toString());
    return list;
}

}  // namespace

void StepReader::add(const QByteArray &bytes)
{
    constexpr qsizetype longestLine = 4 << 20;
    m_unread += bytes;
    qsizetype begin = 0;
    for (qsizetype end = m_unread.indexOf('\n'); end >= 0; end = m_unread.indexOf('\n', begin)) {
        readLine(m_unread.sliced(begin, end - begin));
        begin = end + 1;
    }
    m_unread.remove(0, begin);
    if (m_unread.size() > longestLine)
        m_unread.clear();
}

void StepReader::readLine(const QByteArray &line)
{
    // The library may print lines of its own among those of the child.
    const QJsonObject object = QJsonDocument::fromJson(line).object();
    if (object.contains("schemaVersion"_L1)) {
        m_hasBegun = true;
    } else if (object.contains("command"_L1)) {
        m_line = object.value("line"_L1).toInt();
        m_command = object.value("command"_L1).toString();
    } else if (object.contains("began"_L1)) {
        m_lastCall = object.value("began"_L1).toString();
    } else if (object.value("kind"_L1) == "log"_L1) {
        noteLog(object);
    } else if (object.contains("checks"_L1)) {
        m_result = {object.value("result"_L1).toString(), object.value("line"_L1).toInt(),
                    object.value("message"_L1).toString(), texts(object.value("expected"_L1)),
                    texts(object.value("actual"_L1))};
    }
}

void StepReader::noteLog(const QJsonObject &object)
{
    constexpr qsizetype mostLines = 200;
    constexpr qsizetype longestText = 2000;
    if (m_log.size() == mostLines)
        m_log.removeFirst();
    TimelineEntry entry;
    entry.kind = TimelineEntry::Kind::Log;
    entry.name = object.value("name"_L1).toString();
    entry.category = object.value("category"_L1).toString();
    entry.arguments = {object.value("arguments"_L1).toArray().at(0).toString().left(longestText)};
    entry.thread = object.value("thread"_L1).toInt();
    m_log.append(Timeline::line(entry, Timeline::Style::Plain));
}
