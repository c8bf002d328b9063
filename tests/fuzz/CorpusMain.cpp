// Runs a fuzz target without libFuzzer: gives it each file of a folder whole, cut off, and with one byte
// changed.

#include "FuzzTarget.h"

#include <QtCore/QDir>
#include <QtCore/QFile>

#include <charconv>
#include <cstdio>
#include <cstring>
#include <vector>

namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr int badUsage = 2;

Bytes bytesOf(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QByteArray content = file.readAll();
    return {content.begin(), content.end()};
}

// In memory of just its size, so that a sanitizer sees each access behind its end.
void feed(const Bytes &bytes, std::size_t size)
{
    const Bytes input(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size));
    LLVMFuzzerTestOneInput(input.data(), input.size());
}

// Answers the number of inputs. positions: how many places, spread over the file, it is cut and changed at.
std::size_t feedVariants(Bytes bytes, std::size_t positions)
{
    std::size_t count = 1;
    feed(bytes, bytes.size());
    const std::size_t step = bytes.size() / positions + 1;
    for (std::size_t position = 0; position < bytes.size(); position += step) {
        feed(bytes, position);
        const std::uint8_t original = bytes[position];
        for (const int value : {0, 0xff, original + 1, original ^ 0x80}) {
            bytes[position] = static_cast<std::uint8_t>(value);
            feed(bytes, bytes.size());
        }
        bytes[position] = original;
        count += 5;
    }
    return count;
}

}  // namespace

int main(int argc, char **argv)
{
    std::size_t positions = 0;
    if (argc == 3)
        std::from_chars(argv[2], argv[2] + std::strlen(argv[2]), positions);
    if (positions == 0) {
        std::fprintf(stderr, "give a folder of inputs, and at how many places to change each of them\n");
        return badUsage;
    }
    const QDir folder(QString::fromLocal8Bit(argv[1]));
    const QStringList files = folder.entryList(QDir::Files, QDir::Name);
    if (files.isEmpty()) {
        std::fprintf(stderr, "\"%s\" holds no input; give a folder that does\n", argv[1]);
        return badUsage;
    }
    std::size_t count = 0;
    for (const QString &file : files) {
        // Before it is read: the last one named is the one that broke something.
        std::printf("%s\n", qPrintable(file));
        std::fflush(stdout);
        count += feedVariants(bytesOf(folder.filePath(file)), positions);
    }
    std::printf("%zu inputs\n", count);
    return 0;
}
