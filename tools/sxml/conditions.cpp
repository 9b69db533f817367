#include "tools/sxml/conditions.h"

#include "records/description.h"

namespace command {

namespace {

const Xfd* evaluated = nullptr;

}  // namespace

void evaluate_conditions(Xfd& xfd, const void* record) {
    for (int number = 1; number <= xfd.condition_count; ++number) {
        Q4TestCOBOLCond(&xfd, number, record);
    }
    evaluated = &xfd;
}

extern "C" int give_condition_result(Xfd* xfd, int number, const void* record) {
    if (evaluated == nullptr || number < 1 || number > evaluated->condition_count) {
        return Q4TestCOBOLCond(xfd, number, record);
    }
    const std::uint8_t result = evaluated->conditions[number - 1].is_true & 1;
    xfd->conditions[number - 1].is_true = result;
    return result;
}

}  // namespace command
