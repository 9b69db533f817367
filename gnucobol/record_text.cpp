#include "gnucobol/record_text.h"

#include <algorithm>

#include "gnucobol/document_encoding.h"
#include "records/alignment.h"
#include "records/description.h"

namespace gnucobol {

namespace {

std::uint32_t end_of(const XfdItem& item) {
    return static_cast<std::uint32_t>(item.offset) + static_cast<std::uint32_t>(item.data.length);
}

bool is_aligned(const XfdItem& item) {
    const records::FieldEdges edges = records::field_extra(item.data).edges;
    return edges.is_right != 0 || edges.blanks != 0;
}

}  // namespace

RecordText::RecordText(Xfd& xfd, const std::vector<RecordLayout>& layouts,
                       const std::string& encoding)
    : xfd_(xfd), layouts_(layouts), is_utf8_(is_utf8(encoding)), check_(encoding) {
    for (std::int32_t i = 0; i < xfd.item_count; ++i) {
        const XfdItem& item = xfd.items[i];
        if (item.condition == XFD_GROUP || item.offset < 0 || item.data.length <= 0) continue;
        fields_.push_back(i);
        if (is_numeric_type(item.data.type) || item.format == XFD_FORMAT_BINARY) continue;
        texts_.push_back(i);
        if (is_aligned(item)) aligned_.push_back(i);
    }
}

// Whether the field at `item` is in the layout that the module writes, the first whose conditions
// all hold or else the first of all, and its own condition holds.
bool RecordText::is_written(std::int32_t item, const std::uint8_t* record) const {
    const auto holds = [&](std::int16_t number) {
        return number == 0 || Q4TestCOBOLCond(&xfd_, number, record) != 0;
    };
    auto chosen = std::find_if(layouts_.begin(), layouts_.end(), [&](const RecordLayout& layout) {
        return std::all_of(layout.conditions.begin(), layout.conditions.end(), holds);
    });
    if (chosen == layouts_.end()) chosen = layouts_.begin();
    return item >= chosen->first_item && item < chosen->end_item &&
           holds(xfd_.items[item].condition);
}

std::optional<std::string> RecordText::problem(const std::uint8_t* record,
                                               std::uint32_t length) const {
    for (const std::int32_t i : texts_) {
        const XfdItem& item = xfd_.items[i];
        if (end_of(item) > length) continue;
        const auto why =
            check_.problem(record + item.offset, static_cast<std::size_t>(item.data.length));
        if (why && is_written(i, record)) return "field " + std::string(item.name) + ": " + *why;
    }
    return std::nullopt;
}

std::uint32_t RecordText::length_of_whole_fields(const std::uint8_t* record,
                                                 std::uint32_t length) const {
    std::uint32_t whole = length;
    for (const std::int32_t i : fields_) {
        const XfdItem& item = xfd_.items[i];
        const bool is_cut =
            static_cast<std::uint32_t>(item.offset) < length && end_of(item) > length;
        if (is_cut && is_written(i, record)) whole = std::max(whole, end_of(item));
    }
    return whole;
}

void RecordText::settle(std::uint8_t* record, const std::vector<bool>& held) const {
    const auto is_filled = [&](const XfdItem& item) {
        return item.condition == 0 || held[static_cast<std::size_t>(item.condition)];
    };
    for (std::size_t i = 0; is_utf8_ && i < texts_.size(); ++i) {
        const XfdItem& item = xfd_.items[texts_[i]];
        const bool is_cut = (record[end_of(item) - 1] & 0x80) != 0;
        if (!is_cut || !is_filled(item)) continue;
        blank_cut_character(record + item.offset, static_cast<std::size_t>(item.data.length));
    }
    for (const std::int32_t i : aligned_) {
        if (is_filled(xfd_.items[i])) records::align_field(xfd_.items[i], record);
    }
}

}  // namespace gnucobol
