// Marks what the embedded host offers to the programs that embed it, besides its services
// (HOST_API).
#pragma once

#define RUNTIME_API __attribute__((visibility("default")))
