// Attributes as elements: `<price currency="EUR">5</price>` counts as `<price>5</price>
// <price_currency>EUR</price_currency>`, so that fields can take both.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

namespace conversion {

// Names of the elements that hold fields: their attributes become their first elements. Those of
// other elements come after their end. Records hold fields, whatever their names.
// A record's own text becomes the element `price_text` where there is a field of this name.
struct AttributeRule {
    std::unordered_set<std::string> groups;
    std::unordered_set<std::string> fields{};
};

// False for namespace declarations and names that begin with xml: or xsi:, which are not data.
bool is_data_attribute(std::string_view name);

// "price_currency"; a colon in the attribute's name becomes an underscore.
std::string attribute_element_name(std::string_view element, std::string_view attribute);

// Which elements stand for the attributes of a document that is parsed, tag by tag. Results are
// valid until the next call. Throws std::bad_alloc.
class AttributeElements {
  public:
    struct Made {
        std::string name;
        std::string value;
    };

    explicit AttributeElements(AttributeRule rule) : rule_(std::move(rule)) {}

    // A start tag, with the attributes as Expat has them: what comes after it.
    const std::vector<Made>& begin(const char* name, const char** attributes);
    // An end tag: what comes after it. When only some elements of a name have the attribute, an
    // empty one is added for each element before, so that the fifth attribute belongs to the fifth
    // element.
    const std::vector<Made>& end();
    // A piece of text: whether an element for it begins before it, and the element's name.
    bool begins_text(std::string_view text);
    const std::string& text_element() const { return text_element_; }
    // Whether it ends before the current tag. To be called before begin() and end().
    bool ends_text() { return std::exchange(is_in_text_, false); }
    // There would be too many empty ones.
    bool is_too_much() const { return is_too_much_; }

  private:
    struct Siblings {
        std::uint64_t count = 0;  // elements of a name within the open one
        std::unordered_map<std::string, std::uint64_t> made{};  // for each attribute
    };
    struct Open {
        std::string name;
        std::vector<Made> after{};
        std::unordered_map<std::string, Siblings> children{};
    };
    void make_after(Siblings& siblings, Made attribute);

    AttributeRule rule_;
    std::vector<Open> open_;
    std::vector<Made> made_;
    std::uint64_t empty_ones_ = 0;  // since a record began
    bool is_too_much_ = false;
    std::string text_element_;
    bool is_in_text_ = false;
};

}  // namespace conversion
