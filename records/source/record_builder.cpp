#include "records/source/record_builder.h"

#include <utility>

namespace records {

namespace {

// How many redefinitions of one item are looked through; bounds the work on hostile text.
constexpr int MAX_REDEFINITIONS = 200;

std::string level_text(int level) {
    return (level < 10 ? "0" : "") + std::to_string(level);
}

std::string name_of(const DataItem& item) {
    return item.name.empty() ? "FILLER" : item.name;
}

}  // namespace

RecordBuilder::RecordBuilder(std::vector<std::unique_ptr<DataItem>>& records,
                             std::string implied_name, ParseContext& context)
    : records_(records), implied_name_(std::move(implied_name)), context_(context) {}

void RecordBuilder::add(Entry entry) {
    if (entry.level == 88) {
        add_condition(entry);
    } else if (!entry.item) {
        return;
    } else if (entry.level == 1 || entry.level == 77) {
        add_record(entry);
    } else {
        add_subordinate(entry);
    }
}

void RecordBuilder::add_condition(Entry& entry) {
    if (open_.empty()) {
        context_.error(entry.start, "level 88 must follow the data item it is for");
    } else if (entry.condition) {
        open_.back()->conditions.push_back(std::move(*entry.condition));
    }
}

void RecordBuilder::add_record(Entry& entry) {
    check_redefines(entry, records_);
    open_.assign(1, entry.item.get());
    records_.push_back(std::move(entry.item));
}

void RecordBuilder::add_subordinate(Entry& entry) {
    if (open_.empty()) open_implied_record(entry);
    while (open_.size() > 1 && open_.back()->level >= entry.level) open_.pop_back();
    DataItem& parent = *open_.back();
    check_level(entry, parent);
    check_redefines(entry, parent.children);
    open_.push_back(entry.item.get());
    parent.children.push_back(std::move(entry.item));
}

void RecordBuilder::open_implied_record(const Entry& entry) {
    auto record = std::make_unique<DataItem>();
    record->level = 1;
    record->name = implied_name_;
    record->place = context_.sources.place(entry.start.position);
    open_.push_back(record.get());
    records_.push_back(std::move(record));
}

void RecordBuilder::check_level(const Entry& entry, const DataItem& parent) {
    if (parent.level == 77 || parent.picture) {
        context_.error(entry.start, name_of(parent) + " is an elementary item" +
                                        (parent.picture ? " (it has a PICTURE)" : "") +
                                        ": no item can be subordinate to it");
        return;
    }
    if (parent.children.empty() || parent.children.front()->level == entry.level) return;
    // Some compilers take it, as an item of the group that it would be in by its number.
    context_.warning(entry.start, "level " + level_text(entry.level) + " follows level " +
                                      level_text(parent.children.front()->level) + " in " +
                                      name_of(parent) + "; it is taken as an item of that group");
}

// The item redefined is the last one at this level that is not a redefinition itself, or one of the
// redefinitions of it.
void RecordBuilder::check_redefines(const Entry& entry,
                                    const std::vector<std::unique_ptr<DataItem>>& siblings) {
    const DataItem& item = *entry.item;
    if (item.redefines.empty()) return;
    const bool follows_another = !siblings.empty() && siblings.back()->level == item.level &&
                                 siblings.back()->redefines == item.redefines;
    if (follows_another) return;
    int seen = 0;
    for (auto sibling = siblings.rbegin(); sibling != siblings.rend() && seen < MAX_REDEFINITIONS;
         ++sibling, ++seen) {
        if ((*sibling)->level != item.level) break;
        if ((*sibling)->name == item.redefines) return;
        if ((*sibling)->redefines.empty()) break;
    }
    context_.diagnostics.error(item.redefines_place,
                               "expected the name of the item before this one at level " +
                                   level_text(item.level) + ", found '" + item.redefines + "'");
}

}  // namespace records
