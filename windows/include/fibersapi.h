#pragma once

// libc++ includes this header of Windows; Wine declares what belongs in it elsewhere.
#include <windows.h>
