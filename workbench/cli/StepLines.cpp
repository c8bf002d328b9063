#include "StepLines.h"

#include <QtCore/QJsonDocument>

using namespace Qt::StringLiterals;

QString jsonText(const QJsonObject &object)
{
    return QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact));
}

std::optional<QString> begunLine(const TimelineEntry &entry)
{
    using Kind = TimelineEntry::Kind;
    if (entry.kind != Kind::Call && entry.kind != Kind::Receiver && entry.kind != Kind::Report)
        return std::nullopt;
    return jsonText({{u"began"_s, Timeline::line(entry, Timeline::Style::Plain)}});
}

QString resultWord(ExitCode code)
{
    switch (code) {
    case ExitCode::Difference:
        return u"difference"_s;
    case ExitCode::Unusable:
        return u"unusable"_s;
    case ExitCode::Refused:
        return u"refused"_s;
    case ExitCode::Pending:
        return u"pending"_s;
    case ExitCode::Success:
        break;
    }
    return {};
}
