// Runs a program again and again, with another call failing each time.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "tests/command/command_run.h"

// What is swept, in the current folder.
struct Program {
    std::vector<std::string> words;                             // the command line
    std::string input;                                          // its standard input
    std::vector<std::pair<std::string, std::string>> settings;  // environment variables
};

// A kind of call and how it fails.
struct Fault {
    const char* kind;     // as in SXML_FAULT
    int error;            // errno
    const char* name;     // of the error, for messages
    const char* told_by;  // what a message about it contains, in small letters
};

extern const std::vector<Fault> MEMORY_FAULTS;
extern const std::vector<Fault> IO_FAULTS;

// Fails the test for each outcome that is neither that of the undisturbed program, nor a message
// that says what failed, a failure status and every file of the folder as it was before.
void sweep(const Program& program, const std::vector<Fault>& faults);
