#include "conversion/formats/record_format.h"

#include <algorithm>
#include <charconv>
#include <utility>

#include "conversion/formats/fixed_records.h"
#include "conversion/formats/headed_records.h"
#include "conversion/formats/last_record.h"
#include "conversion/formats/line_records.h"

namespace conversion {

namespace {

using Kind = RecordFormat::Kind;

constexpr std::uint32_t LARGEST_BLOCK = 32760;  // that mainframes write with a header of two bytes
constexpr std::uint32_t SMALLEST_BLOCK = 9;     // a record of one byte and two headers

// Headers: size, bytes of the length, least significant byte first, counts itself, segments.
const std::vector<RecordFormat> WITH_LENGTHS = {
    {"bdw", Kind::blocks, {4, 2, false, true, true}, LARGEST_BLOCK},
    {"rdw", Kind::headed, {4, 2, false, true, true}},
    {"rdw:little", Kind::headed, {4, 2, true, true, true}},
    {"gnucobol", Kind::headed, {4, 2, false, false, false}},
    {"rdw:payload", Kind::headed, {4, 2, false, false, true}},
    {"gnucobol:1", Kind::headed, {4, 4, false, false, false}},
    {"gnucobol:2", Kind::headed, {4, 4, true, false, false}},
    {"rdw:little:payload", Kind::headed, {4, 2, true, false, true}},
    {"gnucobol:3", Kind::headed, {2, 2, false, false, false}},
};

// Other names of formats.
std::string_view usual_name(std::string_view name) {
    if (name == "gnucobol:0") return "gnucobol";
    if (name == "rdw:payload:little") return "rdw:little:payload";
    return name;
}

// The size in "bdw:SIZE"; 0 when it is not one.
std::uint32_t block_size_in(std::string_view name) {
    constexpr std::string_view PREFIX = "bdw:";
    if (!name.starts_with(PREFIX)) return 0;
    std::uint32_t size = 0;
    const char* const end = name.data() + name.size();
    const auto [after, error] = std::from_chars(name.data() + PREFIX.size(), end, size);
    const bool is_size = error == std::errc() && after == end && size >= SMALLEST_BLOCK;
    return is_size && size <= LARGEST_BLOCK ? size : 0;
}

}  // namespace

const std::vector<RecordFormat>& RecordFormat::with_lengths() {
    return WITH_LENGTHS;
}

Result<RecordFormat> RecordFormat::find(std::string_view name) {
    const std::string_view wanted = usual_name(name);
    if (wanted == "fixed") return RecordFormat{.is_asked_for = true};
    if (wanted == "line") return RecordFormat{"line", Kind::lines};
    const auto found = std::ranges::find(WITH_LENGTHS, wanted, &RecordFormat::name);
    if (found != WITH_LENGTHS.end()) return *found;
    if (const std::uint32_t size = block_size_in(wanted)) {
        return RecordFormat{std::string(wanted), Kind::blocks, WITH_LENGTHS.front().header, size};
    }
    const Place place;
    return Problem{Cause::usage, place, "there is no record format " + std::string(name),
                   "there are fixed, line, rdw, rdw:little, rdw:payload, rdw:little:payload, bdw, "
                   "bdw:SIZE (9 to 32760), gnucobol, gnucobol:1, gnucobol:2 and gnucobol:3"};
}

std::unique_ptr<RecordReader> read_records(const RecordFormat& format, ByteSource& source,
                                           RecordArea area) {
    auto reader = format.kind == Kind::fixed   ? read_fixed_records(format, source, area)
                  : format.kind == Kind::lines ? read_line_records(source, area)
                                               : read_headed_records(format, source, area);
    return area.tells_last ? telling_last(std::move(reader), area.length) : std::move(reader);
}

std::unique_ptr<RecordWriter> write_records(const RecordFormat& format, ByteSink& sink) {
    if (format.kind == Kind::fixed) return write_fixed_records(sink);
    if (format.kind == Kind::lines) return write_line_records(sink);
    return write_headed_records(format, sink);
}

}  // namespace conversion
