// Description files of any content: read, or refused; what is read is consistent and stays the same
// when written and read again.
#include <cstdlib>
#include <iostream>
#include <string>
#include <string_view>
#include <vector>

#include "records/description.h"

namespace {

void require(bool holds, int line = __builtin_LINE()) {  // clang 14 has no std::source_location
    if (holds) return;
    std::cerr << "line " << line << " does not hold\n";
    std::abort();
}

// The module reads a record of the description's length at the places that the items give.
void check(const Xfd& xfd, std::int32_t record_length) {
    require(xfd.item_count > 0 && xfd.items[0].level == 1);
    require(xfd.record_scan_count == xfd.item_count);
    for (int i = 0; i < xfd.item_count; ++i) {
        const XfdItem& item = xfd.items[i];
        // A field without bytes marks the records of its layout by its condition.
        require(item.offset >= 0 && item.data.length >= (item.condition > 0 ? 0 : 1));
        require(item.offset <= record_length - item.data.length);
        require(item.condition == XFD_GROUP ||
                (item.condition >= 0 && item.condition <= xfd.condition_count));
        require(item.level >= 1 && item.dimensions() <= XFD_MAX_DIMENSIONS);
        require(std::string_view(item.name, XFD_ITEM_NAME_SIZE).find('\0') !=
                std::string_view::npos);
        for (int d = 0; d < item.dimensions(); ++d) {
            require(item.subscripts[d] >= 1 && item.subscripts[d] <= item.occurs_max[d]);
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    records::Diagnostics diagnostics;
    auto description = records::description_from_json(text, "fuzz.xfd", {}, diagnostics);
    require(description.has_value() == !diagnostics.has_errors());
    if (!description || description->record_length() > 1'000'000) return 0;
    Xfd& xfd = description->xfd();
    check(xfd, description->record_length());
    const std::vector<std::uint8_t> record(static_cast<std::size_t>(description->record_length()),
                                           0x31);
    for (int n = 1; n <= xfd.condition_count; ++n) Q4TestCOBOLCond(&xfd, n, record.data());
    for (std::int32_t length = 0; length <= description->record_length(); length += 7) {
        const std::int32_t used = description->used_length(record.data(), length, {});
        require(used >= 0 && used <= length);
    }
    const std::string json = records::description_to_json(*description);
    const auto again = records::description_from_json(json, "again.xfd", {}, diagnostics);
    require(again && records::description_to_json(*again) == json);
    return 0;
}
