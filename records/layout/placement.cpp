#include "records/layout/placement.h"

#include <algorithm>
#include <map>

#include "records/layout/forms.h"

namespace records {
namespace {

// What groups hand down to their subordinates.
struct Inherited {
    std::optional<Usage> usage;
    std::optional<bool> sign_leading;
    bool sign_separate = false;
    bool synchronized = false;  // on the mainframe
};

// The fewest bytes that hold so many decimal digits.
int smallest_binary_size(int digits, bool is_signed) {
    static constexpr int FEWEST[] = {1, 1, 1, 2, 2, 3, 3, 3, 4, 4, 5, 5, 5, 6, 6, 7, 7, 8, 8, 8};
    static constexpr int SIGNED[] = {1, 1, 1, 2, 2, 3, 3, 4, 4, 4, 5, 5, 6, 6, 6, 7, 7, 8, 8, 8};
    const int index = std::clamp(digits, 0, 19);
    return is_signed ? SIGNED[index] : FEWEST[index];
}

// Size of a COMP or COMP-5 item.
int binary_size(const Picture& picture, Usage usage, const LayoutOptions& options) {
    BinarySize rule = options.binary_size;
    if (rule == BinarySize::smallest) {
        return smallest_binary_size(picture.digits, picture.is_signed);
    }
    if (rule == BinarySize::by_digits_248 && usage == Usage::comp_5) {
        rule = BinarySize::by_machine;
    }
    const bool may_be_1 = rule == BinarySize::by_digits_1248 ||
                          (rule == BinarySize::by_machine && !options.is_of_mainframe());
    if (picture.digits <= 2 && may_be_1) return 1;
    if (picture.digits <= 4) return 2;
    return picture.digits <= 9 ? 4 : 8;
}

// Size of an item whose usage alone decides it.
int fixed_size(Usage usage, const LayoutOptions& options) {
    switch (usage) {
        case Usage::pointer:
            return options.is_of_mainframe() ? 4 : 8;
        case Usage::binary_char:
            return 1;
        case Usage::binary_short:
            return 2;
        case Usage::comp_1:
        case Usage::float_short:
        case Usage::index:
        case Usage::binary_long:
            return 4;
        default:
            return 8;
    }
}

// Whether SYNCHRONIZED moves items of this usage.
bool is_aligned(Usage usage) {
    return usage != Usage::display && usage != Usage::comp_3 && usage != Usage::comp_6 &&
           usage != Usage::national && usage != Usage::double_byte;
}

bool is_of_wide_characters(const Node& node, const Picture& picture) {
    return node.usage == Usage::national || node.usage == Usage::double_byte ||
           picture.category == Category::national ||
           picture.category == Category::national_edited ||
           picture.category == Category::double_byte;
}

// For cobc an N has two bytes and any other position one; cobc 3.1 does not look at the usage, cobc
// 3.2 doubles the size for it.
std::int64_t wide_size(const Node& node, const Picture& picture, NationalSize rule) {
    const std::int64_t length = picture.length;
    const bool is_double_byte =
        node.usage == Usage::double_byte || picture.category == Category::double_byte;
    if (is_double_byte || rule == NationalSize::two_bytes) return 2 * length;
    const std::int64_t size = length + picture.national;
    if (rule == NationalSize::cobc_3_2) return node.usage == Usage::national ? 2 * size : size;
    return size + (picture.is_signed && node.sign_separate ? 1 : 0);
}

class Placer {
  public:
    Placer(const LayoutOptions& options, Diagnostics& diagnostics)
        : options_(options), diagnostics_(diagnostics), is_mainframe_(options.is_of_mainframe()) {}

    std::unique_ptr<Node> build(const DataItem& item, Node* parent, const Inherited& inherited,
                                int depth) {
        auto node = std::make_unique<Node>();
        node->source = &item;
        node->parent = parent;
        if (depth > MAX_DEPTH) {
            diagnostics_.error(item.place, "groups are nested more than " +
                                               std::to_string(MAX_DEPTH) +
                                               " deep; use fewer levels");
            too_deep_ = true;
            return node;
        }
        Inherited here = inherited;
        if (item.usage) here.usage = item.usage;
        if (item.sign_leading) {
            here.sign_leading = item.sign_leading;
            here.sign_separate = item.sign_separate;
        }
        here.synchronized = item.synchronized || (inherited.synchronized && is_mainframe_);
        node->is_synchronized = here.synchronized;
        node->usage = here.usage.value_or(Usage::display);
        node->sign_leading = here.sign_leading.value_or(false);
        node->sign_separate = here.sign_separate;
        node->occurs = occurrences(item, depth);
        for (const auto& child : item.children) {
            if (child->level == 66) continue;
            node->children.push_back(build(*child, node.get(), here, depth + 1));
            if (too_deep_) return node;
        }
        find_redefined(*node);
        return node;
    }

    // Gives the item its offset and its size.
    void place(Node& node, std::int64_t offset) {
        node.offset = offset;
        if (node.is_group()) {
            const std::int64_t around = entry_alignment_;
            node.size = place_children(node);
            if (node.occurs > 1) fill_up(node);
            if (is_mainframe_) entry_alignment_ = std::max(entry_alignment_, around);
        } else {
            node.size = elementary_size(node);
            last_field_ = &node;
        }
        node.stride = node.size;
        if (node.offset + node.extent() > MAX_RECORD_LENGTH && !too_long_) {
            too_long_ = true;
            diagnostics_.error(node.source->place, "the record is longer than " +
                                                       std::to_string(MAX_RECORD_LENGTH) +
                                                       " bytes at " + item_name(*node.source) +
                                                       "; check the OCCURS clauses");
        }
    }

    // Tables with DEPENDING ON have one size here. Where others do not, what follows them moves.
    void check_moving_data(const Node& root) {
        if (options_.moving_data != MovingData::fixed && !options_.slides()) {
            for (const MovingTable& each : moving_tables(root)) refuse(each);
        }
    }

    bool failed() const { return too_deep_ || too_long_; }

  private:
    void refuse(const MovingTable& moving) {
        const std::string name = item_name(*moving.table->source);
        diagnostics_.error(
            moving.table->source->occurs->place,
            (moving.around != nullptr
                 ? name + " has DEPENDING ON and lies in the table " +
                       item_name(*moving.around->source) + ", whose entries then differ in length"
                 : item_name(*moving.next->source) + " comes after the table " + name +
                       ", whose DEPENDING ON moves it") +
                "; say how the records lie: --odo sliding when a table takes the room of its "
                "entries in use, --odo fixed when every record holds the whole table");
    }

    int occurrences(const DataItem& item, int depth) {
        if (!item.occurs) return 1;
        if (depth == 1) {
            diagnostics_.error(item.occurs->place,
                               "OCCURS is not allowed at the record's own level; put the table "
                               "into a group");
            return 1;
        }
        if (item.occurs->max > MAX_OCCURS) {
            diagnostics_.error(item.occurs->place,
                               "OCCURS " + std::to_string(item.occurs->max) + " is more than the " +
                                   std::to_string(MAX_OCCURS) +
                                   " occurrences that a description can hold; split the table "
                                   "in two levels, such as OCCURS 100 of OCCURS 1000");
            return 1;
        }
        return std::max(item.occurs->max, 1);
    }

    void find_redefined(Node& group) {
        std::map<std::string, int> by_name;  // the last item of each name
        for (std::size_t i = 0; i < group.children.size(); ++i) {
            Node& child = *group.children[i];
            const DataItem& item = *child.source;
            if (!item.redefines.empty()) {
                const auto found = by_name.find(item.redefines);
                if (found == by_name.end()) {
                    diagnostics_.error(item.redefines_place,
                                       "no item " + item.redefines + " of level " +
                                           std::to_string(item.level) +
                                           " precedes here; REDEFINES names an item of its own "
                                           "level in the same group");
                } else {
                    const Node& target = *group.children[static_cast<std::size_t>(found->second)];
                    child.redefined = target.redefined < 0 ? found->second : target.redefined;
                }
            }
            if (!item.name.empty()) by_name[item.name] = static_cast<int>(i);
        }
    }

    std::int64_t place_children(Node& group) {
        std::int64_t end = group.offset;
        entry_alignment_ = 1;
        for (const auto& child : group.children) {
            if (too_long_) return 0;
            if (child->redefined >= 0) {
                const Node& original = *group.children[static_cast<std::size_t>(child->redefined)];
                place(*child, original.offset);
                warn_of_larger(*child, original);
            } else {
                const std::int64_t alignment = own_alignment(*child);
                place(*child, (end + alignment - 1) / alignment * alignment);
                entry_alignment_ = std::max(entry_alignment_, alignment);
                const bool is_aligned_group = child->is_group() && child->source->synchronized;
                if (is_aligned_group && !is_mainframe_) align_group(*child);
            }
            end = std::max(end, child->offset + child->extent());
        }
        return end - group.offset;
    }

    void warn_of_larger(const Node& variant, const Node& original) {
        if (variant.extent() <= original.extent()) return;
        diagnostics_.warning(variant.source->redefines_place,
                             item_name(*variant.source) + " (" + std::to_string(variant.extent()) +
                                 " bytes) is longer than the item it redefines (" +
                                 std::to_string(original.extent()) +
                                 " bytes); the group is laid out for the longer one");
    }

    // Bytes that a synchronized item is aligned to; 1 for all others. On the mainframe slack bytes
    // come before the group that such an item begins, and only COMP-2 is aligned to 8.
    int own_alignment(const Node& node) {
        if (node.is_group()) return is_mainframe_ ? own_alignment(*node.children.front()) : 1;
        if (!node.is_synchronized || !is_aligned(node.usage)) return 1;
        const int size = static_cast<int>(elementary_size(node));
        const bool is_double = node.usage == Usage::comp_2 || node.usage == Usage::float_long;
        if (is_mainframe_ && size == 8 && !is_double) return 4;
        return size == 2 || size == 4 || size == 8 ? size : 1;
    }

    // A synchronized group of binary usage that is as long as a binary item is aligned like one, as
    // cobc does it: what follows moves, and the group's own place; its items stay where they are.
    void align_group(Node& group) {
        if (!is_aligned(group.usage)) return;
        const std::int64_t size =
            takes_picture(group.usage) ? group.size : fixed_size(group.usage, options_);
        if (size != 2 && size != 4 && size != 8) return;
        group.offset = (group.offset + size - 1) / size * size;
        entry_alignment_ = std::max(entry_alignment_, size);
    }

    // Fills an entry of a table up, so that the next one is aligned alike. As cobc does it: to the
    // alignment found last (a group without synchronized items, coming after them, undoes it), and
    // with the slack bytes before the entry's last field rather than after it. The mainframe has
    // them at the end, for the largest alignment in the entry.
    void fill_up(Node& entry) {
        const std::int64_t past = entry.size % entry_alignment_;
        if (past == 0) return;
        const std::int64_t slack = entry_alignment_ - past;
        entry.size += slack;
        if (!is_mainframe_) last_field_->offset += slack;
    }

    std::int64_t elementary_size(const Node& node) {
        const DataItem& item = *node.source;
        check_sign(node);
        if (!takes_picture(node.usage)) {
            if (item.picture) {
                report_once(item, item_name(item) + " cannot have a PICTURE, since its usage is " +
                                      usage_name(node.usage) + "; leave one of them out");
            }
            return fixed_size(node.usage, options_);
        }
        if (!item.picture) {
            report_once(item, item_name(item) + " has neither a PICTURE nor items below it");
            return 1;
        }
        const Picture& picture = *item.picture;
        if (is_of_wide_characters(node, picture)) {
            return wide_size(node, picture, options_.national_size);
        }
        if (picture.category != Category::numeric) return character_size(node, picture);
        switch (node.usage) {
            case Usage::binary:
            case Usage::comp_5:
                return sized_binary(item, binary_size(picture, node.usage, options_));
            case Usage::comp_x:
                return sized_binary(item, smallest_binary_size(picture.digits, false));
            case Usage::comp_3:
                return picture.digits / 2 + 1;
            case Usage::comp_6:
                return (picture.digits + 1) / 2;
            default:
                return picture.length + (picture.is_signed && node.sign_separate ? 1 : 0);
        }
    }

    // What SIGN says of an item itself, not of a group around it, must have a sign to be said of.
    void check_sign(const Node& node) {
        const DataItem& item = *node.source;
        if (item.sign_leading) {
            const bool is_text = node.usage == Usage::display || node.usage == Usage::national;
            if (!item.picture || !item.picture->is_signed) {
                report_once(item, "the SIGN clause of " + item_name(item) +
                                      " needs a PICTURE with S; add the S, or leave SIGN out");
            } else if (!is_text) {
                report_once(item, "the SIGN clause of " + item_name(item) +
                                      " does not go with usage " + usage_name(node.usage) +
                                      "; leave it out, or use DISPLAY");
            }
        }
        const bool is_display = node.usage == Usage::display;
        if (item.picture && item.picture->stored_point != '\0' && !is_display) {
            report_once(item, "PICTURE " + item.picture->text +
                                  " stores its decimal point and so goes with usage DISPLAY only; "
                                  "write V for a point that is not stored");
        }
    }

    std::int64_t sized_binary(const DataItem& item, int size) {
        if (item.picture->digits > 18) {
            report_once(item, "a binary item holds at most 18 digits, this one has " +
                                  std::to_string(item.picture->digits));
        }
        return size;
    }

    // Only COMP-X takes a character picture: PIC X(n) are n bytes of binary.
    std::int64_t character_size(const Node& node, const Picture& picture) {
        if (node.usage == Usage::comp_x && picture.length > 8) {
            report_once(*node.source, "a COMP-X item is at most 8 bytes long, this one has " +
                                          std::to_string(picture.length));
        } else if (node.usage != Usage::comp_x && node.usage != Usage::display) {
            report_once(*node.source, "PICTURE " + picture.text +
                                          " is not numeric, as the usage of " +
                                          item_name(*node.source) + " needs it");
        }
        return picture.length;
    }

    void report_once(const DataItem& item, std::string message) {
        if (reported_ == &item) return;
        reported_ = &item;
        const bool at_picture = item.picture && item.picture->place.line > 0;
        diagnostics_.error(at_picture ? item.picture->place : item.place, std::move(message));
    }

    const LayoutOptions& options_;
    Diagnostics& diagnostics_;
    const bool is_mainframe_;
    const DataItem* reported_ = nullptr;
    Node* last_field_ = nullptr;        // placed last
    std::int64_t entry_alignment_ = 1;  // of the synchronized items seen in the present entry
    bool too_deep_ = false;
    bool too_long_ = false;
};

// `next`: what follows the item; `around`: the innermost table that it lies in. Or null.
void add_moving_tables(const Node& node, const Node* next, const Node* around,
                       std::vector<MovingTable>& found) {
    const std::optional<Occurs>& occurs = node.source->occurs;
    if (occurs && !occurs->depending_on.empty() && (next != nullptr || around != nullptr)) {
        found.push_back({&node, next, around});
    }
    if (node.occurs > 1) around = &node;
    for (auto child = node.children.rbegin(); child != node.children.rend(); ++child) {
        add_moving_tables(**child, next, around, found);
        if ((*child)->redefined < 0) next = child->get();
    }
}

}  // namespace

std::string item_name(const DataItem& item) {
    return item.name.empty() ? "FILLER" : item.name;
}

std::vector<MovingTable> moving_tables(const Node& record) {
    std::vector<MovingTable> found;
    add_moving_tables(record, nullptr, nullptr, found);
    return found;
}

std::unique_ptr<Node> place_record(const DataItem& record, const LayoutOptions& options,
                                   Diagnostics& diagnostics) {
    Placer placer(options, diagnostics);
    std::unique_ptr<Node> root = placer.build(record, nullptr, {}, 1);
    if (placer.failed()) return nullptr;
    placer.place(*root, 0);
    if (placer.failed()) return nullptr;
    placer.check_moving_data(*root);
    return root;
}

}  // namespace records
