#pragma once

#include "QtCore.h"

/// Gives an address or number a name for the events.
void nameWord(uint64_t word, const char *name);

/// Writes a value as text. For a parameter, at is the address of its register's value, or of the object if it is one.
void formatValue(char *text, size_t size, const char *type, const void *at);

/// Whether a type is passed and answered by address.
bool isObject(const char *type);

/// Whether a word that should be an address is one.
bool isMemory(const void *address, size_t size);

/// Writes "name(values)" of a call. words are the registers that follow the object's.
void formatCall(char *text, size_t size, const Slot *slot, const uint64_t *words);
