#include "LogicalDevice.h"

int LogicalDevice::query24() const
{
    return 0;
}

QString LogicalDevice::pairedHostName(int /*switchIndex*/) const
{
    return {};
}

bool LogicalDevice::isDPILevelSupported() const
{
    return false;
}

int LogicalDevice::dpiLevel() const
{
    return 0;
}

void LogicalDevice::setDpiLevel(int /*newDPILevel*/) {}

QStringList LogicalDevice::query30() const
{
    return {};
}

bool LogicalDevice::isDPILevelChangePending() const
{
    return false;
}

int LogicalDevice::query33() const
{
    return 0;
}

bool LogicalDevice::query35() const
{
    return false;
}

void LogicalDevice::notify38() {}

void LogicalDevice::notify42() {}

void LogicalDevice::notify43() {}

void LogicalDevice::notify44() {}

bool LogicalDevice::query53() const
{
    return false;
}

int LogicalDevice::query70() const
{
    return 1;
}

bool LogicalDevice::isScrollInversionEnabled() const
{
    return false;
}

void LogicalDevice::setScrollInversionEnabled(bool /*newValue*/) {}

void LogicalDevice::notify87() {}

bool LogicalDevice::query88() const
{
    return false;
}

bool LogicalDevice::query89() const
{
    return false;
}

void LogicalDevice::notify90() {}

bool LogicalDevice::query91() const
{
    return false;
}

void LogicalDevice::notify92() {}

void LogicalDevice::notify93() {}
