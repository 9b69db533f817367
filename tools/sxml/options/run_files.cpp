#include "tools/sxml/options/run_files.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <new>
#include <system_error>

#include "platform/descriptors.h"
#include "platform/environment.h"
#include "platform/paths.h"
#include "tools/sxml/failure.h"

namespace command {

namespace {

std::string value_of_variable(const char* name) {
    const char* value = platform::environment_variable(name);
    return value != nullptr ? value : "";
}

std::optional<platform::FileIdentity> identity_of(const std::optional<platform::FileState>& state) {
    if (!state || state->kind != platform::FileKind::regular) return std::nullopt;
    return state->identity;
}

// Two names of a file that does not exist yet give the same path.
std::string path_of(const std::string& name) {
    const std::filesystem::path whole = std::filesystem::absolute(platform::path_of(name));
    std::error_code error;
    const std::filesystem::path path = std::filesystem::weakly_canonical(whole, error);
    if (error == std::errc::not_enough_memory) throw std::bad_alloc();
    return platform::name_of(error ? whole : path);
}

}  // namespace

RunFiles::RunFiles() {
    const std::string settings = value_of_variable("SXML_CONFIG");
    if (!settings.empty()) {
        if (!platform::state_of(settings)) fail_file("SXML_CONFIG: " + settings, errno);
        reads(settings);
    }
    const std::string trace = value_of_variable("SXML_TRACE_FILE");
    if (!trace.empty() && std::atoi(value_of_variable("SXML_TRACE").c_str()) > 0) writes(trace);
}

void RunFiles::reads(const std::string& name) {
    if (name == "-") {
        inputs_.push_back(
            {"standard input", "", identity_of(platform::state_of(platform::STANDARD_INPUT))});
    } else {
        inputs_.push_back({name, path_of(name), identity_of(platform::state_of(name))});
    }
}

void RunFiles::reads_document(const std::string& name, const conversion::DocumentSource& source) {
    reads(name == "-" ? name : source.file());
}

void RunFiles::writes(const std::string& name) {
    if (name == "-") {
        outputs_.push_back(
            {"standard output", "", identity_of(platform::state_of(platform::STANDARD_OUTPUT))});
    } else {
        outputs_.push_back({name, path_of(name), identity_of(platform::state_of(name))});
    }
}

// A stream has no path. It gives what it has once, and what goes to it twice is mixed.
void RunFiles::check_stream(const std::vector<File>& files, const std::string& use) {
    const auto is_stream = [](const File& file) { return file.path.empty(); };
    if (std::count_if(files.begin(), files.end(), is_stream) < 2) return;
    fail_usage(std::find_if(files.begin(), files.end(), is_stream)->name + " would be " + use +
               " twice; name a file for one of them");
}

bool RunFiles::are_one(const File& first, const File& second) {
    if (first.identity || second.identity) return first.identity == second.identity;
    return !first.path.empty() && first.path == second.path &&
           !platform::state_of(first.path).has_value();
}

void RunFiles::check() const {
    check_stream(inputs_, "read");
    check_stream(outputs_, "written");
    for (std::size_t i = 0; i < outputs_.size(); ++i) {
        const File& output = outputs_[i];
        for (const File& input : inputs_) {
            if (!are_one(input, output)) continue;
            fail_usage(output.name + " would be written, and is read as " + input.name +
                       ": they are one file; name another one to write");
        }
        for (std::size_t other = 0; other < i; ++other) {
            if (!are_one(outputs_[other], output)) continue;
            fail_usage(outputs_[other].name + " and " + output.name +
                       " would both be written, and are one file; name another one");
        }
    }
}

}  // namespace command
