#pragma once

#include <QtCore/QtGlobal>

/// What the process and all its libraries have from malloc. The program defines malloc and its kin itself, in front of
/// the C library's.
namespace Allocations {

struct Count
{
    qint64 made = 0;    ///< since the start, freed ones too
    qint64 blocks = 0;  ///< not yet freed
    qint64 bytes = 0;   ///< in those blocks, as the allocator rounds them
};

Count count();

}  // namespace Allocations
