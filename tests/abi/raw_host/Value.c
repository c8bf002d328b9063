#include "Value.h"

#include "Timeline.h"

#include <inttypes.h>
#include <stdarg.h>
#include <stdio.h>
#include <string.h>

#include <windows.h>

enum { mostNames = 32 };

static struct
{
    uint64_t word;
    const char *name;
} names[mostNames];
static int nameCount;

typedef struct
{
    char *text;
    size_t left;
} Writer;

static void put(Writer *writer, const char *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const int length = vsnprintf(writer->text, writer->left, format, arguments);
    va_end(arguments);
    if (length < 0 || (size_t)length >= writer->left) {
        writer->left = 0;
        return;
    }
    writer->text += length;
    writer->left -= (size_t)length;
}

void nameWord(uint64_t word, const char *name)
{
    int index = 0;
    while (index < nameCount && names[index].word != word)
        ++index;
    if (index == mostNames) {
        deviation("more named objects than are kept");
        return;
    }
    names[index].word = word;
    names[index].name = name;
    if (index == nameCount)
        ++nameCount;
}

static void putWord(Writer *writer, uint64_t word)
{
    for (int index = 0; index < nameCount; ++index) {
        if (names[index].word == word) {
            put(writer, "%s", names[index].name);
            return;
        }
    }
    put(writer, word ? "0x%" PRIx64 : "null", word);
}

static void putBool(Writer *writer, uint8_t value)
{
    static const char *const texts[] = {"false", "true"};
    if (value < 2)
        put(writer, "%s", texts[value]);
    else
        put(writer, "0x%x, which is no bool", value);
}

// Anything but printable ASCII is written as a number.
static void putText(Writer *writer, const Array *text, size_t unitSize)
{
    put(writer, "\"");
    for (int64_t index = 0; index < text->size; ++index) {
        const unsigned unit =
            unitSize == 1 ? ((const uint8_t *)text->data)[index] : ((const uint16_t *)text->data)[index];
        put(writer, unit >= 0x20 && unit < 0x7f ? "%c" : "\\x%02x", unit);
    }
    put(writer, "\"");
}

static void putSlotValues(Writer *writer, const uint16_t *values)
{
    put(writer, "{%u, %u, %u, %u, %u}", values[0], values[1], values[2], values[3], values[4]);
}

static void putTexts(Writer *writer, const Array *list)
{
    put(writer, "[");
    for (int64_t index = 0; index < list->size; ++index) {
        put(writer, index ? ", " : "");
        putText(writer, (const Array *)list->data + index, 2);
    }
    put(writer, "]");
}

static void putBytes(Writer *writer, const uint8_t *bytes, int count)
{
    for (int index = 0; index < count; ++index)
        put(writer, "%02x", bytes[index]);
}

static bool is(const char *type, const char *other)
{
    return strcmp(type, other) == 0;
}

bool isObject(const char *type)
{
    return is(type, "QString") || is(type, "QStringList") || is(type, "QByteArray") || is(type, "QUuid") ||
           is(type, "QList<int>");
}

bool isMemory(const void *address, size_t size)
{
    return !IsBadReadPtr(address, size);
}

// A parameter that is an address may lead nowhere when the operation is called by a wrong slot.
static bool isText(const Array *text)
{
    return isMemory(text, sizeof(*text)) && text->size >= 0 && text->size < 1000 &&
           isMemory(text->data, (size_t)text->size * sizeof(uint16_t));
}

void formatValue(char *text, size_t size, const char *type, const void *at)
{
    Writer writer = {text, size};
    *text = '\0';
    if (is(type, "bool"))
        putBool(&writer, *(const uint8_t *)at);
    else if (is(type, "quint8"))
        put(&writer, "%u", *(const uint8_t *)at);
    else if (is(type, "int"))
        put(&writer, "%d", *(const int32_t *)at);
    else if (is(type, "uint"))
        put(&writer, "%u", *(const uint32_t *)at);
    else if (is(type, "QString"))
        putText(&writer, at, 2);
    else if (is(type, "const QString&") && isText(*(const Array *const *)at))
        putText(&writer, *(const Array *const *)at, 2);
    else if (is(type, "QByteArray"))
        putText(&writer, at, 1);
    else if (is(type, "QStringList"))
        putTexts(&writer, at);
    else if (is(type, "QUuid"))
        putBytes(&writer, at, 16);
    else if (is(type, "const quint16*") && isMemory(*(const void *const *)at, 5 * sizeof(uint16_t)))
        putSlotValues(&writer, *(const uint16_t *const *)at);
    else if (is(type, "ReportRateInfo*") && isMemory(*(const void *const *)at, sizeof(ReportRates)))
        put(&writer, "record");
    else
        putWord(&writer, *(const uint64_t *)at);
}

void formatCall(char *text, size_t size, const Slot *slot, const uint64_t *words)
{
    Writer writer = {text, size};
    put(&writer, "%s(", slot->name);
    for (int index = 0; *parameterType(slot, index); ++index) {
        char value[512];
        const char *type = parameterType(slot, index);
        const void *at = isObject(type) ? (const void *)words[index] : &words[index];
        formatValue(value, sizeof(value), type, at);
        put(&writer, "%s%s", index ? ", " : "", value);
    }
    put(&writer, ")");
}
