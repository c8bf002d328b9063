#include "Call.h"

#include <stdio.h>
#include <string.h>

typedef uint64_t (*Operation)(void *self, uint64_t a, uint64_t b, uint64_t c, uint64_t d);

// The rest of the register may hold anything.
static uint64_t dirty(const char *type, uint64_t word)
{
    if (strcmp(type, "bool") == 0 || strcmp(type, "quint8") == 0)
        return 0xdeadbeefdeadbe00 | (uint8_t)word;
    if (strcmp(type, "int") == 0 || strcmp(type, "uint") == 0)
        return 0xdeadbeef00000000 | (uint32_t)word;
    return word;
}

static void answered(const char *type, const void *at)
{
    char text[1024];
    formatValue(text, sizeof(text), type, at);
    happened("answers %s", text);
}

uint64_t call(Object object, int slot, const uint64_t arguments[mostArguments])
{
    const Slot *description = &object.interface->slots[slot];
    uint64_t words[mostArguments];
    ArrayHeader *given = NULL;
    for (int index = 0; index < mostArguments; ++index) {
        const char *type = parameterType(description, index);
        words[index] = dirty(type, arguments[index]);
        if (isObject(type) && ((const Array *)words[index])->header)
            given = ((const Array *)words[index])->header;
    }
    // The operation destroys the objects that it gets, so the caller keeps a reference of its own.
    if (given)
        ++given->references;

    beginCall(object.interface, slot);
    const Operation operation = (Operation)(*(void ***)object.self)[slot];
    uint64_t result;
    if (isObject(description->result)) {
        uint64_t answer[3] = {0, 0, 0};
        result = operation(object.self, AT(answer), words[0], words[1], words[2]);
        if (result != AT(answer))
            happened("answers at another address");
        answered(description->result, answer);
        release(description->result, answer);
    } else {
        result = operation(object.self, words[0], words[1], words[2], words[3]);
        if (strcmp(description->result, "void") != 0)
            answered(description->result, &result);
    }

    if (given && --given->references != 0)
        happened("an argument still has %d owners", given->references);
    return result;
}
