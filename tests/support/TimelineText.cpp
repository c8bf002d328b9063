#include "TimelineText.h"

using namespace Qt::StringLiterals;

QString timelineText(const QStringList &lines)
{
    return lines.join(u'\n');
}

QString debugLine(const QString &text)
{
    return u"debug RV418.LogicalDevice: "_s + text;
}

QString warningLine(const QString &text)
{
    return u"warning RV418.LogicalDevice: "_s + text;
}

QString criticalLine(const QString &text)
{
    return u"critical RV418.LogicalDevice: "_s + text;
}

QStringList bindingLines()
{
    return {u"receiver getFirmwareVersion() -> 258"_s,
            u"receiver hasBatteryLevel() -> true"_s,
            u"receiver getStatusValue() -> 31"_s,
            u"receiver getBatteryLevel() -> 80"_s,
            u"receiver getDeviceValue() -> 32"_s,
            u"receiver requestInitialState1() -> true"_s,
            u"receiver requestInitialState2() -> true"_s,
            u"receiver requestInitialState3() -> true"_s,
            u"receiver isSmartPointerSupported() -> true"_s,
            u"receiver getReportRateInfo() -> true"_s,
            u"receiver getLevelValue() -> 33"_s};
}
