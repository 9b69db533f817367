// What users call the choices of CopybookOptions and LayoutOptions, whether they give them to the
// command or to a library.
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "records/description.h"

namespace records {

template <class Value>
using Choices = std::map<std::string, Value, std::less<>>;

extern const Choices<SourceFormat> SOURCE_FORMATS;
extern const Choices<BinarySize> BINARY_SIZES;
extern const Choices<ByteOrder> BYTE_ORDERS;
extern const Choices<Machine> MACHINES;
extern const Choices<MovingData> MOVING_DATA;
extern const Choices<NationalSize> NATIONAL_SIZES;

// "RECORD: CONDITION" as the directive when of that record or item. Nothing when the colon or the
// condition is missing. Throws std::bad_alloc.
std::optional<ItemDirective> condition_directive(std::string_view text);

// "FIELD=ELEMENT" as the directive name of that field, record or group. Nothing without "=": the
// text then names the document element. Throws std::bad_alloc.
std::optional<ItemDirective> name_directive(std::string_view text);

}  // namespace records
