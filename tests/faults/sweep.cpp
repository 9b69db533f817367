#include "tests/faults/sweep.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <numeric>
#include <random>
#include <set>

#include "tests/faults/fault_plan.h"

const std::vector<Fault> MEMORY_FAULTS = {{"memory", ENOMEM, "ENOMEM", "memory"}};
const std::vector<Fault> IO_FAULTS = {
    {"write", ENOSPC, "ENOSPC", "no space left"},
    {"write", EIO, "EIO", "input/output error"},
    {"write", EINTR, "EINTR", "interrupted"},
    {"write", EAGAIN, "EAGAIN", "temporarily unavailable"},
    {"read", EIO, "EIO", "input/output error"},
    {"read", EINTR, "EINTR", "interrupted"},
    {"read", EAGAIN, "EAGAIN", "temporarily unavailable"},
    {"sync", EIO, "EIO", "input/output error"},
    {"sync", ENOSPC, "ENOSPC", "no space left"},
    {"rename", EIO, "EIO", "input/output error"},
    {"rename", ENOSPC, "ENOSPC", "no space left"},
    {"open", EIO, "EIO", "input/output error"},
    {"open", EINTR, "EINTR", "interrupted"},
    {"open", ENOSPC, "ENOSPC", "no space left"},
    {"link", EIO, "EIO", "input/output error"},
};

namespace {

namespace fs = std::filesystem;

constexpr std::uint64_t MOST_CALLS = 20000;  // more are sampled in a full sweep, too
constexpr std::size_t SAMPLE = 12;           // calls tried of each kind when not all are
constexpr int MOST_FAILURES = 20;            // reported for one program and kind

using Folder = std::map<std::string, std::string>;

Folder folder_now() {
    Folder all;
    for (const auto& entry : fs::recursive_directory_iterator(".")) {
        if (!entry.is_regular_file()) continue;
        std::ifstream file(entry.path(), std::ios::binary);
        all[entry.path().string()] = {std::istreambuf_iterator<char>(file),
                                      std::istreambuf_iterator<char>()};
    }
    return all;
}

void restore(const Folder& wanted) {
    const Folder present = folder_now();
    for (const auto& [name, text] : present) {
        if (!wanted.contains(name)) fs::remove(name);
    }
    for (const auto& [name, text] : wanted) {
        const auto found = present.find(name);
        if (found != present.end() && found->second == text) continue;
        std::ofstream(name, std::ios::binary) << text;
    }
}

std::string difference(const Folder& wanted, const Folder& present) {
    std::string names;
    for (const auto& [name, text] : present) {
        if (!wanted.contains(name))
            names += " " + name + " (new)";
        else if (wanted.at(name) != text)
            names += " " + name + " (changed)";
    }
    for (const auto& [name, text] : wanted) {
        if (!present.contains(name)) names += " " + name + " (gone)";
    }
    return names;
}

std::string lower_case(std::string text) {
    for (char& c : text) {
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    }
    return text;
}

// The file that the library of failures counts in.
class Page {
  public:
    Page() {
        file_ = mkstemp(name_.data());
        EXPECT_EQ(ftruncate(file_, sizeof(faults::Counts)), 0);
    }
    Page(const Page&) = delete;
    Page& operator=(const Page&) = delete;
    ~Page() {
        close(file_);
        unlink(name_.c_str());
    }
    const std::string& name() const { return name_; }
    faults::Counts take() const {
        faults::Counts counts{};
        EXPECT_EQ(pread(file_, &counts, sizeof counts, 0), ssize_t{sizeof counts});
        const faults::Counts zero{};
        EXPECT_EQ(pwrite(file_, &zero, sizeof zero, 0), ssize_t{sizeof zero});
        return counts;
    }

  private:
    std::string name_ = (fs::temp_directory_path() / "sxml-faults.XXXXXX").string();
    int file_;
};

unsigned seed() {
    static const unsigned chosen = [] {
        const char* given = std::getenv("SXML_FAULT_SEED");
        const unsigned value = given != nullptr
                                   ? static_cast<unsigned>(std::strtoul(given, nullptr, 10))
                                   : std::random_device()();
        std::cout << "SXML_FAULT_SEED=" << value << "\n";
        return value;
    }();
    return chosen;
}

bool is_full_sweep() {
    return std::getenv("SXML_FAULT_ALL") != nullptr;
}

// Which of `count` calls fail, in order.
std::vector<std::uint64_t> chosen_calls(std::uint64_t count) {
    std::vector<std::uint64_t> all(count);
    std::iota(all.begin(), all.end(), 1);
    const std::size_t wanted = is_full_sweep() ? MOST_CALLS : SAMPLE;
    if (count <= wanted) return all;
    std::vector<std::uint64_t> some;
    std::ranges::sample(all, std::back_inserter(some), static_cast<std::ptrdiff_t>(wanted),
                        std::mt19937(seed() + static_cast<unsigned>(count)));
    return some;
}

class Sweep {
  public:
    explicit Sweep(const Program& program) : program_(program), before_(folder_now()) {
        for (const auto& [name, value] : program.settings) setenv(name.c_str(), value.c_str(), 1);
        setenv("SXML_FAULT_PAGE", page_.name().c_str(), 1);
        normal_ = run(program.words, program.input);
        EXPECT_EQ(normal_.status, 0) << normal_.err;
        after_ = folder_now();
        restore(before_);
    }
    Sweep(const Sweep&) = delete;
    Sweep& operator=(const Sweep&) = delete;
    ~Sweep() {
        for (const auto& [name, value] : program_.settings) unsetenv(name.c_str());
        unsetenv("SXML_FAULT_PAGE");
    }

    void fail_each(const Fault& fault) {
        failures_ = 0;
        (void)disturbed(fault, "0");
        restore(before_);
        const std::uint64_t calls = page_.take().calls;
        for (const char* going_on : {"", "+"}) {
            // A call that is always interrupted, or never ready, may be repeated forever.
            if (*going_on != '\0' && (fault.error == EINTR || fault.error == EAGAIN)) continue;
            for (const std::uint64_t call : chosen_calls(calls)) {
                judge(fault, std::to_string(call) + going_on);
                if (failures_ >= MOST_FAILURES) return;
            }
        }
    }

  private:
    Outcome disturbed(const Fault& fault, const std::string& call) const {
        setenv("SXML_FAULT",
               (std::string(fault.kind) + " " + call + " " + std::to_string(fault.error)).c_str(),
               1);
        setenv("LD_PRELOAD", SXML_BUILD_DIR "/tests/failing_calls.so", 1);
        Outcome outcome = run(program_.words, program_.input);
        unsetenv("LD_PRELOAD");
        unsetenv("SXML_FAULT");
        return outcome;
    }

    void judge(const Fault& fault, const std::string& call) {
        const Outcome outcome = disturbed(fault, call);
        const Folder present = folder_now();
        const std::string problem =
            page_.take().failed == 0 ? "" : problem_of(fault, outcome, present);
        restore(before_);
        if (problem.empty()) return;
        ++failures_;
        ADD_FAILURE() << fault.kind << " " << call << " " << fault.name << ": " << problem
                      << "\nstatus " << outcome.status << ", standard error:\n"
                      << outcome.err << place(fault, call);
        restore(before_);
    }

    // Empty when the outcome is one of those allowed.
    std::string problem_of(const Fault& fault, const Outcome& outcome,
                           const Folder& present) const {
        // Some commands tell of failures in the report that they print.
        const std::string told = lower_case(outcome.err + outcome.out);
        const bool has_said = told.find(fault.told_by) != std::string::npos;
        const bool has_noticed = outcome.status != normal_.status;
        if (outcome.status >= 128) return "ended by a signal";
        if (has_noticed && !has_said) return "a failure without its reason";
        if (has_noticed && told.find("damaged") != std::string::npos) {
            return "a failure that is called damage of the document";
        }
        if (has_noticed) {
            if (present == before_) return "";
            // Everything is done, and only reporting it failed.
            const bool is_untold = outcome.err.find("standard output") != std::string::npos;
            if (is_untold && present == after_) return "";
            return "a failure that changes files:" + difference(before_, present);
        }
        if (outcome.out != normal_.out) return "success, but another output:\n" + outcome.out;
        if (outcome.err != normal_.err) return "success, but other messages";
        if (present != after_) return "success, but other files:" + difference(after_, present);
        return "";
    }

    // Where the failing call stands.
    std::string place(const Fault& fault, const std::string& call) const {
        setenv("SXML_FAULT_TRACE", "1", 1);
        const Outcome outcome = disturbed(fault, call);
        unsetenv("SXML_FAULT_TRACE");
        (void)page_.take();
        return "with the failing call:\n" + outcome.err;
    }

    const Program& program_;
    const Page page_;
    const Folder before_;
    Outcome normal_;
    Folder after_;
    int failures_ = 0;
};

}  // namespace

void sweep(const Program& program, const std::vector<Fault>& faults) {
    Sweep all(program);
    for (const Fault& fault : faults) all.fail_each(fault);
}
