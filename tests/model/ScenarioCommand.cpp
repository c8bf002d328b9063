#include "ScenarioCommand.h"

using namespace Qt::StringLiterals;

namespace {

using Kind = Operation::Kind;

QString word(QString text)
{
    text.replace(u'\\', u"\\\\"_s);
    text.replace(u'"', u"\\\""_s);
    return u'"' + text + u'"';
}

template <typename Numbers>
QString numbers(const Numbers &values, QChar separator = u' ')
{
    QStringList texts;
    for (const auto value : values)
        texts.append(QString::number(value));
    return texts.join(separator);
}

QString truth(bool value)
{
    return value ? u"true"_s : u"false"_s;
}

QString settingWords(const QVariantMap &settings)
{
    QStringList words;
    for (auto setting = settings.cbegin(); setting != settings.cend(); ++setting)
        words.append(word(setting.key() + u'=' + setting->toString()));
    return words.join(u' ');
}

// The words behind "report" that stand for the operation's arguments.
QString reportWords(const Operation &operation)
{
    switch (operation.kind) {
    case Kind::SetFirmwareVersion:
        return QString::number(static_cast<int>(operation.firmwareVersion));
    case Kind::PpidChangedCallBack:
        return word(operation.text);
    case Kind::DpiSlotValuesConfirmed:
    case Kind::DpiSlotValuesChangedCallBack:
        return numbers(operation.slotValues);
    case Kind::ReportRateChangedCallBack:
        return QString::number(operation.rateInfo.currentRate) + u' ' +
               numbers(operation.rateInfo.supportedRates);
    default:
        return QString::number(operation.number);
    }
}

QString routeText(Operation::Route route)
{
    switch (route) {
    case Operation::Route::OtherThread:
        return u", called from another thread"_s;
    case Operation::Route::InsideRequest:
        return u", inside the next request to its receiver"_s;
    case Operation::Route::Direct:
        break;
    }
    return {};
}

}  // namespace

const QStringList &answeredRequests()
{
    static const QStringList names{u"requestInitialState1"_s,        u"requestInitialState2"_s,
                                   u"requestInitialState3"_s,        u"setReportRate"_s,
                                   u"setDpiButtonAndActiveSlot"_s,   u"setDpiSlotValues"_s,
                                   u"setDisabledButtonsOrKeysMask"_s};
    return names;
}

QList<QPair<QString, QString>> mouseFields(const ReceiverAnswers &answers)
{
    const ReportRateInfo &info = answers.reportRateInfo;
    return {{u"firmwareVersion"_s, QString::number(static_cast<int>(answers.firmwareVersion))},
            {u"hasBatteryLevel"_s, truth(answers.hasBatteryLevel)},
            {u"batteryLevel"_s, QString::number(answers.batteryLevel)},
            {u"statusValue"_s, QString::number(answers.statusValue)},
            {u"deviceValue"_s, QString::number(answers.deviceValue)},
            {u"levelValue"_s, QString::number(answers.levelValue)},
            {u"isSmartPointerSupported"_s, truth(answers.isSmartPointerSupported)},
            {u"knowsReportRates"_s, truth(answers.hasReportRateInfo)},
            {u"reportRate"_s, QString::number(info.currentRate)},
            {u"reportRates"_s, numbers(info.supportedRates, u',')}};
}

QString scenarioCommand(const Operation &operation)
{
    QString name = QString::fromLatin1(operationName(operation.kind));
    switch (operation.kind) {
    case Kind::Start:
    case Kind::Stop:
        return name;
    case Kind::SetReportRate:
    case Kind::SetActiveDpiSlotIndex:
    case Kind::SetDpiButtonId:
        return name + u' ' + QString::number(operation.number) + u" nowait"_s;
    case Kind::SetDpiSlotValues: {
        QStringList words{name};
        for (const QString &text : operation.texts)
            words.append(word(text));
        return words.join(u' ') + u" nowait"_s;
    }
    case Kind::DisbaleButtonsOrKeys:
        return (name + u' ' + numbers(operation.numbers)).trimmed() + u" nowait"_s;
    case Kind::SetButtonsOrKeysToDefault:
    case Kind::ResetSettings:
        return name + u" nowait"_s;
    case Kind::ApplySettings:
        return (name + u' ' + settingWords(operation.settings)).trimmed();
    default:
        if (isReport(operation.kind) || operation.kind == Kind::MouseEventCallBack)
            return u"report "_s + name + u' ' + reportWords(operation);
        return {};
    }
}

QString callComment(const Operation &operation)
{
    return callText(operation) + routeText(operation.route);
}

QString reportText(const Operation &operation)
{
    Operation shown = operation;
    // A scenario's numbers are no larger than an int, and it has no word for what the plugin does not read.
    shown.rateInfo.unused = 0;
    if (operation.kind == Kind::SetFirmwareVersion)
        return QString::fromLatin1(operationName(operation.kind)) + u'(' + reportWords(operation) + u')';
    return callText(shown);
}

QString routeWords(Operation::Route route)
{
    switch (route) {
    case Operation::Route::OtherThread:
        return u"other-thread "_s;
    case Operation::Route::InsideRequest:
        return u"inside-request "_s;
    case Operation::Route::Direct:
        break;
    }
    return {};
}

QString deviceCommand(Physical physical, const QString &id)
{
    return u"device %1 %2"_s.arg(id, physical == Physical::NoReceiver ? u"other"_s : u"none"_s);
}
