// Nanoseconds per conversion of each usage, field to text and text to field, beside what the COBOL
// runtime library takes to move the same field to a numeric edited item and the same text from an
// alphanumeric one. One iteration converts one field; the values vary.
#include <benchmark/benchmark.h>
#include <libcob.h>

#include <array>
#include <cstdio>
#include <random>
#include <string>
#include <vector>

#include "records/field_types.h"
#include "records/numbers.h"

namespace {

using namespace records;

struct Usage {
    const char* name;
    FieldType type;
    std::uint16_t cob_type;
    std::uint16_t cob_flags;
    int digits;
    int scale;
    int length;
    int flags;
};

constexpr std::uint16_t SIGNED = COB_FLAG_HAVE_SIGN;
constexpr std::uint16_t BINARY = COB_FLAG_BINARY_SWAP | COB_FLAG_BINARY_TRUNC;

const Usage USAGES[] = {
    {"9(5)", DISPLAY_UNSIGNED, COB_TYPE_NUMERIC_DISPLAY, 0, 5, 0, 5, 0},
    {"S9(5)V99", DISPLAY_SIGN_TRAILING, COB_TYPE_NUMERIC_DISPLAY, SIGNED, 7, -2, 7, 0},
    {"S9(5)V99_LEADING_SEPARATE", DISPLAY_SIGN_LEADING_SEPARATE, COB_TYPE_NUMERIC_DISPLAY,
     SIGNED | COB_FLAG_SIGN_SEPARATE | COB_FLAG_SIGN_LEADING, 7, -2, 8, 0},
    {"S9(38)", DISPLAY_SIGN_TRAILING, COB_TYPE_NUMERIC_DISPLAY, SIGNED, 38, 0, 38, 0},
    {"S9(5)V99_COMP-3", PACKED_SIGNED, COB_TYPE_NUMERIC_PACKED, SIGNED, 7, -2, 4, 0},
    {"S9(18)_COMP-3", PACKED_SIGNED, COB_TYPE_NUMERIC_PACKED, SIGNED, 18, 0, 10, 0},
    {"9(6)_COMP-6", PACKED_NO_SIGN, COB_TYPE_NUMERIC_PACKED, COB_FLAG_NO_SIGN_NIBBLE, 6, 0, 3, 0},
    {"S9(4)_COMP", BINARY_SIGNED, COB_TYPE_NUMERIC_BINARY, SIGNED | BINARY, 4, 0, 2,
     FIELD_TRUNCATE},
    {"S9(9)_COMP", BINARY_SIGNED, COB_TYPE_NUMERIC_BINARY, SIGNED | BINARY, 9, 0, 4,
     FIELD_TRUNCATE},
    {"S9(18)_COMP-5", NATIVE_SIGNED, COB_TYPE_NUMERIC_BINARY, SIGNED | COB_FLAG_REAL_BINARY, 18, 0,
     8, 0},
    {"COMP-1", FLOAT_NATIVE, COB_TYPE_NUMERIC_FLOAT, SIGNED | COB_FLAG_IS_FP, 7, -2, 4, 0},
    {"COMP-2", FLOAT_NATIVE, COB_TYPE_NUMERIC_DOUBLE, SIGNED | COB_FLAG_IS_FP, 12, -2, 8, 0},
};

constexpr std::size_t VALUES = 256;

// The same values as texts and as fields, and an edited item for the runtime library.
struct Samples {
    const Usage& usage;
    std::vector<std::string> texts;
    std::string fields;
    XfdDataDesc item{};
    std::vector<cob_pic_symbol> picture;
    cob_field_attr attributes{};
    cob_field_attr edited_attributes{};

    explicit Samples(const Usage& of) : usage(of) {
        item.type = usage.type;
        item.length = usage.length;
        item.digits = static_cast<std::int8_t>(usage.digits);
        item.scale = static_cast<std::int8_t>(usage.scale);
        set_field_extra(item,
                        {item.digits, item.scale, static_cast<std::uint8_t>(usage.flags), {}});
        make_values();
        const int decimals = -usage.scale;
        picture = {{'-', usage.digits - decimals}, {'9', 1}};
        if (decimals > 0) picture.insert(picture.end(), {{'.', 1}, {'9', decimals}});
        picture.push_back({'\0', 0});
        attributes = {usage.cob_type, static_cast<std::uint16_t>(usage.digits),
                      static_cast<std::int16_t>(decimals), usage.cob_flags, nullptr};
        edited_attributes = {COB_TYPE_NUMERIC_EDITED, static_cast<std::uint16_t>(usage.digits),
                             static_cast<std::int16_t>(decimals), SIGNED, picture.data()};
    }

    XfdDataDesc text_descriptor(char* address, std::size_t length) const {
        XfdDataDesc text = item;
        text.type = TEXT;
        text.address = address;
        text.length = static_cast<std::int32_t>(length);
        return text;
    }

    std::size_t text_length() const {
        const int length = usage.digits + (usage.scale < 0 ? 2 : 1);
        return static_cast<std::size_t>(length);
    }

    std::uint8_t* field(std::size_t i) {
        return reinterpret_cast<std::uint8_t*>(fields.data()) +
               i * static_cast<std::size_t>(usage.length);
    }

  private:
    void make_values() {
        std::mt19937 random(1);
        fields.resize(VALUES * static_cast<std::size_t>(usage.length));
        const bool negatives = (usage.cob_flags & COB_FLAG_HAVE_SIGN) != 0;
        for (std::size_t i = 0; i < VALUES; ++i) {
            const auto digits = 1 + random() % static_cast<unsigned>(usage.digits);
            std::string text;
            for (unsigned k = 0; k < digits; ++k) {
                text += static_cast<char>((k == 0 ? '1' : '0') + random() % 9);
            }
            const auto decimals = static_cast<std::size_t>(-usage.scale);
            if (decimals > 0) {
                if (text.size() <= decimals) text.insert(0, decimals + 1 - text.size(), '0');
                text.insert(text.size() - decimals, 1, '.');
            }
            if (negatives && random() % 4 == 0) text.insert(0, 1, '-');
            item.address = field(i);
            const XfdDataDesc source = text_descriptor(text.data(), text.size());
            Qconvert(&item, &source, 1);
            texts.push_back(std::move(text));
        }
    }
};

void field_to_text(benchmark::State& state, const Usage* usage) {
    Samples samples(*usage);
    std::array<char, 64> text{};
    XfdDataDesc to = samples.text_descriptor(text.data(), samples.text_length());
    std::size_t i = 0;
    while (state.KeepRunning()) {
        samples.item.address = samples.field(i++ % VALUES);
        benchmark::DoNotOptimize(Qconvert(&to, &samples.item, 1));
    }
    state.SetItemsProcessed(state.iterations());
}

void text_to_field(benchmark::State& state, const Usage* usage) {
    Samples samples(*usage);
    std::array<std::uint8_t, 64> bytes{};
    samples.item.address = bytes.data();
    std::size_t i = 0;
    while (state.KeepRunning()) {
        std::string& text = samples.texts[i++ % VALUES];
        const XfdDataDesc from = samples.text_descriptor(text.data(), text.size());
        benchmark::DoNotOptimize(Qconvert(&samples.item, &from, 1));
    }
    state.SetItemsProcessed(state.iterations());
}

void libcob_field_to_edited(benchmark::State& state, const Usage* usage) {
    Samples samples(*usage);
    std::array<std::uint8_t, 64> text{};
    cob_field from{static_cast<std::size_t>(usage->length), nullptr, &samples.attributes};
    cob_field to{samples.text_length(), text.data(), &samples.edited_attributes};
    std::size_t i = 0;
    while (state.KeepRunning()) {
        from.data = samples.field(i++ % VALUES);
        cob_move(&from, &to);
        benchmark::DoNotOptimize(text);
    }
    state.SetItemsProcessed(state.iterations());
}

void libcob_text_to_field(benchmark::State& state, const Usage* usage) {
    Samples samples(*usage);
    std::array<std::uint8_t, 64> bytes{};
    const cob_field_attr characters{COB_TYPE_ALPHANUMERIC, 0, 0, 0, nullptr};
    cob_field from{0, nullptr, &characters};
    cob_field to{static_cast<std::size_t>(usage->length), bytes.data(), &samples.attributes};
    std::size_t i = 0;
    while (state.KeepRunning()) {
        std::string& text = samples.texts[i++ % VALUES];
        from.data = reinterpret_cast<std::uint8_t*>(text.data());
        from.size = text.size();
        cob_move(&from, &to);
        benchmark::DoNotOptimize(bytes);
    }
    state.SetItemsProcessed(state.iterations());
}

// The runtime library wants to know the conventions of the program that it works for.
void start_libcob() {
    cob_init(0, nullptr);
    cob_module* module = nullptr;
    cob_global* global = nullptr;
    cob_module_enter(&module, &global, 0);
    module->decimal_point = '.';
    module->currency_symbol = '$';
    module->numeric_separator = ',';
    module->flag_binary_truncate = 1;
}

}  // namespace

int main(int argc, char** argv) {
    start_libcob();
    for (const Usage& usage : USAGES) {
        const auto add = [&](const char* what, auto function) {
            benchmark::RegisterBenchmark((std::string(usage.name) + "/" + what).c_str(), function,
                                         &usage);
        };
        add("to_text", field_to_text);
        add("to_text_libcob", libcob_field_to_edited);
        add("from_text", text_to_field);
        add("from_text_libcob", libcob_text_to_field);
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
