#include "records/layout/counter.h"

#include "records/numbers.h"

namespace records {

XfdDataDesc descriptor_of(const Operand& item, const std::uint8_t* bytes) {
    XfdDataDesc data{};
    data.address = const_cast<std::uint8_t*>(bytes);
    data.length = item.length;
    data.type = item.form.type;
    data.digits = static_cast<std::int8_t>(item.form.digits);
    data.scale = static_cast<std::int8_t>(item.form.scale);
    set_field_extra(data, {static_cast<std::int8_t>(item.form.stored_digits),
                           static_cast<std::int8_t>(item.form.stored_scale),
                           item.form.flags,
                           {}});
    return data;
}

std::optional<std::int32_t> count_of(const Operand& counter, const std::uint8_t* bytes,
                                     std::int32_t minimum, std::int32_t maximum) {
    Decimal number;
    const bool is_number = decode_field(descriptor_of(counter, bytes), number);
    if (!is_number || number.scale != 0 || number.count > 10) return std::nullopt;
    std::int64_t value = 0;
    for (int i = 0; i < number.count; ++i) {
        value = value * 10 + number.digits[static_cast<std::size_t>(i)];
    }
    if (number.negative && value != 0) return std::nullopt;
    if (value < minimum || value > maximum) return std::nullopt;
    return static_cast<std::int32_t>(value);
}

}  // namespace records
