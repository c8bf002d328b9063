#include "ReceiverFault.h"

#include <algorithm>

using namespace Qt::StringLiterals;

QString ReceiverFault::effectName(Effect effect)
{
    switch (effect) {
    case Effect::Refuse:
        return u"refuse"_s;
    case Effect::Delay:
        return u"delay"_s;
    case Effect::Drop:
        return u"drop"_s;
    case Effect::Repeat:
        return u"repeat"_s;
    case Effect::Alter:
        break;
    }
    return u"alter"_s;
}

void ReceiverFaults::add(const ReceiverFault &fault)
{
    if (fault.times != 0)
        m_faults.append(fault);
}

void ReceiverFaults::clear()
{
    m_faults.clear();
}

QList<ReceiverFault> ReceiverFaults::list() const
{
    return m_faults;
}

std::optional<ReceiverFault> ReceiverFaults::take(const QString &operation, DeviceId id)
{
    const auto hit = std::find_if(m_faults.begin(), m_faults.end(), [&](const ReceiverFault &fault) {
        return fault.operation == operation && fault.device.value_or(id) == id;
    });
    if (hit == m_faults.end())
        return {};
    std::optional<ReceiverFault> fault = *hit;
    if (hit->times != ReceiverFault::always)
        --hit->times;
    if (hit->times == 0)
        m_faults.erase(hit);
    return fault;
}
