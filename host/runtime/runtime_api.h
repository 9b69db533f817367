// Marks what the embedded host offers to the programs that embed it, besides its services
// (HOST_API).
#pragma once

#if defined(_WIN32) && defined(SXML_HOST_BUILD)
#define RUNTIME_API __declspec(dllexport)
#elif defined(_WIN32)
#define RUNTIME_API __declspec(dllimport)
#else
#define RUNTIME_API __attribute__((visibility("default")))
#endif
