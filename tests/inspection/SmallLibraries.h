#pragma once

#include <QtCore/QByteArray>

/// The metadata of a device plugin, built with Qt 6.4: header and map, as Qt writes them for its plugin loader. Names
/// IID and class, "X".
QByteArray smallMetadata();

/// The smallest Linux library that has everything: sections with the metadata as a note (at most 100 bytes), symbols,
/// needed libraries and their strings.
QByteArray smallLinuxLibrary(const QByteArray &metadata = smallMetadata());

/// The smallest Windows library that has everything: one section with export and import tables, one with the metadata.
/// Addresses are file offsets plus 0x1000.
QByteArray smallWindowsLibrary(const QByteArray &metadata = smallMetadata(), bool is64Bit = true);
