#pragma once

/// Runs the module's static initializers, those of C first. Answers false when one of C's reports that it
/// failed, and lets an exception out of one of C++'s pass; the rest do not run then. runExitFunctions() ends
/// what was constructed.
bool runInitializers();

/// Runs what atexit() was given in this module, the last first; destructors of static objects are among it.
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
