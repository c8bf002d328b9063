#pragma once

#include_next <stdlib.h>

// Declared by Microsoft's header, but not by Wine's.
#ifdef __cplusplus
extern "C"
#endif
    _ACRTIMP errno_t __cdecl _dupenv_s(char **value, size_t *size, const char *name);
