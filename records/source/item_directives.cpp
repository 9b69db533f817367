#include <algorithm>
#include <sstream>
#include <utility>

#include "records/copybook.h"
#include "records/source/text/text_case.h"

namespace records {

namespace {

// "A OF B" and "A IN B" as names, the item's own first; empty when it is not such a text.
std::vector<std::string> names_in(const std::string& text) {
    std::istringstream words(to_upper(text));
    std::vector<std::string> names;
    std::string word;
    for (bool is_name = true; words >> word; is_name = !is_name) {
        if (is_name) {
            names.push_back(word);
        } else if (word != "OF" && word != "IN") {
            return {};
        }
    }
    return names;
}

// Items of the wanted name, in groups that have the wanted qualifiers.
class ItemSearch {
  public:
    explicit ItemSearch(const std::vector<std::string>& names) : names_(names) {}

    std::vector<DataItem*> in(const RecordSource& source) {
        for (const auto& record : source.records) visit(*record);
        return std::move(found_);
    }

  private:
    void visit(DataItem& item) {
        if (item.name == names_.front() && is_qualified()) found_.push_back(&item);
        groups_.push_back(item.name);
        for (const auto& child : item.children) visit(*child);
        groups_.pop_back();
    }

    bool is_qualified() const {
        std::size_t wanted = 1;
        for (auto group = groups_.rbegin(); group != groups_.rend() && wanted < names_.size();
             ++group) {
            if (*group == names_[wanted]) ++wanted;
        }
        return wanted == names_.size();
    }

    const std::vector<std::string>& names_;
    std::vector<std::string> groups_;  // around the item, outermost first
    std::vector<DataItem*> found_;
};

// An item of a source that has only this directive before it.
std::unique_ptr<DataItem> item_with(const std::string& directive, const std::string& shown,
                                    Diagnostics& diagnostics) {
    std::string line = directive;
    std::replace_if(
        line.begin(), line.end(), [](char c) { return c == '\n' || c == '\r'; }, ' ');
    CopybookOptions options;
    options.format = SourceFormat::free;
    auto source =
        parse_copybook_text("*> sxml: " + line + "\n01 ITEM PIC X.\n", shown, options, diagnostics);
    if (!source || diagnostics.has_errors()) return nullptr;
    return std::move(source->records.front());
}

void apply(const ItemDirective& directive, const RecordSource& source, Diagnostics& diagnostics) {
    const std::string shown = directive.item + ": " + directive.directive;
    const std::vector<std::string> names = names_in(directive.item);
    const std::vector<DataItem*> found =
        names.empty() ? std::vector<DataItem*>() : ItemSearch(names).in(source);
    if (found.size() != 1) {
        diagnostics.error({}, shown + ": there " +
                                  (found.empty() ? "is no item of this name"
                                                 : "are several items of this name; qualify it "
                                                   "with OF and the name of a group"));
        return;
    }
    std::unique_ptr<DataItem> given = item_with(directive.directive, shown, diagnostics);
    if (!given) return;
    DataItem& item = *found.front();
    if (given->when) item.when = std::move(given->when);
    if (!given->xml_name.empty()) item.xml_name = std::move(given->xml_name);
    item.hidden = item.hidden || given->hidden;
}

}  // namespace

void complete_source(RecordSource& source, const CopybookOptions& options,
                     Diagnostics& diagnostics) {
    CopybookOptions own = options;
    own.fd.clear();
    for (const std::string& file : options.more_files) {
        diagnostics.add_file(file);
        std::optional<RecordSource> more = parse_copybook_file(file, own, diagnostics);
        if (!more) continue;
        source.record_contains = std::max(source.record_contains, more->record_contains);
        std::move(more->records.begin(), more->records.end(), std::back_inserter(source.records));
    }
    for (const ItemDirective& directive : options.directives) apply(directive, source, diagnostics);
}

}  // namespace records
