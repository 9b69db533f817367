#include "conversion/schemas/simple_types.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "conversion/texts/utf8.h"
#include "host/utf8.h"

namespace conversion {

namespace {

constexpr int MOST_DERIVED = 64;    // types, each from the one before
constexpr int MOST_MEMBERS = 4096;  // types looked at for one, those of its unions counted
constexpr int MOST_COUNT = 1'000'000'000;
constexpr int LEAST_GRANTED = 18;  // digits that every COBOL takes
constexpr int MOST_DIGITS = 38;
constexpr std::size_t MOST_SHOWN = 50;

// A type while it is derived.
struct Facets {
    enum class Kind : std::uint8_t { text, decimal, list, hexadecimal, base64 };
    Kind kind = Kind::text;
    std::string name;  // of the built-in type that it is derived from
    std::optional<std::uint64_t> length{};
    std::optional<int> total_digits{};
    std::optional<int> fraction_digits{};
    // Whole digits of the bounds, and whether numbers below zero are left by the lower one.
    std::optional<int> upper_digits{};
    std::optional<int> lower_digits{};
    bool may_be_negative = true;
    bool may_be_empty = false;
    std::vector<std::string> values{};  // of an enumeration
};

struct BuiltIn {
    std::string_view name;
    Facets::Kind kind;
    int length;  // of texts, 0: unlimited; digits of whole numbers, 0 likewise
    bool may_be_negative;
};

// Dates and times with a fraction of nine digits and a time zone, where they may have them.
constexpr std::array BUILT_IN = {
    BuiltIn{"string", Facets::Kind::text, 0, false},
    BuiltIn{"normalizedString", Facets::Kind::text, 0, false},
    BuiltIn{"token", Facets::Kind::text, 0, false},
    BuiltIn{"language", Facets::Kind::text, 0, false},
    BuiltIn{"anyURI", Facets::Kind::text, 0, false},
    BuiltIn{"Name", Facets::Kind::text, 0, false},
    BuiltIn{"NCName", Facets::Kind::text, 0, false},
    BuiltIn{"QName", Facets::Kind::text, 0, false},
    BuiltIn{"NOTATION", Facets::Kind::text, 0, false},
    BuiltIn{"NMTOKEN", Facets::Kind::text, 0, false},
    BuiltIn{"ID", Facets::Kind::text, 0, false},
    BuiltIn{"IDREF", Facets::Kind::text, 0, false},
    BuiltIn{"ENTITY", Facets::Kind::text, 0, false},
    BuiltIn{"NMTOKENS", Facets::Kind::list, 0, false},
    BuiltIn{"IDREFS", Facets::Kind::list, 0, false},
    BuiltIn{"ENTITIES", Facets::Kind::list, 0, false},
    BuiltIn{"anySimpleType", Facets::Kind::text, 0, false},
    BuiltIn{"anyAtomicType", Facets::Kind::text, 0, false},
    BuiltIn{"anyType", Facets::Kind::text, 0, false},
    BuiltIn{"duration", Facets::Kind::text, 0, false},
    BuiltIn{"yearMonthDuration", Facets::Kind::text, 0, false},
    BuiltIn{"dayTimeDuration", Facets::Kind::text, 0, false},
    BuiltIn{"base64Binary", Facets::Kind::base64, 0, false},
    BuiltIn{"hexBinary", Facets::Kind::hexadecimal, 0, false},
    BuiltIn{"boolean", Facets::Kind::text, 5, false},
    BuiltIn{"float", Facets::Kind::text, 24, false},
    BuiltIn{"double", Facets::Kind::text, 24, false},
    BuiltIn{"date", Facets::Kind::text, 16, false},
    BuiltIn{"dateTime", Facets::Kind::text, 35, false},
    BuiltIn{"dateTimeStamp", Facets::Kind::text, 35, false},
    BuiltIn{"time", Facets::Kind::text, 24, false},
    BuiltIn{"gYear", Facets::Kind::text, 10, false},
    BuiltIn{"gYearMonth", Facets::Kind::text, 13, false},
    BuiltIn{"gMonth", Facets::Kind::text, 10, false},
    BuiltIn{"gMonthDay", Facets::Kind::text, 13, false},
    BuiltIn{"gDay", Facets::Kind::text, 11, false},
    BuiltIn{"decimal", Facets::Kind::decimal, 0, true},
    BuiltIn{"integer", Facets::Kind::decimal, 0, true},
    BuiltIn{"nonPositiveInteger", Facets::Kind::decimal, 0, true},
    BuiltIn{"negativeInteger", Facets::Kind::decimal, 0, true},
    BuiltIn{"nonNegativeInteger", Facets::Kind::decimal, 0, false},
    BuiltIn{"positiveInteger", Facets::Kind::decimal, 0, false},
    BuiltIn{"long", Facets::Kind::decimal, 19, true},
    BuiltIn{"int", Facets::Kind::decimal, 10, true},
    BuiltIn{"short", Facets::Kind::decimal, 5, true},
    BuiltIn{"byte", Facets::Kind::decimal, 3, true},
    BuiltIn{"unsignedLong", Facets::Kind::decimal, 20, false},
    BuiltIn{"unsignedInt", Facets::Kind::decimal, 10, false},
    BuiltIn{"unsignedShort", Facets::Kind::decimal, 5, false},
    BuiltIn{"unsignedByte", Facets::Kind::decimal, 3, false},
};

std::optional<Facets> built_in(std::string_view name) {
    const auto* const found = std::find_if(BUILT_IN.begin(), BUILT_IN.end(),
                                           [name](const BuiltIn& one) { return one.name == name; });
    if (found == BUILT_IN.end()) return std::nullopt;
    Facets facets{found->kind, std::string(name)};
    facets.may_be_negative = found->may_be_negative;
    if (found->kind != Facets::Kind::decimal) {
        if (found->length > 0) facets.length = found->length;
        return facets;
    }
    if (name != "decimal") facets.fraction_digits = 0;
    if (found->length > 0) facets.upper_digits = facets.lower_digits = found->length;
    return facets;
}

std::uint64_t characters_in(std::string_view text) {
    return static_cast<std::uint64_t>(
        std::count_if(text.begin(), text.end(), [](char c) { return !utf8::continues(c); }));
}

// The value of a facet that is a count.
std::optional<int> count_in(const std::string& value) {
    if (value.empty() || value.find_first_not_of("0123456789") != value.npos) return std::nullopt;
    const std::size_t begin = std::min(value.find_first_not_of('0'), value.size() - 1);
    return value.size() - begin > 9 ? MOST_COUNT : std::atoi(value.c_str() + begin);
}

// Digits before the point.
int whole_digits(std::string_view number) {
    while (!number.empty() && (number[0] == '-' || number[0] == '+' || number[0] == '0')) {
        number.remove_prefix(1);
    }
    const auto digits = static_cast<int>(std::min(number.find('.'), number.size()));
    return std::max(digits, 1);
}

int decimals_of(std::string_view number) {
    const std::size_t point = number.find('.');
    return point == number.npos ? 0 : static_cast<int>(number.size() - point - 1);
}

bool is_number(std::string_view text) {
    return !text.empty() && text.find_first_not_of("0123456789.+-") == text.npos;
}

template <class Number>
void lower(std::optional<Number>& limit, Number value) {
    limit = limit ? std::min(*limit, value) : value;
}

void apply_length(Facets& facets, const SchemaNode& facet) {
    const std::optional<int> count = count_in(facet.attribute("value"));
    if (!count || facets.kind == Facets::Kind::list) return;  // counts the texts in a list
    auto length = static_cast<std::uint64_t>(*count);
    if (facets.kind == Facets::Kind::hexadecimal) length *= 2;
    if (facets.kind == Facets::Kind::base64) length = (length + 2) / 3 * 4;
    lower(facets.length, length);
}

void apply_bound(Facets& facets, const SchemaNode& facet) {
    const std::string value = facet.attribute("value");
    if (facets.kind != Facets::Kind::decimal || !is_number(value)) return;
    const bool is_negative = value.starts_with('-') && value.find_first_not_of("-0.") != value.npos;
    if (facet.name.starts_with("max")) {
        // Below a bound that is negative numbers have any number of digits.
        if (!is_negative) lower(facets.upper_digits, whole_digits(value));
    } else {
        if (!is_negative) facets.may_be_negative = false;
        lower(facets.lower_digits, is_negative ? whole_digits(value) : 1);
    }
}

// Facets of a restriction; patterns, white space and what else says nothing about size stay out.
void apply(Facets& facets, const SchemaNode& restriction) {
    std::vector<std::string> values;
    for (const auto& facet : restriction.children) {
        const std::string& name = facet->name;
        if (name == "length" || name == "maxLength") apply_length(facets, *facet);
        if (name == "enumeration") values.push_back(facet->attribute("value"));
        if (name.ends_with("clusive")) apply_bound(facets, *facet);
        if (name == "totalDigits" || name == "fractionDigits") {
            const std::optional<int> count = count_in(facet->attribute("value"));
            if (!count) continue;
            lower(name == "totalDigits" ? facets.total_digits : facets.fraction_digits, *count);
        }
    }
    if (!values.empty()) facets.values = std::move(values);
}

// The texts of an enumeration say it all.
void limit_by_values(const Facets& facets, TextLimits& limits) {
    std::uint64_t longest = 0;
    int whole = 1;
    int decimals = 0;
    bool has_negative = false;
    for (const std::string& value : facets.values) {
        longest = std::max(longest, characters_in(value));
        limits.is_number = limits.is_number && is_number(value);
        limits.may_be_empty = limits.may_be_empty || value.empty();
        whole = std::max(whole, whole_digits(value));
        decimals = std::max(decimals, decimals_of(value));
        has_negative = has_negative || value.starts_with('-');
    }
    limits.length = longest;
    limits.whole_digits = whole;
    limits.decimals = decimals;
    limits.may_be_negative = has_negative;
}

// Digits before and after the point. A type of 9 digits, 2 of them decimals, allows 9 before the
// point; where that gets more than every COBOL takes, those that 2 decimals leave.
void limit_digits(const Facets& facets, TextLimits& limits) {
    limits.decimals = facets.fraction_digits;
    if (facets.upper_digits && (facets.lower_digits || !facets.may_be_negative)) {
        limits.whole_digits = std::max(*facets.upper_digits, facets.lower_digits.value_or(1));
    }
    if (!facets.total_digits) return;
    const int total = *facets.total_digits;
    lower(limits.whole_digits, total);
    if (!limits.decimals) limits.decimals = total;
    const int decimals = std::min(*limits.decimals, total);
    limits.decimals = decimals;
    if (*limits.whole_digits + decimals > LEAST_GRANTED) {
        const int left = std::max(total - decimals, LEAST_GRANTED - decimals);
        limits.whole_digits = std::min(*limits.whole_digits, std::max(left, 1));
    }
}

void shorten(std::string& text) {
    if (text.size() <= MOST_SHOWN) return;
    text.resize(whole_characters(text, MOST_SHOWN - 4));
    text += " ...";
}

std::string shown(const Facets& facets) {
    std::string text = "xs:" + facets.name;
    if (facets.kind == Facets::Kind::list) text += " (list)";
    if (!facets.values.empty()) {
        text += ":";
        for (const std::string& value : facets.values) {
            if (text.size() > MOST_SHOWN) break;
            text += " " + value;
        }
        for (char& c : text) {
            if (static_cast<unsigned char>(c) < ' ') c = ' ';
        }
    } else if (facets.kind == Facets::Kind::decimal && facets.total_digits) {
        text += ", " + std::to_string(*facets.total_digits) + " digits";
        const int decimals = facets.fraction_digits.value_or(0);
        if (decimals > 0) text += ", " + std::to_string(decimals) + " of them decimals";
    } else if (facets.kind == Facets::Kind::text && facets.length) {
        text += ", at most " + std::to_string(*facets.length) + " characters";
    }
    shorten(text);
    return text;
}

TextLimits limits_from(const Facets& facets) {
    TextLimits limits;
    limits.is_number = facets.kind == Facets::Kind::decimal;
    limits.length = facets.length;
    limits.may_be_negative = facets.may_be_negative;
    limits.may_be_empty = facets.may_be_empty;
    limits.shown = shown(facets);
    if (limits.is_number) limit_digits(facets, limits);
    if (!facets.values.empty()) limit_by_values(facets, limits);
    int digits = limits.whole_digits.value_or(0) + limits.decimals.value_or(0);
    if (facets.values.empty()) digits = std::max(digits, facets.total_digits.value_or(0));
    if (limits.is_number && digits > MOST_DIGITS) {
        limits.is_number = false;
        limits.length = static_cast<std::uint64_t>(facets.total_digits.value_or(digits)) + 2;
    }
    if (limits.is_number) limits.length.reset();
    return limits;
}

// Goes from a type to what it is derived from.
class Derivation {
  public:
    explicit Derivation(const SchemaSet& set) : set_(set) {}

    Result<Facets> of_name(const SchemaNode& from, const std::string& name) {
        const std::string key = component_key_of(from, name);
        if (is_built_in(key)) {
            const auto facets = built_in(std::string_view(key).substr(key.find('}') + 1));
            if (facets) return *facets;
        }
        const SchemaNode* const type = set_.find("type", key);
        if (type != nullptr) return of(*type);
        return problem_at(from, "the type " + name + " is not declared" + set_.hint_for(key));
    }

    Result<Facets> of(const SchemaNode& type) {
        if (depth_ >= MOST_DERIVED || ++looked_at_ > MOST_MEMBERS) {
            return problem_at(type, "the type is derived from itself, or through too many types");
        }
        ++depth_;
        Result<Facets> facets = derived(type);
        --depth_;
        return facets;
    }

  private:
    static Problem problem_at(const SchemaNode& node, std::string what) {
        return {Cause::document, node.place(), std::move(what), ""};
    }

    Result<Facets> derived(const SchemaNode& type) {
        if (type.name == "complexType") return content_of(type);
        if (type.child("list") != nullptr) return Facets{Facets::Kind::list, "string"};
        if (const SchemaNode* all = type.child("union")) return united(*all);
        const SchemaNode* const restriction = type.child("restriction");
        if (restriction == nullptr) return problem_at(type, "the type has no content");
        Result<Facets> facets = base_of(*restriction);
        if (facets) apply(*facets, *restriction);
        return facets;
    }

    Result<Facets> content_of(const SchemaNode& complex_type) {
        const SchemaNode* const content = complex_type.child("simpleContent");
        if (content == nullptr) return problem_at(complex_type, "the type is not that of a text");
        const SchemaNode* const extension = content->child("extension");
        if (extension != nullptr) return base_of(*extension);
        const SchemaNode* const restriction = content->child("restriction");
        if (restriction == nullptr) return problem_at(*content, "the content has no base");
        const SchemaNode* const inner = restriction->child("simpleType");
        Result<Facets> facets = inner != nullptr ? of(*inner) : base_of(*restriction);
        if (facets) apply(*facets, *restriction);
        return facets;
    }

    Result<Facets> base_of(const SchemaNode& restriction) {
        if (restriction.has("base")) return of_name(restriction, restriction.attribute("base"));
        const SchemaNode* const inner = restriction.child("simpleType");
        if (inner != nullptr) return of(*inner);
        return problem_at(restriction, "the type has no base");
    }

    // As long as the longest of its members, numbers when all are.
    Result<Facets> united(const SchemaNode& all) {
        std::vector<Result<Facets>> members;
        const std::string names = all.attribute("memberTypes") + " ";
        for (std::size_t begin = 0; begin < names.size();) {
            const std::size_t end = names.find_first_of(" \t\r\n", begin);
            if (end > begin) members.push_back(of_name(all, names.substr(begin, end - begin)));
            begin = end + 1;
        }
        for (const auto& child : all.children) {
            if (child->name == "simpleType") members.push_back(of(*child));
        }
        Facets result{Facets::Kind::text, "string"};
        result.length = 0;
        for (const Result<Facets>& member : members) {
            if (!member) return member.problem();
            const std::optional<std::uint64_t> length = length_of(*member);
            result.length = length && result.length
                                ? std::optional(std::max(*result.length, *length))
                                : std::nullopt;
        }
        result.name = "string (union)";
        return result;
    }

    // As text.
    static std::optional<std::uint64_t> length_of(const Facets& facets) {
        const TextLimits limits = limits_from(facets);
        if (!limits.is_number) return limits.length;
        if (!limits.whole_digits || !limits.decimals) return std::nullopt;
        return static_cast<std::uint64_t>(*limits.whole_digits + *limits.decimals) + 2;
    }

    const SchemaSet& set_;
    int depth_ = 0;
    int looked_at_ = 0;
};

Result<TextLimits> limits_from(const Result<Facets>& facets) {
    if (!facets) return facets.problem();
    return limits_from(*facets);
}

}  // namespace

Result<TextLimits> limits_of_type(const SchemaSet& set, const SchemaNode& from,
                                  const std::string& type) {
    return limits_from(Derivation(set).of_name(from, type));
}

Result<TextLimits> limits_of(const SchemaSet& set, const SchemaNode& type) {
    return limits_from(Derivation(set).of(type));
}

}  // namespace conversion
