#include "tools/sxml/reports/text_table.h"

#include <algorithm>

namespace command {

namespace {

// Characters, not bytes.
std::size_t width_of(const std::string& text) {
    return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char c) {
        return (static_cast<unsigned char>(c) & 0xC0) != 0x80;
    }));
}

}  // namespace

std::string table_text(const Table& rows, const std::vector<bool>& right_aligned) {
    std::vector<std::size_t> widths(right_aligned.size(), 0);
    for (const auto& row : rows) {
        for (std::size_t i = 0; i < row.size(); ++i) {
            widths[i] = std::max(widths[i], width_of(row[i]));
        }
    }
    std::string text;
    for (const auto& row : rows) {
        std::string line;
        for (std::size_t i = 0; i < row.size(); ++i) {
            const std::string padding(widths[i] - width_of(row[i]), ' ');
            if (i > 0) line += "  ";
            line += right_aligned[i] ? padding + row[i] : row[i] + padding;
        }
        text += line.substr(0, line.find_last_not_of(' ') + 1) + '\n';
    }
    return text;
}

}  // namespace command
