#include "records/layout/description_files/json_keys.h"

#include <algorithm>
#include <string_view>

namespace records::json {
namespace {

const Value NOTHING;
constexpr int MAX_ERRORS = 20;
constexpr std::size_t MAX_SHOWN_KEY = 40;

}  // namespace

Key Key::member(const char* name) const {
    const std::string path = path_.empty() ? name : path_ + "." + name;
    return {has(name) ? (*value_)[name] : NOTHING, path, *report_};
}

Key Key::element(std::size_t index) const {
    return {(*value_)[index], path_ + "[" + std::to_string(index) + "]", *report_};
}

void Key::error(const std::string& message) const {
    if (++report_->errors > MAX_ERRORS) return;
    const std::string where = path_.empty() ? "the description" : path_;
    report_->diagnostics.error({}, report_->file + ": " + where + " " + message);
}

bool Key::is_object_of(std::initializer_list<const char*> known) const {
    if (!value_->is_object()) {
        error("must be an object");
        return false;
    }
    for (const auto& [key, ignored] : value_->items()) {
        const bool is_known = std::any_of(
            known.begin(), known.end(),
            [&wanted = key](const char* name) { return std::string_view(name) == wanted; });
        if (is_known) continue;
        error("has an unknown key " + Value(key.substr(0, MAX_SHOWN_KEY))
                                          .dump(-1, ' ', true, Value::error_handler_t::replace));
        return false;
    }
    return true;
}

bool Key::is_array(std::size_t at_least) const {
    if (value_->is_array() && value_->size() >= at_least) return true;
    error(at_least == 0 ? "must be an array" : "must be an array with an element at least");
    return false;
}

std::int64_t Key::integer(const char* name, std::int64_t low, std::int64_t high) const {
    const Key key = member(name);
    const Value& value = *key.value_;
    const bool fits = value.is_number_integer() &&
                      (!value.is_number_unsigned() || value.get<std::uint64_t>() <= INT64_MAX);
    const std::int64_t number = fits ? value.get<std::int64_t>() : 0;
    if (fits && number >= low && number <= high) return number;
    key.error("must be a whole number from " + std::to_string(low) + " to " + std::to_string(high));
    return low;
}

std::int64_t Key::integer(const char* name, std::int64_t low, std::int64_t high,
                          std::int64_t fallback) const {
    return has(name) ? integer(name, low, high) : fallback;
}

std::string Key::text(const char* name) const {
    return member(name).as_text();
}

std::string Key::optional_text(const char* name) const {
    return has(name) ? text(name) : std::string();
}

bool Key::flag(const char* name) const {
    if (!has(name)) return false;
    const Key key = member(name);
    if (key.value_->is_boolean()) return key.value_->get<bool>();
    key.error("must be true or false");
    return false;
}

std::string Key::as_text() const {
    if (value_->is_string()) return value_->get<std::string>();
    error("must be a text");
    return {};
}

}  // namespace records::json
