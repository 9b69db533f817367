#include "records/option_names.h"

namespace records {

const Choices<SourceFormat> SOURCE_FORMATS = {{"detect", SourceFormat::detect},
                                              {"fixed", SourceFormat::fixed},
                                              {"free", SourceFormat::free},
                                              {"variable", SourceFormat::variable}};
const Choices<BinarySize> BINARY_SIZES = {{"1--8", BinarySize::smallest},
                                          {"1-2-4-8", BinarySize::by_digits_1248},
                                          {"2-4-8", BinarySize::by_digits_248}};
const Choices<ByteOrder> BYTE_ORDERS = {{"big-endian", ByteOrder::big_endian},
                                        {"native", ByteOrder::native}};
const Choices<Machine> MACHINES = {{"mainframe", Machine::mainframe}, {"native", Machine::native}};
const Choices<MovingData> MOVING_DATA = {{"fixed", MovingData::fixed},
                                         {"refuse", MovingData::refused},
                                         {"sliding", MovingData::sliding}};
const Choices<NationalSize> NATIONAL_SIZES = {{"2", NationalSize::two_bytes},
                                              {"cobc-3.1", NationalSize::cobc_3_1},
                                              {"cobc-3.2", NationalSize::cobc_3_2}};

std::optional<ItemDirective> condition_directive(std::string_view text) {
    const std::size_t colon = text.find(':');
    if (colon == std::string_view::npos) return std::nullopt;
    const std::size_t condition = text.find_first_not_of(" \t", colon + 1);
    if (condition == std::string_view::npos) return std::nullopt;
    return ItemDirective{std::string(text.substr(0, colon)),
                         "when " + std::string(text.substr(condition))};
}

std::optional<ItemDirective> name_directive(std::string_view text) {
    const std::size_t equals = text.find('=');
    if (equals == std::string_view::npos) return std::nullopt;
    return ItemDirective{std::string(text.substr(0, equals)),
                         "name " + std::string(text.substr(equals + 1))};
}

}  // namespace records
