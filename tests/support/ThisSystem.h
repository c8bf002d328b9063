#pragma once

#include <QtCore/QLatin1StringView>
#include <QtCore/QOperatingSystemVersion>

/// What differs between the systems that the library is built for.
namespace ThisSystem {

inline constexpr bool isWindows = QOperatingSystemVersion::currentType() == QOperatingSystemVersion::Windows;
inline constexpr QLatin1StringView name(isWindows ? "Windows" : "Linux");
inline constexpr QLatin1StringView otherName(isWindows ? "Linux" : "Windows");
inline constexpr QLatin1StringView qtCoreLibrary(isWindows ? "Qt6Core.dll" : "libQt6Core.so.6");

}  // namespace ThisSystem
