// Builds the tree of a record from its entries.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "records/data_item.h"
#include "records/source/entry_parser.h"
#include "records/source/parse_context.h"

namespace records {

class RecordBuilder {
  public:
    // Records go to `records`. Entries above which no level 01 stands go into an implied record of
    // the name given.
    RecordBuilder(std::vector<std::unique_ptr<DataItem>>& records, std::string implied_name,
                  ParseContext& context);

    void add(Entry entry);

  private:
    void add_condition(Entry& entry);
    void add_record(Entry& entry);
    void add_subordinate(Entry& entry);
    void open_implied_record(const Entry& entry);
    void check_level(const Entry& entry, const DataItem& parent);
    void check_redefines(const Entry& entry,
                         const std::vector<std::unique_ptr<DataItem>>& siblings);

    std::vector<std::unique_ptr<DataItem>>& records_;
    std::string implied_name_;
    ParseContext& context_;
    std::vector<DataItem*> open_;  // the last item and its groups, outermost first
};

}  // namespace records
