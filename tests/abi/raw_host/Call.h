#pragma once

#include "Timeline.h"
#include "Value.h"

enum { mostArguments = 4 };

/// Calls the operation in a slot: through the table, with the object in front. The bits of an argument's register that
/// are not the argument's have no meaning and are set. What is answered becomes an event, and is returned.
uint64_t call(Object object, int slot, const uint64_t arguments[mostArguments]);

/// A call and all its events, for example EXPECT("answers 50", mouse, MOUSE(dpiDelta)).
#define EXPECT(events, object, ...)                                                                          \
    do {                                                                                                     \
        CALL(object, __VA_ARGS__);                                                                           \
        expect(events);                                                                                      \
    } while (0)
#define CALL(object, ...)                                                                                    \
    call(object, ((const uint64_t[]){__VA_ARGS__, 0})[0],                                                    \
         ((const uint64_t[1 + mostArguments]){__VA_ARGS__}) + 1)

/// An argument that is an object, record or text: its address.
#define AT(object) ((uint64_t)(uintptr_t)(object))
