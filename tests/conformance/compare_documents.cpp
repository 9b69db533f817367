// Runs every document below a folder through the parser API and through Expat alone:
//
//     compare_documents FOLDER [VERDICTS]
//
// Prints what differs; the exit status is 0 when nothing does. The file VERDICTS gets a line for
// each document: its name, the error (0: none), and a hash of all that the API tells of it.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <string_view>

#include "host/runtime/memory/memory_report.h"
#include "tests/parser/comparison.h"
#include "tests/parser/parser_test.h"

namespace fs = std::filesystem;

namespace {

std::vector<fs::path> documents_below(const fs::path& folder) {
    std::vector<fs::path> found;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder))
        if (entry.is_regular_file() && entry.path().extension() == ".xml")
            found.push_back(entry.path());
    std::sort(found.begin(), found.end());
    return found;
}

std::string differences_of(const fs::path& path, const BareResult& bare) {
    std::string found;
    for (const std::size_t size : {std::size_t{0}, std::size_t{1}, std::size_t{13}}) {
        host::limit_read_size(size);
        found += differences(path.string().c_str(), 0, bare);
    }
    if (!host::live_blocks().empty()) found += host::leak_report();
    return found;
}

// FNV-1a, which is the same on every system.
std::uint64_t hash_of(std::string_view text) {
    std::uint64_t hash = 14695981039346656037U;
    for (const char c : text) hash = (hash ^ static_cast<unsigned char>(c)) * 1099511628211U;
    return hash;
}

// A line of VERDICTS.
std::string verdict_of(const fs::path& path, const fs::path& folder) {
    host::limit_read_size(0);
    const Outcome outcome = parse_whole(path.string().c_str(), 0);
    return path.lexically_relative(folder).generic_string() + " " +
           std::to_string(outcome.expat_error) + " " +
           std::to_string(hash_of(outcome.tree + outcome.details)) + "\n";
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2 || argc > 3 || !fs::is_directory(argv[1])) {
        std::fprintf(stderr, "usage: compare_documents FOLDER [VERDICTS]\n");
        return 2;
    }
    std::ofstream verdicts;
    if (argc == 3) verdicts.open(argv[2], std::ios::binary);
    const std::vector<fs::path> documents = documents_below(argv[1]);
    std::size_t rejected = 0;
    std::size_t different = 0;
    for (const fs::path& path : documents) {
        const BareResult bare = parse_bare(file_text(path));
        rejected += bare.error ? 1 : 0;
        if (argc == 3) verdicts << verdict_of(path, argv[1]);
        const std::string found = differences_of(path, bare);
        if (found.empty()) continue;
        ++different;
        std::printf("%s\n%s", path.string().c_str(), found.c_str());
    }
    std::printf("%zu documents, %zu of them rejected by Expat; %zu are read differently\n",
                documents.size(), rejected, different);
    return documents.empty() || different ? 1 : 0;
}
