#include "SignalRecorder.h"

#include "IDevice.h"
#include "Timeline.h"
#include "TimelineValue.h"

#include <QtCore/QMetaObject>

using namespace Qt::StringLiterals;

namespace {

// Undefined when the type is none of these.
template <typename... Types>
QJsonValue valueIfOneOf(QMetaType type, const void *argument)
{
    QJsonValue value = QJsonValue::Undefined;
    const auto take = [&](const auto &candidate) { value = timelineValue(candidate); };
    ((type == QMetaType::fromType<Types>() ? take(*static_cast<const Types *>(argument)) : void()), ...);
    return value;
}

}  // namespace

SignalRecorder::SignalRecorder(Timeline &timeline, QObject *sender, std::optional<DeviceId> device)
    : m_timeline(timeline), m_device(device)
{
    if (!sender) {
        m_isComplete = false;
        m_timeline.recordVerdict(u"there is no object whose signals could be recorded"_s, m_device);
        return;
    }
    m_ownDevice = qobject_cast<IDevice *>(sender);
    // Registered from here, where it stays: what a library registers dangles once the library is unloaded.
    QMetaType::fromType<IDevice *>().id();
    const QMetaObject *metaObject = sender->metaObject();
    const int firstOwnMethod = QObject::staticMetaObject.methodCount();
    for (int index = firstOwnMethod; index < metaObject->methodCount(); ++index) {
        const QMetaMethod method = metaObject->method(index);
        // Qt makes a clone of a signal for each default argument; emitting the signal emits those too.
        if (method.methodType() != QMetaMethod::Signal || (method.attributes() & QMetaMethod::Cloned))
            continue;
        const int receiverMethod = firstOwnMethod + static_cast<int>(m_signals.size());
        m_signals.append(method);
        if (QMetaObject::connect(sender, index, this, receiverMethod, Qt::DirectConnection))
            continue;
        m_isComplete = false;
        m_timeline.recordVerdict(u"the signal "_s + QString::fromLatin1(method.methodSignature()) +
                                     u" cannot be recorded"_s,
                                 m_device);
    }
}

int SignalRecorder::qt_metacall(QMetaObject::Call call, int id, void **arguments)
{
    id = QObject::qt_metacall(call, id, arguments);
    if (id < 0 || call != QMetaObject::InvokeMetaMethod)
        return id;
    const int signalCount = static_cast<int>(m_signals.size());
    if (id < signalCount)
        recordSignal(m_signals.at(id), arguments);
    return id - signalCount;
}

QJsonValue SignalRecorder::argumentValue(QMetaType type, const void *argument) const
{
    QJsonValue value =
        valueIfOneOf<bool, int, uint, qlonglong, qulonglong, quint8, QString, QStringList>(type, argument);
    if (!value.isUndefined())
        return value;
    if (type == QMetaType::fromType<IDevice *>()) {
        const void *device = *static_cast<IDevice *const *>(argument);
        if (!device)
            return QJsonValue::Null;
        return device == m_ownDevice ? u"this"_s : u"other"_s;
    }
    return QString::fromLatin1(type.name());
}

void SignalRecorder::recordSignal(const QMetaMethod &signal, void **arguments)
{
    QJsonArray values;
    for (int index = 0; index < signal.parameterCount(); ++index)
        values.append(argumentValue(signal.parameterMetaType(index), arguments[index + 1]));
    m_timeline.record(TimelineEntry::Kind::Signal, m_device, QString::fromLatin1(signal.name()), values);
}
