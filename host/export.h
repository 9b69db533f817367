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

#if defined(__GNUC__)
#define HOST_PRINTF(format_index, first_argument) \
    __attribute__((format(printf, format_index, first_argument)))
#else
#define HOST_PRINTF(format_index, first_argument)
#endif
