#pragma once

// Qt's headers include this one on Windows only, and Debian's packages leave it out: the types of Windows
// that Qt mentions, as <windows.h> declares them.
using HBITMAP = struct HBITMAP__ *;
using HICON = struct HICON__ *;
using HMONITOR = struct HMONITOR__ *;
using HRGN = struct HRGN__ *;
using HWND = struct HWND__ *;
