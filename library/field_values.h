// Values of fields: out of a record and into it.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>

#include "conversion/texts/character_set.h"
#include "conversion/texts/field_text.h"
#include "host/record_description.h"
#include "records/numbers.h"

namespace library {

// Why a text is not a value, or cannot be stored; empty when all went well.
using Complaint = std::string;

class FieldValues {
  public:
    // `characters`: those of the records; must outlive this.
    explicit FieldValues(const conversion::CharacterSet& characters)
        : characters_(characters), from_utf8_(conversion::DocumentText::utf8, characters) {}

    // `record` is the record, in which `item` lies.
    Complaint get_text(const XfdItem& item, const std::uint8_t* record, std::string& text) const;
    static Complaint get_number(const XfdItem& item, const std::uint8_t* record,
                                records::Decimal& number);

    // Nothing is stored when there is a complaint.
    Complaint set_text(const XfdItem& item, std::uint8_t* record, std::string_view text) const;
    static Complaint set_number(const XfdItem& item, std::uint8_t* record,
                                const records::Decimal& number);

  private:
    Complaint get_characters(const XfdItem& item, const std::uint8_t* record,
                             std::string& text) const;
    Complaint set_characters(const XfdItem& item, std::uint8_t* record,
                             std::string_view text) const;

    const conversion::CharacterSet& characters_;
    conversion::FieldText from_utf8_;
};

bool is_number(const XfdItem& item);
bool is_float(const XfdItem& item);
bool is_binary(const XfdItem& item);

// A number in digits, with a point before `decimals` of them (or more, when it has more).
std::string number_text(const records::Decimal& number, int decimals);
// value / 10^decimals.
records::Decimal decimal_of(std::int64_t value, int decimals);
// The number as value / 10^decimals, with as few decimals as it needs but at least `decimals`.
// False when it does not fit.
bool scaled_value(const records::Decimal& number, int& decimals, std::int64_t& value);

}  // namespace library
