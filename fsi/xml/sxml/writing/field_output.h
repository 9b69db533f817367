// The values of fields on their way from a record into the document.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "fsi/xml/sxml/writing/item_tags.h"
#include "fsi/xml/sxml/writing/record_output.h"
#include "host/record_description.h"
#include "host/record_handler.h"

// The record being written.
struct RecordWriter {
    Xfd& xfd;
    const ItemTags& tags;
    const char* record;
    std::uint32_t record_length;
    const HostRecordHandler* text_giver;  // null: texts are as in the record
    RecordOutput output;
};

// Writes a field's value, unless its condition does not hold. Result: whether there was any text to
// write.
bool write_field(RecordWriter& writer, std::int32_t index);

// The text of a character field: in the record, or what the host gives in its place.
std::string_view characters_of(const RecordWriter& writer, const XfdItem& field);

// Writes such a text, trimmed and escaped. Result: whether anything was left.
bool write_characters(RecordWriter& writer, const XfdItem& field, std::string_view text);

// The encoding of the texts of a type of character fields: a HostEncoding code.
std::int32_t text_encoding(const Xfd& xfd, int type);

// The length of a number's text as the host makes it.
std::size_t number_text_length(const XfdDataDesc& data);
constexpr std::size_t MOST_NUMBER_TEXT = 512;

// Has the host convert the number at `bytes`, which lies in the record whole, to text. `text` is of
// number_text_length, filled with blanks.
void convert_number(XfdItem& field, const char* bytes, std::span<char> text);

// Makes of a converted number what goes into the document: its point is a full stop, and blanks at
// the end are cut, though never the first character. Result: its length.
std::size_t finish_number(const Xfd& xfd, char* text, std::size_t length);
