// Local static variables are initialized by the first thread that comes to them; the others wait. A guard is
// 0 before that, -1 meanwhile, and then the number of the initialization, counted from the smallest int in
// the whole module. Each thread keeps the last number that it has seen and calls these functions only for a
// newer guard.

#include <climits>

#include <windows.h>

namespace {

constexpr int notInitialized = 0;
constexpr int inProgress = -1;

SRWLOCK guardsLock = SRWLOCK_INIT;
CONDITION_VARIABLE guardChanged = CONDITION_VARIABLE_INIT;
int lastNumber = INT_MIN;

}  // namespace

extern "C" {

thread_local int _Init_thread_epoch = INT_MIN;

// Answers with -1 in the guard where the caller has to initialize.
void __cdecl _Init_thread_header(int *guard) noexcept
{
    AcquireSRWLockExclusive(&guardsLock);
    while (*guard == inProgress)
        SleepConditionVariableSRW(&guardChanged, &guardsLock, INFINITE, 0);
    if (*guard == notInitialized)
        *guard = inProgress;
    else
        _Init_thread_epoch = lastNumber;
    ReleaseSRWLockExclusive(&guardsLock);
}

void __cdecl _Init_thread_footer(int *guard) noexcept
{
    AcquireSRWLockExclusive(&guardsLock);
    *guard = ++lastNumber;
    _Init_thread_epoch = lastNumber;
    ReleaseSRWLockExclusive(&guardsLock);
    WakeAllConditionVariable(&guardChanged);
}

// An exception left the initialization.
void __cdecl _Init_thread_abort(int *guard) noexcept
{
    AcquireSRWLockExclusive(&guardsLock);
    *guard = notInitialized;
    ReleaseSRWLockExclusive(&guardsLock);
    WakeAllConditionVariable(&guardChanged);
}

}  // extern "C"
