#include "TimelineValue.h"

#include <QtCore/QJsonObject>
#include <QtCore/QUuid>

using namespace Qt::StringLiterals;

namespace {

QString quoted(QString text)
{
    text.replace(u'\\', u"\\\\"_s);
    text.replace(u'"', u"\\\""_s);
    return u'"' + text + u'"';
}

QString readableNumber(const QJsonValue &value)
{
    const double number = value.toDouble();
    const qint64 integer = value.toInteger();
    if (static_cast<double>(integer) == number)
        return QString::number(integer);
    return QString::number(number, 'g', std::numeric_limits<double>::max_digits10);
}

QString readableArray(const QJsonArray &array)
{
    QStringList items;
    for (const auto item : array)
        items.append(readableValue(item));
    return u'[' + items.join(u", "_s) + u']';
}

QString readableObject(const QJsonObject &object)
{
    QStringList items;
    for (auto item = object.begin(); item != object.end(); ++item)
        items.append(quoted(item.key()) + u": "_s + readableValue(item.value()));
    return u'{' + items.join(u", "_s) + u'}';
}

}  // namespace

QJsonValue timelineValue(const QString &value)
{
    return value;
}

QJsonValue timelineValue(const QStringList &values)
{
    return QJsonArray::fromStringList(values);
}

// Whole: a line end of another kind is another text.
QJsonValue timelineValue(const QByteArray &text)
{
    return QString::fromUtf8(text)
        .replace(u'\\', u"\\\\"_s)
        .replace(u'\r', u"\\r"_s)
        .replace(u'\n', u"\\n"_s);
}

QJsonValue timelineValue(const QUuid &id)
{
    return id.version() == QUuid::Random ? u"random"_s : id.toString();
}

QJsonValue timelineValue(const IPhysicalDevice *physicalDevice)
{
    return physicalDevice ? u"physical device"_s : u"none"_s;
}

QJsonValue timelineValue(const QList<int> &values)
{
    QJsonArray array;
    for (const int value : values)
        array.append(value);
    return array;
}

QJsonValue timelineValue(const QVariantMap &values)
{
    QJsonObject object;
    for (auto value = values.cbegin(); value != values.cend(); ++value)
        object.insert(value.key(), QJsonValue::fromVariant(*value));
    return object;
}

QJsonValue timelineValue(const quint16 *values)
{
    if (!values)
        return QJsonValue::Null;
    QJsonArray array;
    for (int slot = 0; slot < dpiSlotCount; ++slot)
        array.append(values[slot]);
    return array;
}

QJsonValue timelineValue(const ReportRateInfo *info)
{
    if (!info)
        return QJsonValue::Null;
    QJsonArray rates;
    for (const quint16 rate : info->supportedRates)
        rates.append(rate);
    return QJsonObject{
        {u"unused"_s, info->unused}, {u"currentRate"_s, info->currentRate}, {u"supportedRates"_s, rates}};
}

ReportRateInfo reportRateInfoOf(const QJsonValue &value)
{
    const QList<int> rates = numbersOf(value["supportedRates"_L1]);
    ReportRateInfo info{};
    info.unused = static_cast<quint16>(value["unused"_L1].toInt());
    info.currentRate = static_cast<quint16>(value["currentRate"_L1].toInt());
    qsizetype index = 0;
    for (quint16 &rate : info.supportedRates)
        rate = static_cast<quint16>(rates.value(index++));
    return info;
}

QList<int> numbersOf(const QJsonValue &value)
{
    QList<int> numbers;
    const QJsonArray array = value.toArray();
    for (const auto number : array)
        numbers.append(number.toInt());
    return numbers;
}

QVariantMap settingsOf(const QJsonValue &value)
{
    QVariantMap settings;
    const QJsonObject object = value.toObject();
    for (auto setting = object.begin(); setting != object.end(); ++setting)
        settings.insert(setting.key(),
                        setting->isDouble() ? QVariant(setting->toInt()) : setting->toVariant());
    return settings;
}

QString readableValue(const QJsonValue &value)
{
    switch (value.type()) {
    case QJsonValue::Bool:
        return value.toBool() ? u"true"_s : u"false"_s;
    case QJsonValue::Double:
        return readableNumber(value);
    case QJsonValue::String:
        return quoted(value.toString());
    case QJsonValue::Array:
        return readableArray(value.toArray());
    case QJsonValue::Object:
        return readableObject(value.toObject());
    case QJsonValue::Null:
    case QJsonValue::Undefined:
        break;
    }
    return u"null"_s;
}

QString plainValue(const QJsonValue &value)
{
    if (value.isString())
        return value.toString();
    return value.isArray() ? value.toVariant().toStringList().join(u' ') : readableValue(value);
}
