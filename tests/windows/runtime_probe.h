#pragma once

#include <cstddef>
#include <exception>
#include <stdexcept>

// What a library, the probe, does for the program that tests the runtime in both.

#ifdef runtime_probe_EXPORTS
#define PROBE extern "C" __declspec(dllexport)
#else
#define PROBE extern "C"
#endif

using Callback = void (*)();

/// What the program asks the probe to do while it is loaded or unloaded, by name.
namespace Wish {
inline constexpr char failInC[] = "an initializer of C's reports that it failed";
inline constexpr char throwInCpp[] = "an initializer of C++'s throws";
inline constexpr char registerAtExit[] = "a function run at the unload gives atexit() another";
}  // namespace Wish

struct CodeError
{
    int code;
};

class TextError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

class Shape
{
public:
    virtual ~Shape() = default;
    int corners = 4;
};

class Named
{
public:
    virtual ~Named() = default;
    int letters = 6;
};

class Circle : public Shape, public Named
{
};

// --- runtime_probe.cpp: static objects ---

/// Gives atexit() two functions.
PROBE void registerExitFunctions();
/// A local static that is 42 once initializing(), which the first call runs, has returned.
PROBE const int *localStatic(Callback initializing);
/// Another, for initializations that fail at first.
PROBE const int *retriedStatic(Callback initializing);

// --- runtime_probe_memory.cpp ---

PROBE void *allocate(std::size_t size);
PROBE void *allocateOrNull(std::size_t size);
/// Aligned to 256; freed again. Answers its address.
PROBE std::size_t addressOfOverAligned();
/// Touches the lowest byte of a frame of bytesOfBigFrame, and no other.
PROBE void useBigFrame();
inline constexpr std::size_t bytesOfBigFrame = 256 * 1024;

// --- runtime_probe_threads.cpp: thread-local variables ---

PROBE int *threadConstant();
PROBE int *threadConstructed();
/// An object local to the function, which is constructed by the thread's first call.
PROBE void useLocalOfThread();
PROBE std::size_t addressOfAlignedLocal();

// --- runtime_probe_types.cpp: exceptions and types ---

PROBE void throwCode(int code);
PROBE void throwText(const char *text);
PROBE void throwBadCast();
PROBE void throwBadTypeid();
/// Runs it in a frame that has an object with a destructor.
PROBE void runBeneathFrame(Callback callback);
/// The code of the CodeError that comes out of it, 0 for none.
PROBE int codeThrownBy(Callback callback);
PROBE void captureText(const char *text, std::exception_ptr *captured);
PROBE Shape *makeCircle();
PROBE bool isCircle(const Shape &shape);
