#pragma once

/// Runs the module's static initializers, those of C first. Returns false when a C initializer fails. An
/// exception from a C++ initializer propagates. In both cases the remaining initializers do not run; call
/// runExitFunctions() to destroy what was constructed.
bool runInitializers();

/// Runs this module's atexit() functions in reverse order, with the destructors of static objects.
void runExitFunctions() noexcept;

/// Runs the initializers of the calling thread's thread-local variables, unless they have run.
void initializeThread() noexcept;

/// Runs the destructors of the calling thread's thread-local variables, the last that was constructed first.
void endThread() noexcept;

/// Where the linker has put a walk's first or last element. The compiler may take it for granted that a walk
/// does not leave the variable that it begins in; it cannot see where a volatile pointer leads.
template <typename Function>
const Function *hidden(const Function *address)
{
    const Function *volatile opaque = address;
    return opaque;
}
