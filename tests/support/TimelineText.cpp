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
