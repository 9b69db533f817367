// Records to XML and back, for layouts that are made up at random.
//     SXML_ROUND_TRIP_LAYOUTS   how many (1,000)
//     SXML_ROUND_TRIP_SEED      where to begin; a failure names the seed of its layout
#include <algorithm>
#include <cstdlib>
#include <optional>
#include <random>
#include <string_view>

#include "host/runtime/trace_control.h"
#include "host/trace.h"
#include "records/copybook.h"
#include "tests/module/module_fixture.h"
#include "tests/module/random_layout.h"

namespace {

class RoundTripTest : public ModuleTest {
  protected:
    static std::uint64_t number_from(const char* variable, std::uint64_t fallback) {
        const char* const text = std::getenv(variable);
        return text != nullptr ? std::strtoull(text, nullptr, 10) : fallback;
    }

    // Compiles a copybook of `random`, with its choices; nothing after a failure.
    std::optional<records::Description> compile(RandomLayout& random) {
        const LayoutChoices choices = random.choices();
        set("4GL_COLUMN_CASE", std::to_string(static_cast<int>(choices.options.name_case)).c_str());
        set("SXML_ENCODING", choices.latin1 ? "ISO-8859-1" : "UTF-8");
        copybook = random.copybook();
        records::Diagnostics diagnostics;
        auto source = records::parse_copybook_text(copybook, "random.cpy", {}, diagnostics);
        if (source.has_value()) {
            source->decimal_point_is_comma = choices.decimal_comma;
            auto description = records::compile_description(*source, choices.options, diagnostics);
            if (description.has_value()) return description;
        }
        ADD_FAILURE() << copybook << diagnostics.text();
        return std::nullopt;
    }

    // Writes the records, reads them again into buffers of spaces.
    std::vector<std::string> there_and_back(Xfd* xfd, const std::vector<std::string>& records) {
        const std::string name = path("trip.xml");
        describe(name, xfd);
        XmlFile* const out = module().open(name.c_str(), XML_OPEN_OUTPUT);
        if (out == nullptr) return {"(not opened)"};
        for (const std::string& record : records) {
            module().write(out, record.data(), static_cast<std::uint32_t>(record.size()));
        }
        module().close(out);
        XmlFile* const in = module().open(name.c_str(), XML_OPEN_INPUT);
        if (in == nullptr) return {"(not opened again)"};
        std::vector<std::string> results;
        for (;;) {
            std::string record(records[0].size(), ' ');
            if (module().read(in, record.data()) == 0) break;
            results.push_back(record);
        }
        module().close(in);
        return results;
    }

    // The document of the records, written with the trace at `level`.
    std::string written(Xfd* xfd, const std::vector<std::string>& records, int level) {
        EXPECT_TRUE(host::set_trace(level, path("trace")));
        std::string text = document(xfd, records);
        EXPECT_TRUE(host::set_trace(0, ""));
        return text;
    }

    std::string copybook;

    // The names of the fields that differ, for a message.
    static std::string difference(const Xfd& xfd, const std::string& record,
                                  const std::string& result) {
        if (record.size() != result.size()) return result;
        std::string text;
        for (int i = 0; i < xfd.item_count; ++i) {
            const XfdItem& item = xfd.items[i];
            if (item.condition == XFD_GROUP) continue;
            const auto offset = static_cast<std::size_t>(item.offset);
            const auto length = static_cast<std::size_t>(item.data.length);
            const std::string before = record.substr(offset, length);
            const std::string after = result.substr(offset, length);
            if (before == after) continue;
            text += std::string(item.name) + " at " + std::to_string(offset) + " type " +
                    std::to_string(item.data.type) + ": " + ::testing::PrintToString(before) +
                    " became " + ::testing::PrintToString(after) + "\n";
        }
        return text;
    }
};

TEST_F(RoundTripTest, RandomLayoutsComeBackByteForByte) {
    use_compiled_conditions();
    set("SXML_CREATE_STYLE", "NONE");
    const std::uint64_t layouts = number_from("SXML_ROUND_TRIP_LAYOUTS", 1000);
    const std::uint64_t first_seed = number_from("SXML_ROUND_TRIP_SEED", 1);
    for (std::uint64_t seed = first_seed; seed < first_seed + layouts; ++seed) {
        RandomLayout random(seed);
        auto description = compile(random);
        ASSERT_TRUE(description.has_value()) << "seed " << seed;
        std::vector<std::string> originals(3);
        for (std::string& original : originals) original = random.record(*description);
        const std::vector<std::string> results = there_and_back(&description->xfd(), originals);
        ASSERT_EQ(results.size(), originals.size()) << "seed " << seed << "\n" << copybook;
        for (std::size_t i = 0; i < results.size(); ++i) {
            const std::string expected = RandomLayout::returned(*description, originals[i]);
            ASSERT_TRUE(results[i] == expected)
                << "seed " << seed << ", record " << i << "\n"
                << copybook << difference(description->xfd(), expected, results[i])
                << read(path("trip.xml"));
        }
    }
}

// A record as it may come from anywhere: valid, or with other bytes in some places or in all, or
// of another length.
std::string any_record(RandomLayout& random, records::Description& description,
                       std::mt19937_64& numbers) {
    constexpr std::string_view OFTEN("0123456789 0000    <>&'\"+-.\x0C\x1D\x7F\0\n\x9C\xE9", 34);
    std::string record = random.record(description);
    const auto below = [&numbers](std::size_t limit) { return numbers() % limit; };
    const std::size_t rate = std::size_t{1} << below(8);
    for (char& byte : record) {
        if (below(rate) == 0) byte = below(8) == 0 ? char(numbers()) : OFTEN[below(OFTEN.size())];
    }
    if (below(8) == 0) record.resize(below(record.size() + 1));
    if (below(8) == 0) std::fill(record.begin(), record.end(), OFTEN[below(OFTEN.size())]);
    return record;
}

// While something is traced, records are written by walking the items, else by a plan.
TEST_F(RoundTripTest, PlannedRecordsAreThoseOfTheWalk) {
    use_compiled_conditions();
    const std::uint64_t layouts = number_from("SXML_ROUND_TRIP_LAYOUTS", 300);
    const std::uint64_t first_seed = number_from("SXML_ROUND_TRIP_SEED", 1);
    for (std::uint64_t seed = first_seed; seed < first_seed + layouts; ++seed) {
        RandomLayout random(seed);
        auto description = compile(random);
        ASSERT_TRUE(description.has_value()) << "seed " << seed;
        std::mt19937_64 numbers(seed);
        std::vector<std::string> records(10);
        for (std::string& record : records) record = any_record(random, *description, numbers);
        Xfd* const xfd = &description->xfd();
        const std::string walked = written(xfd, records, HOST_TRACE_ENTRIES);
        ASSERT_EQ(written(xfd, records, HOST_TRACE_OFF), walked) << "seed " << seed << copybook;
    }
}

}  // namespace
