// Checked access to the values of a description file: every complaint names the key.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <nlohmann/json.hpp>
#include <string>

#include "records/diagnostics.h"

namespace records::json {

using Value = nlohmann::json;

// One value and where it stands, such as records[0].items[3].
class Key {
  public:
    // Complaints go to `diagnostics`, under the file's name. Past the twentieth they are dropped.
    struct Report {
        std::string file;
        Diagnostics& diagnostics;
        int errors = 0;
    };

    Key(const Value& value, std::string path, Report& report)
        : value_(&value), path_(std::move(path)), report_(&report) {}

    const std::string& path() const { return path_; }
    bool has(const char* name) const { return value_->is_object() && value_->contains(name); }
    // A member; a null value when it is missing.
    Key member(const char* name) const;
    std::size_t size() const { return value_->is_array() ? value_->size() : 0; }
    Key element(std::size_t index) const;

    void error(const std::string& message) const;
    // False, with complaints, unless it is an object of these keys only.
    bool is_object_of(std::initializer_list<const char*> known) const;
    bool is_array(std::size_t at_least) const;
    // The member's value; the fallback when it is missing, or (with a complaint) of a wrong kind.
    std::int64_t integer(const char* name, std::int64_t low, std::int64_t high) const;
    std::int64_t integer(const char* name, std::int64_t low, std::int64_t high,
                         std::int64_t fallback) const;
    std::string text(const char* name) const;
    std::string optional_text(const char* name) const;
    bool flag(const char* name) const;
    // The value itself as a text.
    std::string as_text() const;

  private:
    const Value* value_;
    std::string path_;
    Report* report_;
};

}  // namespace records::json
