#include <QtCore/QtGlobal>

#include <type_traits>

// The tables are compared with the stand-ins in stubs/QtCore/QtGlobal. They must be what Qt says, or the
// verdict is about other interfaces than ours.
static_assert(std::is_same_v<quint8, unsigned char>);
static_assert(std::is_same_v<quint16, unsigned short>);
static_assert(std::is_same_v<quint32, unsigned int>);
static_assert(std::is_same_v<quint64, unsigned long long>);
static_assert(std::is_same_v<quintptr, unsigned long long>);
static_assert(std::is_same_v<uint, unsigned int>);
