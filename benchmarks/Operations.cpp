#include "MeasuredDevice.h"
#include "ReportRateInfo.h"
#include "Subject.h"

#include <QtCore/QVariantMap>

#include <array>

namespace {

constexpr qint64 callsTogether = 1000;

// Each struct below is one operation: the signals that somebody listens to, and the call. It is a template,
// so that device and floor are called by the same lines. The state differs from call to call, or nothing
// would be to do.

struct MouseUnchanged
{
    static void listen(QObject & /*object*/, Listeners & /*listeners*/) {}
    template <typename Device>
    void call(Device &device, qint64 /*number*/) const
    {
        device.mouseEventCallBack(0);
    }
};

struct MouseButton
{
    static void listen(QObject & /*object*/, Listeners & /*listeners*/) {}
    template <typename Device>
    void call(Device &device, qint64 number) const
    {
        device.mouseEventCallBack(static_cast<quint8>(number & 1));
    }
};

template <int receivers>
struct Battery
{
    static void listen(QObject &object, Listeners &listeners)
    {
        listeners.connect(object, SIGNAL(batteryLevelChanged(int)), SLOT(onNumber(int)), receivers);
    }
    template <typename Device>
    void call(Device &device, qint64 number) const
    {
        device.setBatteryLevel(static_cast<int>(50 + (number & 1)));
    }
};

struct DpiSlots
{
    static void listen(QObject &object, Listeners &listeners)
    {
        listeners.connect(object, SIGNAL(dpiSlotValuesChanged(QStringList)), SLOT(onTexts(QStringList)));
        listeners.connect(object, SIGNAL(isDpiSlotValuesChangePendingChanged(bool)), SLOT(onFlag(bool)));
    }
    template <typename Device>
    void call(Device &device, qint64 number) const
    {
        const auto which = static_cast<std::size_t>(number & 1);
        device.setDpiSlotValues(texts.at(which));
        device.dpiSlotValuesConfirmed(values.at(which).data());
    }

    std::array<QStringList, 2> texts = {QStringLiteral("400,1600,2400,3200,6400").split(QLatin1Char(',')),
                                        QStringLiteral("800,1000,2000,4000,8000").split(QLatin1Char(','))};
    std::array<std::array<quint16, 5>, 2> values = {
        {{400, 1600, 2400, 3200, 6400}, {800, 1000, 2000, 4000, 8000}}};
};

struct ReportRate
{
    static void listen(QObject &object, Listeners &listeners)
    {
        listeners.connect(object, SIGNAL(reportRateChanged(int)), SLOT(onNumber(int)));
        listeners.connect(object, SIGNAL(isReportRateChangePendingChanged(bool)), SLOT(onFlag(bool)));
    }
    template <typename Device>
    void call(Device &device, qint64 number) const
    {
        const int rate = (number & 1) != 0 ? 500 : 1000;
        device.setReportRate(rate);
        device.reportRateConfirmed(rate);
    }
};

struct ActiveSlot
{
    static void listen(QObject &object, Listeners &listeners)
    {
        listeners.connect(object, SIGNAL(activeDpiSlotIndexChanged(int)), SLOT(onNumber(int)));
    }
    void call(ILogicalDeviceGen3Mouse &device, qint64 number) const
    {
        const int index = static_cast<int>(4 + (number & 1));
        device.setActiveDpiSlotIndex(index);
        device.activeDpiSlotIndexConfirmed(index);
    }
};

struct DpiButton
{
    static void listen(QObject &object, Listeners &listeners)
    {
        listeners.connect(object, SIGNAL(dpiButtonIdChanged(int)), SLOT(onNumber(int)));
    }
    void call(ILogicalDeviceGen3Mouse &device, qint64 number) const
    {
        const int button = static_cast<int>(4 + (number & 1));
        device.setDpiButtonId(button);
        device.dpiButtonIdConfirmed(button);
    }
};

struct DpiReport
{
    static void listen(QObject &object, Listeners &listeners)
    {
        listeners.connect(object, SIGNAL(dpiValueChanged(int)), SLOT(onNumber(int)));
    }
    void call(ILogicalDeviceGen3Mouse &device, qint64 number) const
    {
        device.dpiValueChangedCallBack(static_cast<int>(800 + (number & 1)));
    }
};

struct RateReport
{
    static void listen(QObject &object, Listeners &listeners)
    {
        listeners.connect(object, SIGNAL(reportRateChanged(int)), SLOT(onNumber(int)));
    }
    void call(ILogicalDeviceGen3Mouse &device, qint64 number) const
    {
        device.reportRateChangedCallBack(&infos.at(static_cast<std::size_t>(number & 1)));
    }

    std::array<ReportRateInfo, 2> infos = {
        {{0, 125, {125, 250, 500, 1000}}, {0, 500, {125, 250, 500, 1000}}}};
};

struct DisabledButtons
{
    static void listen(QObject & /*object*/, Listeners & /*listeners*/) {}
    void call(ILogicalDeviceGen3Mouse &device, qint64 /*number*/) const
    {
        device.disbaleButtonsOrKeys(buttons);
    }

    QList<int> buttons = {1, 3};
};

struct Settings
{
    static void listen(QObject & /*object*/, Listeners & /*listeners*/) {}
    void call(ILogicalDeviceGen3Mouse &device, qint64 /*number*/) const { device.applySettings(settings); }

    QVariantMap settings = {{QStringLiteral("speed"), 7}};
};

template <typename Kind, typename Measured>
class DeviceOperation final : public Operation
{
public:
    template <typename... Arguments>
    explicit DeviceOperation(Arguments... arguments) : m_measured(arguments...)
    {
        Kind::listen(m_measured.object(), m_listeners);
    }

    void run(qint64 calls) override
    {
        auto &device = m_measured.device();
        for (qint64 number = 0; number < calls; ++number)
            m_kind.call(device, number);
    }

private:
    // Before the device: what still listens when it is destroyed hears of it.
    Listeners m_listeners;
    Measured m_measured;
    Kind m_kind;
};

class Catalogue
{
public:
    template <typename Kind>
    void add(const QString &name, Log log = Log::Off)
    {
        subjects.push_back({name, callsTogether,
                            [log] { return std::make_unique<DeviceOperation<Kind, MeasuredDevice>>(log); }});
    }

    template <typename Kind>
    void addWithFloor(const QString &name)
    {
        add<Kind>(name);
        subjects.push_back({name + QStringLiteral("/floor"), callsTogether,
                            [] { return std::make_unique<DeviceOperation<Kind, MeasuredFloor>>(); }});
    }

    template <typename Kind>
    void addWithLog(const QString &name)
    {
        addWithFloor<Kind>(name);
        add<Kind>(name + QStringLiteral(", log on"), Log::On);
        add<Kind>(name + QStringLiteral(", log filtered"), Log::Filtered);
    }

    std::vector<Subject> subjects;
};

}  // namespace

std::vector<Subject> allSubjects()
{
    Catalogue catalogue;
    catalogue.addWithFloor<MouseUnchanged>(QStringLiteral("mouse report, nothing changed"));
    catalogue.addWithLog<MouseButton>(QStringLiteral("mouse report, one button changed"));
    catalogue.addWithFloor<Battery<0>>(QStringLiteral("battery level changed, no receiver"));
    catalogue.addWithFloor<Battery<1>>(QStringLiteral("battery level changed, 1 receiver"));
    catalogue.addWithFloor<Battery<100>>(QStringLiteral("battery level changed, 100 receivers"));
    addForeignThread(catalogue.subjects);
    catalogue.addWithLog<DpiSlots>(QStringLiteral("DPI slots requested and confirmed"));
    catalogue.addWithLog<ReportRate>(QStringLiteral("report rate requested and confirmed"));
    catalogue.add<ActiveSlot>(QStringLiteral("active slot requested and confirmed"));
    catalogue.add<DpiButton>(QStringLiteral("DPI button requested and confirmed"));
    catalogue.add<DpiReport>(QStringLiteral("DPI reported"));
    catalogue.add<RateReport>(QStringLiteral("report rates reported"));
    catalogue.add<DisabledButtons>(QStringLiteral("two buttons diverted"));
    catalogue.add<Settings>(QStringLiteral("settings applied"));
    addLoading(catalogue.subjects);
    addRegistry(catalogue.subjects);
    return std::move(catalogue.subjects);
}
