#include "fsi/xml/sxml/writing/write_plan.h"

#include <algorithm>
#include <cstring>
#include <string_view>

#include "fsi/xml/sxml/group_path.h"
#include "fsi/xml/sxml/items.h"
#include "fsi/xml/sxml/plugin.h"
#include "fsi/xml/sxml/writing/field_output.h"
#include "fsi/xml/sxml/writing/xml_output.h"
#include "host/memory.h"

namespace {

constexpr std::size_t MOST_MARKUP_OF_AN_ITEM = 512;
constexpr std::size_t MARKUP_OF_ALL = 65536;
constexpr std::uint32_t NO_CHILD = 0xFFFFFFFF;  // the item that opens the layout

PlanStep::Kind kind_of(const Xfd& xfd, const XfdItem& field) {
    if (field.format == XFD_FORMAT_BINARY || field.offset < 0 || field.data.length <= 0) {
        return PlanStep::OTHER;
    }
    if (is_numeric_type(field.data.type)) return PlanStep::NUMBER;
    const std::int32_t encoding = text_encoding(xfd, field.data.type);
    const bool is_of_bytes = encoding >= HOST_ENCODING_UNKNOWN &&
                             encoding <= HOST_ENCODING_LATIN1 && host_unit_width(encoding) == 1;
    return is_of_bytes && field.data.length <= MOST_PLANNED_TEXT ? PlanStep::TEXT : PlanStep::OTHER;
}

std::uint32_t length_of(const XfdItem& field, PlanStep::Kind kind) {
    return kind == PlanStep::NUMBER ? static_cast<std::uint32_t>(number_text_length(field.data))
                                    : static_cast<std::uint32_t>(field.data.length);
}

// Room for a field and the markup before it, unless that is put in pieces.
std::uint32_t room_of(const PlanStep& step) {
    const std::size_t field = step.kind == PlanStep::TEXT     ? room_for_text(step.length)
                              : step.kind == PlanStep::NUMBER ? MOST_NUMBER_TEXT + NUMBER_RUN
                                                              : 0;
    const std::size_t markup = step.markup_length > MOST_MARKUP_AT_ONCE ? 0 : step.markup_length;
    return static_cast<std::uint32_t>(markup + MARKUP_READ_SIZE + field);
}

// Where a plan goes. Without a plan its parts are only counted.
struct Parts {
    WritePlan* plan;
    PlanStep* steps;
    PlanChild* children;
    char* markup;
};

// Walks the layouts as the writer of a record does.
class PlanMaker {
  public:
    PlanMaker(const Xfd& xfd, const ItemTags& tags, const Parts& parts)
        : xfd_(xfd), tags_(tags), parts_(parts), budget_(xfd.item_count) {}

    // All layouts, up to the first that is too much.
    void make() {
        for (std::int32_t i = 0; i < xfd_.item_count && !is_complete(); ++i) {
            if ((i == 0 || xfd_.items[i].level == RECORD_LEVEL) && !make_layout(i)) break;
        }
    }
    std::size_t layout_count() const { return layout_count_; }
    std::size_t step_count() const { return step_count_; }
    std::size_t child_count() const { return child_count_; }
    std::size_t markup_size() const { return markup_size_; }

  private:
    bool is_counting() const { return parts_.plan == nullptr; }
    bool is_complete() const {
        return !is_counting() && layout_count_ == parts_.plan->layout_count;
    }
    bool is_too_much() const {
        return markup_size_ >
               MARKUP_OF_ALL + MOST_MARKUP_OF_AN_ITEM * static_cast<std::size_t>(xfd_.item_count);
    }

    bool make_layout(std::int32_t layout) {
        first_step_ = step_count_;
        first_child_ = child_count_;
        first_markup_ = step_markup_ = markup_size_;
        full_length_ = least_length_ = 0;
        if (!walk(layout)) {
            step_count_ = first_step_;
            child_count_ = first_child_;
            markup_size_ = first_markup_;
            return false;
        }
        add_step({0, -1, 0, 0, 0, PlanStep::END, 0});
        if (!is_counting()) {
            parts_.plan->layouts[layout_count_] = {layout,
                                                   full_length_,
                                                   least_length_,
                                                   counted_from(first_child_, child_count_),
                                                   parts_.steps + first_step_,
                                                   parts_.children + first_child_,
                                                   parts_.markup + first_markup_};
        }
        ++layout_count_;
        return true;
    }

    // False when the layout is too much for a plan.
    bool walk(std::int32_t layout) {
        GroupPath path;
        if (!start(path, layout, NO_CHILD)) return false;
        while (!path.empty()) {
            OpenGroup& group = path.innermost();
            const std::int32_t child = group.child;
            if (child > 0) {
                group.child = next_sibling_item(xfd_, child, true);
                if (!start(path, child, begin_child(xfd_.items[child]))) return false;
            } else {
                const OpenGroup closed = path.close();
                add_indent(xfd_.items[closed.item].level);
                add_markup(tags_.end_tag(closed.item));
                end_child(closed.start);
            }
        }
        return !is_too_much();
    }

    // `child`: where the item stands among the children.
    bool start(GroupPath& path, std::int32_t index, std::uint32_t child) {
        const std::int32_t written = written_item(xfd_, index, path);
        const XfdItem& item = xfd_.items[written];
        if (!budget_.spend() || (is_group(item) && path.full())) return false;
        const std::uint32_t extent = extent_of(xfd_.items[index]);
        full_length_ = std::max({full_length_, extent, extent_of(item)});
        // Whatever a record has a place for by this, it is written.
        const std::uint32_t tested = child == NO_CHILD ? 0 : extent;
        if (extent_of(item) > tested) least_length_ = std::max(least_length_, extent_of(item));
        add_indent(item.level);
        add_markup(tags_.start_tag(written));
        if (is_group(item)) {
            add_markup("\r\n");
            path.open({written, first_child_item(xfd_, written), child, false});
        } else {
            const PlanStep::Kind kind = kind_of(xfd_, item);
            add_step({0, written, item.offset, length_of(item, kind), item.condition, kind, 0});
            add_markup(tags_.end_tag(written));
            end_child(child);
        }
        return !is_too_much();
    }

    static std::uint32_t counted_from(std::size_t first, std::size_t count) {
        return static_cast<std::uint32_t>(count - first);
    }

    // Result: where the child stands.
    std::uint32_t begin_child(const XfdItem& item) {
        if (!is_counting()) {
            const std::uint32_t markup = counted_from(first_markup_, markup_size_);
            parts_.children[child_count_] = {extent_of(item), markup, markup, 0, 0};
        }
        return counted_from(first_child_, child_count_++);
    }

    void end_child(std::uint32_t number) {
        if (is_counting() || number == NO_CHILD) return;
        PlanChild& child = parts_.children[first_child_ + number];
        child.markup_end = counted_from(first_markup_, markup_size_);
        child.next_step = counted_from(first_step_, step_count_);
        child.next_child = counted_from(first_child_, child_count_);
    }

    void add_markup(std::string_view text) {
        if (!is_counting()) std::memcpy(parts_.markup + markup_size_, text.data(), text.size());
        markup_size_ += text.size();
    }

    void add_indent(int level) {
        const auto blanks = static_cast<std::size_t>(indent_blanks(level));
        if (!is_counting()) std::memset(parts_.markup + markup_size_, ' ', blanks);
        markup_size_ += blanks;
    }

    // Ends the markup before a field.
    void add_step(PlanStep step) {
        step.markup_length = static_cast<std::uint32_t>(markup_size_ - step_markup_);
        step.room = room_of(step);
        step_markup_ = markup_size_;
        if (!is_counting()) parts_.steps[step_count_] = step;
        ++step_count_;
    }

    const Xfd& xfd_;
    const ItemTags& tags_;
    Parts parts_;
    WalkBudget budget_;
    std::size_t layout_count_ = 0;
    std::size_t step_count_ = 0;
    std::size_t markup_size_ = 0;
    std::size_t child_count_ = 0;
    std::size_t step_markup_ = 0;  // where the markup after the last step begins

    // Of the layout.
    std::size_t first_step_ = 0;
    std::size_t first_child_ = 0;
    std::size_t first_markup_ = 0;
    std::uint32_t full_length_ = 0;
    std::uint32_t least_length_ = 0;
};

}  // namespace

const LayoutPlan* WritePlan::of_layout(std::int32_t item) const {
    const LayoutPlan* const end = layouts + layout_count;
    const LayoutPlan* const found = std::lower_bound(
        layouts, end, item,
        [](const LayoutPlan& layout, std::int32_t wanted) { return layout.item < wanted; });
    return found != end && found->item == item ? found : nullptr;
}

WritePlan* new_write_plan(const Xfd& xfd, const ItemTags& tags) {
    PlanMaker count(xfd, tags, {nullptr, nullptr, nullptr, nullptr});
    count.make();
    const std::size_t head = sizeof(WritePlan) + count.layout_count() * sizeof(LayoutPlan);
    const std::size_t steps = count.step_count() * sizeof(PlanStep);
    const std::size_t children = count.child_count() * sizeof(PlanChild);
    void* const block = host_alloc(head + steps + children + count.markup_size() + MARKUP_READ_SIZE,
                                   HOST_BLOCK_ZEROED, SXML_SOURCE, __LINE__, "XML write plan", 0);
    auto* const plan = static_cast<WritePlan*>(block);
    if (plan == nullptr) return nullptr;
    auto* const after = static_cast<char*>(block) + head;
    plan->layout_count = count.layout_count();
    PlanMaker(xfd, tags,
              {plan, reinterpret_cast<PlanStep*>(after),
               reinterpret_cast<PlanChild*>(after + steps), after + steps + children})
        .make();
    return plan;
}
