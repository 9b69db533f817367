// What is read from the C code that the compiler generates.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace command::cob {

// An item as the generated code refers to it.
struct GeneratedItem {
    std::optional<std::int64_t> offset;  // nothing when it is only known at run time
    std::optional<std::int64_t> size;
    unsigned type = 0;  // the runtime's COB_TYPE_
    int scale = 0;
    unsigned flags = 0;  // COB_FLAG_
};

struct GeneratedFile {
    std::string program;  // upper case
    std::string name;     // as in SELECT, upper case
    bool is_sequential = true;
    bool is_special = false;  // assigned to KEYBOARD, DISPLAY or a printer of the system
};

class GeneratedCode {
  public:
    // Reads FILE, and FILE.h, FILE.l.h and so on beside it.
    explicit GeneratedCode(const std::string& file);

    // The items that stand after a piece of code, in order. One that is not understood is an item
    // without offset and size.
    std::vector<GeneratedItem> parameters(std::string_view after) const;
    std::vector<GeneratedFile> files() const;
    // Names of the items that have a variable ("f_16"), upper case, by that.
    const std::map<std::string, std::string>& names() const { return names_; }
    bool has_ebcdic_signs() const;

  private:
    struct Attributes {
        unsigned type = 0;
        int scale = 0;
        unsigned flags = 0;
    };
    void take_line(const std::string& line);
    void take_attributes(const std::string& line);
    void take_item(const std::string& line);
    GeneratedItem item_of(const std::string& size, const std::string& place,
                          const std::string& attributes) const;
    GeneratedItem operand_of(const std::string& text) const;

    std::string code_;
    std::map<std::string, Attributes> attributes_;
    std::map<std::string, std::vector<std::string>> items_;  // size, place, attributes
    std::map<std::string, std::string> names_;
};

}  // namespace command::cob
