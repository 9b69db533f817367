#include "gnucobol/document_file.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string_view>

#include "host/encoding.h"

namespace gnucobol {

namespace {

constexpr std::string_view BLANKS = " \t\r\n";
// As much as is looked at of the beginning and of the end.
constexpr std::size_t PART_SIZE = 65536;

std::string part_of(std::ifstream& file, std::uintmax_t from) {
    std::string part(PART_SIZE, '\0');
    file.clear();
    file.seekg(static_cast<std::streamoff>(from));
    file.read(part.data(), static_cast<std::streamsize>(part.size()));
    part.resize(static_cast<std::size_t>(file.gcount()));
    return part;
}

// The place behind what stands at `at` before the document element: an instruction, a comment or
// the document type declaration.
std::size_t behind_prologue_part(std::string_view head, std::size_t at) {
    const std::string_view text = head.substr(at);
    std::string_view end = ">";
    if (text.starts_with("<?")) end = "?>";
    if (text.starts_with("<!--")) end = "-->";
    if (text.starts_with("<!D") && text.find('[') < text.find('>')) {
        at = std::min(head.find(']', at), head.size());
    }
    const std::size_t found = head.find(end, at);
    return found == std::string_view::npos ? head.size() : found + end.size();
}

// The document element's name; empty when it is not in the head.
std::string_view root_name(std::string_view head) {
    std::size_t at = head.find('<');
    while (at < head.size() && at + 1 < head.size() &&
           (head[at + 1] == '?' || head[at + 1] == '!')) {
        at = head.find('<', behind_prologue_part(head, at));
    }
    if (at >= head.size()) return {};
    const std::string_view text = head.substr(at + 1);
    const std::size_t end = text.find_first_of(" \t\r\n/>");
    return end == std::string_view::npos ? std::string_view() : text.substr(0, end);
}

// The text without blanks, comments and instructions at its end.
std::string_view without_epilogue(std::string_view tail) {
    for (;;) {
        tail = tail.substr(0, tail.find_last_not_of(BLANKS) + 1);
        const std::size_t start = tail.ends_with("-->")  ? tail.rfind("<!--")
                                  : tail.ends_with("?>") ? tail.rfind("<?")
                                                         : std::string_view::npos;
        if (start == std::string_view::npos) return tail;
        tail = tail.substr(0, start);
    }
}

}  // namespace

bool has_document_end(const std::string& path) {
    std::error_code error;
    if (!std::filesystem::is_regular_file(path, error)) return true;
    const std::uintmax_t size = std::filesystem::file_size(path, error);
    std::ifstream file(path, std::ios::binary);
    if (error || !file) return true;
    const std::string head = part_of(file, 0);
    const std::string_view name = root_name(head);
    if (name.empty() || head.find('\0') != std::string::npos) return true;
    const std::string tail = part_of(file, size > PART_SIZE ? size - PART_SIZE : 0);
    const std::string_view end = without_epilogue(tail);
    const std::size_t last = end.rfind('<');
    if (last == std::string_view::npos) return false;
    std::string_view tag = end.substr(last + 1);
    const bool is_empty_element = tag.ends_with("/>");
    if (!is_empty_element && (!tag.starts_with('/') || !tag.ends_with('>'))) return false;
    if (!is_empty_element) tag.remove_prefix(1);
    return tag.starts_with(name) && tag.find_first_of(" \t\r\n/>") == name.size();
}

bool is_latin1_document(const std::string& path) {
    std::error_code error;
    if (!std::filesystem::is_regular_file(path, error)) return true;
    std::ifstream file(path, std::ios::binary);
    if (!file) return true;
    const std::string head = part_of(file, 0);
    const std::string_view declaration = std::string_view(head).substr(0, head.find("?>"));
    const std::size_t at = declaration.find("encoding");
    if (at == std::string_view::npos) return false;
    const std::size_t start = declaration.find_first_of("\"'", at);
    if (start == std::string_view::npos) return false;
    const std::size_t end = declaration.find(declaration[start], start + 1);
    const std::string name(declaration.substr(start + 1, end - start - 1));
    return host_encoding_code(name.c_str()) == HOST_ENCODING_LATIN1;
}

}  // namespace gnucobol
