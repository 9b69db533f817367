#include "fsi/xml/handlers/instructions.h"

#include <cstring>

#include "host/strings.h"

namespace {

// A string that holds `text`; 0 when memory is exhausted.
std::uint32_t string_of(const char* text, const char* description, const char* source) {
    const std::uint32_t string =
        host_string_new(description, std::strlen(text) + 1, source, __LINE__, 0);
    if (string && !host_string_append(string, text, source, __LINE__, 0)) {
        host_string_free(string, source, __LINE__);
        return 0;
    }
    return string;
}

bool insert(XmlParser& parser, const XmlPi& entry, std::uint32_t index, const char* source) {
    void* moved = index == HOST_ARRAY_END
                      ? host_array_insert(parser.pis, &entry, index, source, __LINE__)
                      : host_array_insert_at(parser.pis, &entry, index, source, __LINE__);
    if (!moved) return false;
    parser.pis = static_cast<XmlPi*>(moved);
    return true;
}

}  // namespace

bool insert_instruction(XmlParser& parser, std::uint32_t index, const char* target,
                        const char* data, const char* source) {
    const bool first = parser.pis == nullptr;
    if (first) {
        const HostArrayType type{sizeof(XmlPi), 5, HOST_ARRAY_KIND,
                                 "Processing instructions array"};
        parser.pis = static_cast<XmlPi*>(host_array_new(&type, source, __LINE__));
        if (!parser.pis) return false;
    }
    const XmlPi entry{string_of(target, "Target processing instruction", source),
                      string_of(data, "Data for processing instruction", source)};
    if (entry.target && entry.data && insert(parser, entry, index, source)) return true;
    if (entry.target) host_string_free(entry.target, source, __LINE__);
    if (entry.data) host_string_free(entry.data, source, __LINE__);
    if (first) {
        host_array_free(parser.pis, source, __LINE__);
        parser.pis = nullptr;
    }
    return false;
}
