// Reports numeric fields that hold no number.
#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "conversion/formats/record_format.h"
#include "tools/sxml/field_warnings.h"
#include "tools/sxml/record_fields.h"

namespace command {

// Bad numbers do not keep a record from being converted: the conversion has a defined result for
// each. The report names the first ones, and says at the end how many there were.
class NumberReport {
  public:
    // `xfd` and `fields` describe the records as they are in the file called `file_name`.
    NumberReport(const Xfd& xfd, const RecordFields& fields, std::string file_name);

    // To be called before and after a record is converted; the second call looks for the fields at
    // fault when there is a data exception more than at the first.
    void begin_record();
    void end_record(const conversion::Record& record, std::span<const Field> chosen,
                    std::int32_t length);
    // Says how many fields were not named.
    void finish() const;

  private:
    void report(const conversion::Record& record, const Field& field);

    const Xfd& xfd_;
    const RecordFields& fields_;
    std::string file_name_;
    std::uint64_t exceptions_before_ = 0;
    FieldWarnings warnings_;
};

}  // namespace command
