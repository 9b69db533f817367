#include "records/numbers/decimals.h"

namespace records::numbers {
namespace {

int leading_zeros(const Decimal& number) {
    int zeros = 0;
    while (zeros < number.count && number.digits[static_cast<std::size_t>(zeros)] == 0) ++zeros;
    return zeros;
}

}  // namespace

int compare_magnitudes(const Decimal& first, const Decimal& second) {
    int i = leading_zeros(first);
    int k = leading_zeros(second);
    // The place of each number's first digit that counts decides, then digit by digit.
    const std::int64_t first_place = std::int64_t{first.count} - i + first.scale;
    const std::int64_t second_place = std::int64_t{second.count} - k + second.scale;
    if (first_place != second_place) return first_place < second_place ? -1 : 1;
    for (; i < first.count || k < second.count; ++i, ++k) {
        const int digit = i < first.count ? first.digits[static_cast<std::size_t>(i)] : 0;
        const int other = k < second.count ? second.digits[static_cast<std::size_t>(k)] : 0;
        if (digit != other) return digit < other ? -1 : 1;
    }
    return 0;
}

}  // namespace records::numbers
