// Documents through the record reader: the first byte of the input chooses the settings, the rest
// is the document. Each document is read three times: by way of the lane for plain records, through
// Expat alone, and traced, when lookups walk what untraced ones look up in an index. All must fill
// the same records and end with the same error.
#include <sys/mman.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string>
#include <vector>

#include "host/errors.h"
#include "host/runtime/memory/memory_report.h"
#include "host/runtime/module.h"
#include "host/runtime/settings/settings.h"
#include "host/runtime/trace_control.h"
#include "records/description.h"
#include "records/numbers.h"
#include "tests/support/xfd_builder.h"

namespace {

constexpr std::size_t RECORD_SIZE = 200;
constexpr std::size_t GUARD = 16;

// a, then a table of 20 b with two c each, then two groups with a field of the same name, then a
// number, and a variant of the bytes after it.
XfdBuilder make_builder() {
    XfdBuilder builder("f");
    builder.group(1, "r");
    builder.text(2, "a", 0, 2);
    for (int i = 1; i <= 20; ++i) {
        builder.group(2, "b");
        builder.occurrence({{i, 20}});
        for (int j = 1; j <= 2; ++j) {
            builder.text(3, "c", 8 * i + 4 * j - 8, 4);
            builder.occurrence({{i, 20}, {j, 2}});
        }
    }
    builder.group(2, "g");
    builder.text(3, "d", 170, 5);
    builder.group(2, "h");
    builder.text(3, "d", 175, 5);
    builder.number(2, "n", 180, 4, 7, -2, records::PACKED_SIGNED);
    const int variant = builder.text(2, "v", 190, 10, 1);
    builder.condition(0, 'x', variant);
    return builder;
}

XfdBuilder& builder() {
    static XfdBuilder made = make_builder();
    return made;
}

Xfd* parse_xfd(const char*, int, int) {
    return builder().xfd();
}
void free_xfd(Xfd*) {}
int test_condition(Xfd* xfd, int number, const void* record) {
    XfdBuilder::test_condition(xfd, number, record);
    return 0;
}

template <typename Function>
HostFunction* function(Function* pointer) {
    return reinterpret_cast<HostFunction*>(pointer);
}

const host::Module& module() {
    static const host::Module loaded =
        host::Module::load(SXML_MODULE, {{"Q4ParseXFD", function(parse_xfd)},
                                         {"Q4XFDFree", function(free_xfd)},
                                         {"Q4TestCOBOLCond", function(test_condition)},
                                         {"Qconvert", function(Qconvert)}});
    return loaded;
}

void require(bool holds, const char* what) {
    if (holds) return;
    std::fprintf(stderr, "not so: %s\n%s", what, host::leak_report().c_str());
    std::abort();
}

// What reading gives: file error codes, results and records.
std::string read_all(const std::string& name) {
    XmlFile* const file = module().open(name.c_str(), XML_OPEN_INPUT);
    std::string log = std::to_string(*host_file_error());
    if (file == nullptr) return log;
    for (int result = 1; result > 0;) {
        std::vector<char> buffer(RECORD_SIZE + 2 * GUARD, '.');
        result = module().read(file, buffer.data() + GUARD);
        const std::string contents(buffer.begin(), buffer.end());
        require(contents.find_first_not_of('.') >= GUARD &&
                    (contents.find_last_not_of('.') == std::string::npos ||
                     contents.find_last_not_of('.') < RECORD_SIZE + GUARD),
                "nothing is written outside the record");
        require(result >= 0 && result <= static_cast<int>(RECORD_SIZE) + 1, "results are ends");
        log += "," + std::to_string(result) + "," + std::to_string(*host_file_error()) + contents;
        if (*host_file_error() == HOST_FILE_XML)
            log += std::to_string(*host_error_subcode()) + *host_error_text();
    }
    module().close(file);
    return log;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const int document = memfd_create("document", 0);
    static const std::string name = "/proc/self/fd/" + std::to_string(document);
    if (size == 0) return 0;
    host::set_config("SXML_EXACT_TABLE_MATCH", (data[0] & 1) != 0 ? "yes" : "no");
    host::set_config("4GL_COLUMN_CASE", std::to_string(data[0] >> 1 & 3));
    require(ftruncate(document, 0) == 0 &&
                pwrite(document, data + 1, size - 1, 0) == static_cast<ssize_t>(size - 1),
            "the document is stored");
    host::set_config("SXML_PLAIN_RECORDS", "yes");
    const std::string in_lane = read_all(name);
    host::set_config("SXML_PLAIN_RECORDS", "no");
    const std::string plain = read_all(name);
    require(in_lane == plain, "the lane and Expat agree");
    host::set_trace(5, "/dev/null");
    const std::string traced = read_all(name);
    host::set_trace(0, "");
    require(plain == traced, "tracing changes nothing");
    require(host::live_blocks().empty(), "nothing is left behind");
    require(host::damaged_blocks() == 0, "no block is damaged");
    return 0;
}
