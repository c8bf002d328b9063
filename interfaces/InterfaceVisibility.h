#pragma once

// An interface's run-time type information must be one object for host and plugin wherever the C++ runtime
// compares it by address. Windows runtimes compare it by name, and there the macro must stay empty:
// nothing but the two entry points may be exported from a plugin.
#if defined(__ELF__) || defined(__MACH__)
#define KVX_INTERFACE __attribute__((visibility("default")))
#else
#define KVX_INTERFACE
#endif
