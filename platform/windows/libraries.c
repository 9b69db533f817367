#include "platform/libraries.h"

#include <stdint.h>
#include <stdio.h>
#include <string.h>
#include <windows.h>

const char* const PLATFORM_MODULE_FILE = "sxml.dll";

enum { LONGEST_PATH = 32768 };

/* The address of a function as that of data, which ISO C does not convert. */
static void* as_address(FARPROC function) {
    void* address = NULL;
    memcpy(&address, &function, sizeof address);
    return address;
}

static void tell_problem(const char* name, char* problem, size_t size) {
    const DWORD error = GetLastError();
    wchar_t text[256] = L"";
    char reason[768] = "";
    FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, NULL, error, 0, text,
                   sizeof text / sizeof text[0], NULL);
    WideCharToMultiByte(CP_UTF8, 0, text, -1, reason, sizeof reason - 1, NULL, NULL);
    reason[strcspn(reason, "\r\n")] = '\0';
    snprintf(problem, size, "%s: %s (error %lu)", name, reason, (unsigned long)error);
}

/* What a library that is named with its folder needs is looked for in that folder, too. */
void* platform_open_library(const char* name, char* problem, size_t size) {
    wchar_t file[LONGEST_PATH];
    const DWORD flags = strpbrk(name, "/\\") ? LOAD_WITH_ALTERED_SEARCH_PATH : 0;
    HMODULE library = NULL;
    if (MultiByteToWideChar(CP_UTF8, 0, name, -1, file, LONGEST_PATH) > 0) {
        for (wchar_t* c = file; *c; ++c) {
            if (*c == L'/') *c = L'\\';
        }
        library = LoadLibraryExW(file, NULL, flags);
    }
    if (!library) tell_problem(name, problem, size);
    return library;
}

void platform_close_library(void* library) {
    FreeLibrary(library);
}

void* platform_library_symbol(void* library, const char* name) {
    return as_address(GetProcAddress(library, name));
}

void* platform_library_ordinal(void* library, int number) {
    return as_address(GetProcAddress(library, MAKEINTRESOURCEA((WORD)number)));
}

int platform_folder_of_code(const void* address, char* folder, size_t size) {
    wchar_t file[LONGEST_PATH];
    HMODULE library = NULL;
    const DWORD how =
        GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
    if (!GetModuleHandleExW(how, address, &library)) return 0;
    const DWORD length = GetModuleFileNameW(library, file, LONGEST_PATH);
    if (length == 0 || length >= LONGEST_PATH) return 0;
    wchar_t* const last = wcsrchr(file, L'\\');
    if (last) *last = L'\0';
    return WideCharToMultiByte(CP_UTF8, 0, last ? file : L".", -1, folder, (int)size, NULL, NULL) >
           0;
}
