#include "gnucobol/blank_record.h"

#include <algorithm>

#include "records/numbers.h"

namespace gnucobol {

namespace {

std::string blank_field(const XfdItem& field) {
    const auto length = static_cast<std::size_t>(field.data.length);
    if (field.format == XFD_FORMAT_BINARY) return std::string(length, '\0');
    std::string bytes(length, ' ');
    if (!is_numeric_type(field.data.type)) return bytes;
    XfdDataDesc data = field.data;
    data.address = bytes.data();
    const records::Decimal zero{};
    records::encode_field(zero, data);
    return bytes;
}

}  // namespace

BlankRecord::BlankRecord(const Xfd& xfd, std::uint32_t record_length)
    : blank_(record_length, ' '), runs_(static_cast<std::size_t>(xfd.condition_count) + 1) {
    for (std::int32_t i = 0; i < xfd.item_count; ++i) {
        const XfdItem& item = xfd.items[i];
        const auto condition = static_cast<std::size_t>(item.condition);
        if (item.condition < 0 || condition >= runs_.size()) continue;
        if (item.offset < 0 || item.data.length <= 0) continue;
        const auto end =
            static_cast<std::uint64_t>(item.offset) + static_cast<std::uint64_t>(item.data.length);
        if (end <= record_length) add(item, runs_[condition]);
    }
    store(runs_[0], reinterpret_cast<std::uint8_t*>(blank_.data()));
}

// Fields that lie one behind the other are one run.
void BlankRecord::add(const XfdItem& field, std::vector<Run>& runs) {
    const auto offset = static_cast<std::uint32_t>(field.offset);
    if (!runs.empty() && runs.back().offset + runs.back().bytes.size() == offset) {
        runs.back().bytes += blank_field(field);
    } else {
        runs.push_back({offset, blank_field(field)});
    }
}

void BlankRecord::store(std::span<const Run> runs, std::uint8_t* record) {
    for (const Run& run : runs) {
        std::copy(run.bytes.begin(), run.bytes.end(), record + run.offset);
    }
}

void BlankRecord::blank(std::uint8_t* record) const {
    std::copy(blank_.begin(), blank_.end(), record);
}

void BlankRecord::blank_layout(int number, std::uint8_t* record) const {
    const auto condition = static_cast<std::size_t>(number);
    if (condition < runs_.size()) store(runs_[condition], record);
}

}  // namespace gnucobol
