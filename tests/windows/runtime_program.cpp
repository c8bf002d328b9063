// runtime_program MODE [ARGUMENT...]: how a program begins and ends. It prints what happens, one line each.

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>

#include <windows.h>

namespace {

void print(const char *line)
{
    std::puts(line);
    std::fflush(stdout);
}

class Printed
{
public:
    explicit Printed(const char *end) : m_end(end) {}
    ~Printed() { print(m_end); }
    Printed(const Printed &) = delete;
    Printed &operator=(const Printed &) = delete;

private:
    const char *m_end;
};

[[noreturn]] void onTerminate()
{
    print("terminate handler");
    std::_Exit(5);
}

bool throwWhenWanted()
{
    std::set_terminate(onTerminate);
    if (std::strstr(GetCommandLineA(), "throw-before-main"))
        throw 1;
    return true;
}

[[maybe_unused]] const bool hasNotThrown = throwWhenWanted();
const Printed staticObject("end of static object");
thread_local const Printed ofThread("end of main thread's object");

}  // namespace

int main(int argc, char **argv)
{
    const Printed local("end of main");
    static_cast<void>(ofThread);
    const char *mode = argc > 1 ? argv[1] : "";
    std::atexit([] { print("first exit function"); });
    std::atexit([] { print("second exit function"); });
    if (std::strcmp(mode, "throw") == 0)
        throw 1;
    if (std::strcmp(mode, "exit") == 0)
        std::exit(9);
    for (int each = 2; each < argc; ++each)
        print(argv[each]);
    return 7;
}
