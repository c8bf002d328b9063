// Stands in for "kvx shell --json": the name behind --plugin says which wrong output it prints.

#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <string>

namespace {

std::string begin()
{
    return R"({"schemaVersion":1})"
           "\n";
}

std::string state()
{
    return R"({"state":{"isLoaded":true}})"
           "\n";
}

void print(const std::string &text)
{
    std::fwrite(text.data(), 1, text.size(), stdout);
    std::fflush(stdout);
}

void printByteByByte(const std::string &text)
{
    for (const char letter : text)
        print({letter});
}

std::string answer(int number)
{
    return R"({"answer":)" + std::to_string(number) +
           R"(,"command":"x","result":"done","message":"","expected":[],"actual":[],"printed":[]})"
           "\n";
}

void printBegin(const std::string &mode)
{
    constexpr std::size_t hugeSize = std::size_t{20} * 1024U * 1024U;
    if (mode == "garbage")
        print(begin() + std::string("\0\x01\xff\xfe{]\n{\"state\":\nnull\n[]\n42\n\n", 25) + state());
    else if (mode == "wrong-types")
        print(begin() + "{\"state\":5}\n{\"answer\":\"x\",\"printed\":{}}\n{\"kind\":[],\"device\":{}}\n" +
              state());
    else if (mode == "half-lines")
        printByteByByte(begin() + state());
    else if (mode == "huge-line")
        print(begin() + std::string(hugeSize, 'x') + "\n" + state());
    else if (mode == "answers-from-nowhere")
        print(begin() + answer(-3) + answer(1000) + state());
    else if (mode == "ends-in-a-line")
        print(begin() + "{\"began\":\"call f()\"}\n{\"state\":{\"isLo");
    else
        print(begin() + state());
}

}  // namespace

int main(int count, char **words)
{
    const std::string mode = words[count - 1];
    printBegin(mode);
    if (mode == "ends-in-a-line") {
        std::fputs("kvx: no more\n", stderr);
        return 7;
    }
    std::string line;
    for (int number = 1; std::getline(std::cin, line); ++number)
        printByteByByte(answer(number));
    return EXIT_SUCCESS;
}
