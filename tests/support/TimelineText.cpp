#include "TimelineText.h"

#include <QtTest/QTest>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype shownBefore = 3;

QString lineOrEnd(const QStringList &lines, qsizetype index)
{
    return index < lines.size() ? lines.at(index) : u"(the end)"_s;
}

QString firstDifference(const QStringList &actual, const QStringList &expected)
{
    const auto different =
        std::mismatch(actual.cbegin(), actual.cend(), expected.cbegin(), expected.cend()).first;
    const qsizetype index = different - actual.cbegin();
    QString text = u"They differ at line %1.\n"_s.arg(index + 1);
    for (qsizetype before = qMax(index - shownBefore, qsizetype(0)); before < index; ++before)
        text += u"             "_s + actual.at(before) + u'\n';
    return text +
           u"   Actual:   %1\n   Expected: %2"_s.arg(lineOrEnd(actual, index), lineOrEnd(expected, index));
}

}  // namespace

bool compareLines(const QStringList &actual, const QStringList &expected, const char *file, int line)
{
    if (actual == expected)
        return true;
    QTest::qFail(qPrintable(firstDifference(actual, expected)), file, line);
    return false;
}

QStringList linesOf(const QString &text)
{
    return text.split(u'\n', Qt::SkipEmptyParts);
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
