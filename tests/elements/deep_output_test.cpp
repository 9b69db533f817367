// A tree of a million levels, written and dumped through a pipe.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <functional>
#include <future>
#include <string_view>
#include <utility>

#include "host/files.h"
#include "host/runtime/trace_control.h"
#include "tests/elements/element_test.h"

namespace {

class DeepOutput : public ElementTest {
  protected:
    std::string path = ::testing::TempDir() + "deep_output" + std::to_string(getpid());
};

// Bytes and lines that went through a pipe: too many for a file.
using Flow = std::pair<std::uint64_t, std::uint64_t>;

// Lines are long here: to find their ends takes less than to look at each byte.
std::uint64_t count_lines(std::string_view piece) {
    std::uint64_t found = 0;
    for (std::size_t at = 0; (at = piece.find('\n', at)) != piece.npos; ++at) ++found;
    return found;
}

Flow flow_through(const std::string& pipe, const std::function<void()>& write) {
    EXPECT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    auto counted = std::async(std::launch::async, [&] {
        Flow flow;
        std::vector<char> buffer(1U << 16U);
        const int descriptor = open(pipe.c_str(), O_RDONLY);
        for (ssize_t n; (n = read(descriptor, buffer.data(), buffer.size())) > 0;) {
            flow.first += static_cast<std::uint64_t>(n);
            flow.second += count_lines({buffer.data(), static_cast<std::size_t>(n)});
        }
        close(descriptor);
        return flow;
    });
    write();
    unlink(pipe.c_str());
    return counted.get();
}

// A million levels: nothing may recurse. Indentation stops growing at its limit, so that the output
// stays finite. Each level is <d> and </d> or one line of the dump; three elements are leaves.
TEST_F(DeepOutput, SurvivesAMillionLevels) {
    const std::uint32_t top = xml.xml_add_child(0, "t");
    const std::uint32_t first = xml.xml_add_child(top, "d");
    std::uint32_t at = first;
    Flow as_xml = {11 + 8 + 2 * (XML_INDENT_LIMIT + 6), 2'000'003};
    Flow as_dump = {7 + 2 * (XML_INDENT_LIMIT + 9), 1'000'002};
    for (std::uint64_t level = 1; level < 1'000'000; ++level) {
        at = xml.xml_add_child(at, "d");
        as_xml.first += 2 * std::min<std::uint64_t>(2 * level, XML_INDENT_LIMIT) + 11;
        as_dump.first += std::clamp<std::uint64_t>(level - 1, 1, XML_INDENT_LIMIT) + 6;
    }
    xml.xml_add_sibling(first, "d");
    xml.xml_add_sibling(at, "d");
    EXPECT_EQ(numbers_of(at), "1,1");

    EXPECT_EQ(flow_through(path,
                           [&] {
                               HostStream* const stream = host_fopen(path.c_str(), "wb", 0);
                               xml.xml_write_element(stream, 0, top, 0);
                               host_fclose(stream);
                           }),
              as_xml);
    EXPECT_EQ(flow_through(path,
                           [&] {
                               host::set_trace(0, path);
                               xml.xml_dump_children(top, 0);
                               host::set_trace(0, "");
                           }),
              as_dump);
    EXPECT_EQ(xml.xml_free_element(top), 1);
}

}  // namespace
