#include "fsi/xml/sxml/writing/field_output.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "fsi/xml/sxml/host_functions.h"
#include "fsi/xml/sxml/items.h"
#include "fsi/xml/sxml/settings.h"
#include "host/trace.h"

namespace {

// Holds the text of one numeric field, or a run of hexadecimal text, while it is made.
char value_text[MOST_NUMBER_TEXT];

// The part of a field that lies inside the record, whatever the description says.
std::string_view field_bytes(const RecordWriter& writer, const XfdItem& field) {
    if (field.offset < 0 || field.data.length <= 0) return {};
    const auto offset = static_cast<std::uint32_t>(field.offset);
    if (offset >= writer.record_length) return {};
    const auto length = static_cast<std::uint32_t>(field.data.length);
    return {writer.record + offset, std::min(length, writer.record_length - offset)};
}

bool write_binary(RecordWriter& writer, const XfdItem& field) {
    if (host_trace_on != 0) host_trace(0, HOST_TRACE_DATA, "Writing binary data");
    constexpr char DIGITS[] = "0123456789ABCDEF";
    constexpr std::size_t RUN = 504;
    const std::string_view bytes = field_bytes(writer, field);
    std::size_t used = 0;
    for (const char character : bytes) {
        const auto byte = static_cast<unsigned char>(character);
        value_text[used++] = DIGITS[byte >> 4];
        value_text[used++] = DIGITS[byte & 0xF];
        if (used == RUN) {
            writer.output.write({value_text, used});
            used = 0;
        }
    }
    writer.output.write({value_text, used});
    return !bytes.empty();
}

// A host may give texts other than numbers (such as "NaN"): they are not zero.
bool is_zero(std::string_view text) {
    return text.find_first_not_of("0+-. ") == text.npos;
}

// A number that does not lie in the record whole has no text.
bool write_number(RecordWriter& writer, XfdItem& field) {
    if (host_trace_on != 0) host_trace(0, HOST_TRACE_DATA, "Writing numeric data");
    const std::string_view bytes = field_bytes(writer, field);
    if (bytes.empty() || bytes.size() != static_cast<std::size_t>(field.data.length)) return false;
    const std::size_t length = number_text_length(field.data);
    std::memset(value_text, ' ', length);
    convert_number(field, bytes.data(), {value_text, length});
    const std::string_view text = {value_text, finish_number(writer.xfd, value_text, length)};
    if (is_zero(text) && settings::ignore_empty_data()) return false;
    writer.output.write(text);
    return true;
}

// A text that the host gives in place of that in the record.
std::string_view given_text(const RecordWriter& writer, const XfdItem& field) {
    std::size_t length = 0;
    const auto index = static_cast<std::int32_t>(&field - writer.xfd.items);
    const char* const text = writer.text_giver->text(writer.text_giver->context, index, &length);
    return {text, length};
}

}  // namespace

std::size_t number_text_length(const XfdDataDesc& data) {
    const int length = data.digits + 1 + (data.scale < 0 ? 1 : 0);
    return static_cast<std::size_t>(std::clamp(length, 0, static_cast<int>(MOST_NUMBER_TEXT) - 1));
}

void convert_number(XfdItem& field, const char* bytes, std::span<char> text) {
    XfdDataDesc data = {};
    data.address = text.data();
    data.length = static_cast<std::int32_t>(text.size());
    data.digits = field.data.digits;
    data.scale = field.data.scale;
    field.data.address = const_cast<char*>(bytes);
    host_functions::convert()(&data, &field.data, 1);
}

std::size_t finish_number(const Xfd& xfd, char* text, std::size_t length) {
    std::size_t end = strnlen(text, length);
    const XfdConventions* const conventions = xfd.conventions;
    if (conventions != nullptr && conventions->decimal_point != '.') {
        const auto point = static_cast<char>(conventions->decimal_point);
        std::replace(text, text + end, point, '.');
    }
    while (end > 1 && text[end - 1] == ' ') --end;
    return end;
}

std::int32_t text_encoding(const Xfd& xfd, int type) {
    if (type >= 24 && type <= 29) return HOST_ENCODING_NATIONAL;
    if (type >= 40 && type <= 44 && xfd.conventions != nullptr) {
        return xfd.conventions->field_encoding;
    }
    return HOST_ENCODING_NONE;
}

std::string_view characters_of(const RecordWriter& writer, const XfdItem& field) {
    return writer.text_giver == nullptr ? field_bytes(writer, field) : given_text(writer, field);
}

bool write_characters(RecordWriter& writer, const XfdItem& field, std::string_view text) {
    // What the host gives is in the document's encoding.
    const std::int32_t encoding = writer.text_giver == nullptr
                                      ? text_encoding(writer.xfd, field.data.type)
                                      : HOST_ENCODING_NONE;
    const XmlTextSpan span = {text.data(), text.size(), encoding};
    return writer.output.write_text(span);
}

bool write_field(RecordWriter& writer, std::int32_t index) {
    XfdItem& field = writer.xfd.items[index];
    if (host_trace_on != 0) host_trace(1, HOST_TRACE_DATA, "write_xml_data");
    if (field.condition != 0 && !condition_holds(writer.xfd, field.condition)) {
        if (host_trace_on != 0) host_trace(-1, HOST_TRACE_DATA, "Leaving, condition failed");
        return false;
    }
    bool written = false;
    if (field.format == XFD_FORMAT_BINARY) {
        written = write_binary(writer, field);
    } else if (is_numeric_type(field.data.type)) {
        written = write_number(writer, field);
    } else {
        if (host_trace_on != 0) host_trace(0, HOST_TRACE_DATA, "Writing character data");
        written = write_characters(writer, field, characters_of(writer, field));
    }
    if (host_trace_on != 0) host_trace(-1, HOST_TRACE_DATA, "Leaving");
    return written;
}
