// Allocation of the C library, as far as the plug-in and the compiler's own headers need it.
#pragma once

#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#endif
void* calloc(size_t count, size_t bytes);
void* malloc(size_t bytes);
void free(void* block);
__attribute__((noreturn)) void abort(void);
#ifdef __cplusplus
}
#endif
