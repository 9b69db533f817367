#include "tests/records/layout_fixture.h"

#include <gtest/gtest.h>

#include <cstring>
#include <sstream>

namespace layout_tests {

using namespace records;

Compiled compile(const std::string& copybook, const LayoutOptions& options) {
    CopybookOptions reading;
    reading.format = SourceFormat::free;
    Diagnostics diagnostics;
    Compiled result;
    const auto source = parse_copybook_text(copybook, "orders.cpy", reading, diagnostics);
    if (source) result.description = compile_description(*source, options, diagnostics);
    result.messages = diagnostics.text();
    return result;
}

Description described(const std::string& copybook, const LayoutOptions& options) {
    Compiled result = compile(copybook, options);
    EXPECT_TRUE(result.description.has_value()) << result.messages;
    if (!result.description) throw std::runtime_error("does not compile");
    return std::move(*result.description);
}

std::string items_text(const Xfd& xfd) {
    std::ostringstream out;
    for (int i = 0; i < xfd.item_count; ++i) {
        const XfdItem& item = xfd.items[i];
        out << std::string(static_cast<std::size_t>(item.level - 1), ' ') << item.name << ' '
            << item.offset << '+' << item.data.length;
        if (item.condition != XFD_GROUP) {
            out << " t" << item.data.type;
            if (is_numeric_type(item.data.type)) {
                out << ' ' << int{item.data.digits} << '.' << int{item.data.scale};
            }
            if (item.format == XFD_FORMAT_BINARY) out << " hex";
            if (item.condition != 0) out << " c" << item.condition;
        }
        for (int d = 0; d < item.dimensions(); ++d) {
            out << ' ' << item.subscripts[d] << '/' << item.occurs_max[d];
        }
        out << '\n';
    }
    return out.str();
}

std::string module_view(const Xfd& xfd) {
    std::string bytes = xfd.name;
    bytes += " " + std::to_string(xfd.condition_count) + " " +
             std::to_string(xfd.record_scan_count) + " " + std::to_string(xfd.item_count) + " " +
             std::to_string(xfd.flags) + " " + static_cast<char>(xfd.conventions->decimal_point) +
             std::to_string(xfd.conventions->field_encoding);
    for (int i = 0; i < xfd.item_count; ++i) {
        XfdItem item = xfd.items[i];
        item.data.address = nullptr;
        item.key = nullptr;
        bytes.append(reinterpret_cast<const char*>(&item), sizeof item);
    }
    for (int i = 0; i < xfd.condition_count; ++i) {
        bytes += " " + std::to_string(xfd.conditions[i].item);
    }
    return bytes;
}

}  // namespace layout_tests
