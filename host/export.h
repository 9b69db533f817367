// Visibility of the host's services. A host library defines them, the module only refers to them.
#pragma once

#if defined(_WIN32)
#if defined(SXML_HOST_BUILD)
#define HOST_API extern "C" __declspec(dllexport)
#define HOST_DATA extern "C" __declspec(dllexport)
#else
#define HOST_API extern "C" __declspec(dllimport)
#define HOST_DATA extern "C" __declspec(dllimport)
#endif
#else
#define HOST_API extern "C" __attribute__((visibility("default")))
#define HOST_DATA extern "C" __attribute__((visibility("default")))
#endif

// After a service that a host library may lack: its address is null then. Windows has no such
// references; the module asks the host library there.
#if defined(__ELF__) && !defined(SXML_HOST_BUILD)
#define HOST_OPTIONAL __attribute__((weak))
#else
#define HOST_OPTIONAL
#endif

#if defined(__GNUC__) && defined(_WIN32)
#define HOST_PRINTF(format_index, first_argument) \
    __attribute__((format(gnu_printf, format_index, first_argument)))
#elif defined(__GNUC__)
#define HOST_PRINTF(format_index, first_argument) \
    __attribute__((format(printf, format_index, first_argument)))
#else
#define HOST_PRINTF(format_index, first_argument)
#endif

// What a library exports under a name of its own; on Windows the linker is told of it by a list.
#if defined(_WIN32)
#define LIBRARY_ENTRY extern "C"
#else
#define LIBRARY_ENTRY extern "C" __attribute__((visibility("default")))
#endif
