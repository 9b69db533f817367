/* Shared libraries that are loaded while the program runs. For C, too: programs in C load the
 * module with it. */
#pragma once

#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#endif

/* The name of the module's file. */
extern const char* const PLATFORM_MODULE_FILE;

/* Loads a library with all that it needs. Result: null on failure; the reason is then stored in
 * `problem`, of `size` bytes, cut to them. */
void* platform_open_library(const char* name, char* problem, size_t size);
void platform_close_library(void* library);
/* The address of what the library exports under a name; null when there is none. */
void* platform_library_symbol(void* library, const char* name);
/* The same by the number of an export. */
void* platform_library_ordinal(void* library, int number);
/* Stores the folder of the library or program that this address belongs to, without a separator at
 * its end. Result: 0 when it is not known or takes more than `size` bytes. */
int platform_folder_of_code(const void* address, char* folder, size_t size);

#ifdef __cplusplus
}
#endif
