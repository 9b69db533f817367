// Runs every document below a folder through the parser API and through Expat alone:
//
//     compare_documents FOLDER
//
// Prints what differs; the exit status is 0 when nothing does.
#include <algorithm>
#include <cstdio>

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
        found += differences(path.c_str(), 0, bare);
    }
    if (!host::live_blocks().empty()) found += host::leak_report();
    return found;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2 || !fs::is_directory(argv[1])) {
        std::fprintf(stderr, "usage: compare_documents FOLDER\n");
        return 2;
    }
    const std::vector<fs::path> documents = documents_below(argv[1]);
    std::size_t rejected = 0;
    std::size_t different = 0;
    for (const fs::path& path : documents) {
        const BareResult bare = parse_bare(file_text(path));
        rejected += bare.error ? 1 : 0;
        const std::string found = differences_of(path, bare);
        if (found.empty()) continue;
        ++different;
        std::printf("%s\n%s", path.c_str(), found.c_str());
    }
    std::printf("%zu documents, %zu of them rejected by Expat; %zu are read differently\n",
                documents.size(), rejected, different);
    return documents.empty() || different ? 1 : 0;
}
