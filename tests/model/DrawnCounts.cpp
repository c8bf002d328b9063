#include "DrawnCounts.h"

using namespace Qt::StringLiterals;

namespace {

using Kind = Step::Kind;
using Route = Step::Route;

template <typename Value>
std::size_t indexOf(Value value)
{
    return static_cast<std::size_t>(value);
}

bool mayComeBy(Route route, Kind kind)
{
    switch (route) {
    case Route::OtherThread:
        return !needsDeviceThread(kind);
    case Route::InsideRequest:
        return isReport(kind);
    case Route::Direct:
        break;
    }
    return true;
}

QString routeName(Route route)
{
    switch (route) {
    case Route::OtherThread:
        return u"from another thread"_s;
    case Route::InsideRequest:
        return u"inside a request"_s;
    case Route::Direct:
        break;
    }
    return u"directly"_s;
}

}  // namespace

DrawnCounts::DrawnCounts() : m_byCircumstance(circumstances().size()) {}

void DrawnCounts::count(const MadeStep &made)
{
    ++m_byKindAndRoute.at(indexOf(made.step.kind)).at(indexOf(made.step.route));
    if (const Step *report = reportInsideRequest(made))
        ++m_byKindAndRoute.at(indexOf(report->kind)).at(indexOf(Route::InsideRequest));
    for (std::size_t index = 0; index < m_byCircumstance.size(); ++index) {
        if (circumstances().at(index).holds(made))
            ++m_byCircumstance.at(index);
    }
}

QList<QPair<QString, qint64>> DrawnCounts::all() const
{
    QList<QPair<QString, qint64>> counts;
    for (std::size_t kind = 0; kind < kindCount; ++kind) {
        for (std::size_t route = 0; route < routeCount; ++route) {
            if (!mayComeBy(static_cast<Route>(route), static_cast<Kind>(kind)))
                continue;
            const QString name = QString::fromLatin1(nameOf(static_cast<Kind>(kind))) + u' ' +
                                 routeName(static_cast<Route>(route));
            counts.append({name, m_byKindAndRoute.at(kind).at(route)});
        }
    }
    for (std::size_t index = 0; index < m_byCircumstance.size(); ++index)
        counts.append({QString::fromLatin1(circumstances().at(index).name), m_byCircumstance.at(index)});
    return counts;
}

QStringList DrawnCounts::missing() const
{
    QStringList names;
    const QList<QPair<QString, qint64>> counts = all();
    for (const auto &[name, count] : counts) {
        if (count == 0)
            names.append(name);
    }
    return names;
}
