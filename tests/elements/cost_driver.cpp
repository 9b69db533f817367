// Builds and releases one tree of a given shape and size, to be counted by the cost test:
//     cost_driver one_name|all_different|nested COUNT
#include <cstdlib>
#include <string>

#include "tests/elements/element_test.h"

namespace {

const char* name_of(bool all_different, int i) {
    static std::string name;
    name = all_different ? "name" + std::to_string(10'000'000 + i) : "name00000000";
    return name.c_str();
}

// One parent with many children, every eighth inserted before the newest one and every eighth
// released again.
void build_children(std::uint32_t top, bool all_different, int count) {
    std::uint32_t newest = 0;
    for (int i = 0; i < count; ++i) {
        const char* const name = name_of(all_different, i);
        newest = api().xml_new_element(top, name, i % 8 == 3 ? newest : 0);
        if (i % 8 == 7) {
            api().xml_free_element(newest);
            newest = 0;
        }
    }
}

// Levels below each other, then from the innermost outwards a second element of the same name, so
// that numbers are inserted over ever larger trees.
void build_nested(std::uint32_t top, int count) {
    std::uint32_t at = top;
    for (int i = 0; i < count; ++i) at = api().xml_add_child(at, "level");
    for (; at != top; at = api().xml_parent(at)) api().xml_add_sibling(at, "level");
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) return 2;
    const std::string shape = argv[1];
    const int count = std::atoi(argv[2]);
    const std::uint32_t top = api().xml_add_child(0, "top");
    if (shape == "nested")
        build_nested(top, count);
    else
        build_children(top, shape == "all_different", count);
    return api().xml_free_element(top) ? 0 : 1;
}
