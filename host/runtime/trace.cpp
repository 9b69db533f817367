#include "host/trace.h"

#include <array>
#include <cerrno>
#include <charconv>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <string>
#include <string_view>

#include "host/runtime/trace_control.h"
#include "platform/environment.h"
#include "platform/files.h"

std::int16_t host_trace_on = 0;

namespace host {

namespace {

constexpr int BLANKS_PER_STEP = 2;
constexpr int DEEPEST_INDENT = 200;  // steps; deeper lines stand there, so that lines stay readable
constexpr std::size_t DUMP_BYTES_PER_LINE = 16;

struct Trace {
    std::FILE* file;   // null: standard error
    bool is_old;       // the file is still as it was found
    long long indent;  // running sum of the steps, never negative
    bool has_failed;   // a line could not be written
};

constinit Trace trace{};

std::FILE* output() {
    if (trace.file == nullptr) return stderr;
    if (trace.is_old) {
        trace.is_old = false;
        platform::empty_file(trace.file);
    }
    return trace.file;
}

// Ends a line, or several. That some are lost is said once.
void flush_lines() {
    std::FILE* const file = output();
    const bool is_written = std::fflush(file) == 0 && std::ferror(file) == 0;
    if (is_written || trace.has_failed) return;
    trace.has_failed = true;
    std::fprintf(stderr, "sxml: the trace cannot be written, and is incomplete: %s\n",
                 std::strerror(errno));
}

bool open_trace(int level, const std::string& file) {
    if (trace.file != nullptr) std::fclose(trace.file);
    trace = {};
    host_trace_on = static_cast<std::int16_t>(level);
    if (file.empty()) return true;
    trace.file = platform::open_to_append(file);
    trace.is_old = true;
    return trace.file != nullptr;
}

void indent_line() {
    const long long steps = trace.indent < DEEPEST_INDENT ? trace.indent : DEEPEST_INDENT;
    std::fprintf(output(), "%*s", static_cast<int>(steps) * BLANKS_PER_STEP, "");
}

void move_indent(std::int32_t step) {
    trace.indent += step;
    if (trace.indent < 0) trace.indent = 0;
}

// Writes the formatted text without the line end it may have.
HOST_PRINTF(1, 0) void print_line(const char* format, std::va_list arguments) {
    std::array<char, 1024> buffer;
    std::va_list again;
    va_copy(again, arguments);
    const int length = std::vsnprintf(buffer.data(), buffer.size(), format, arguments);
    if (length >= 0 && static_cast<std::size_t>(length) < buffer.size()) {
        std::string_view line(buffer.data(), static_cast<std::size_t>(length));
        if (line.ends_with('\n')) line.remove_suffix(1);
        std::fwrite(line.data(), 1, line.size(), output());
        std::fputc('\n', output());
    } else if (length >= 0) {
        std::vfprintf(output(), format, again);
        const std::size_t format_length = std::strlen(format);
        if (format_length == 0 || format[format_length - 1] != '\n') std::fputc('\n', output());
    }
    va_end(again);
    flush_lines();
}

void dump_line(const unsigned char* data, std::size_t offset, std::size_t count) {
    indent_line();
    std::fprintf(output(), "%08zx ", offset);
    for (std::size_t i = 0; i < DUMP_BYTES_PER_LINE; ++i) {
        if (i < count) {
            std::fprintf(output(), " %02x", static_cast<unsigned>(data[i]));
        } else {
            std::fputs("   ", output());
        }
    }
    std::fputs("  |", output());
    for (std::size_t i = 0; i < count; ++i) {
        std::fputc(data[i] >= 0x20 && data[i] < 0x7F ? data[i] : '.', output());
    }
    std::fputs("|\n", output());
}

int level_from_environment() {
    const char* text = platform::trusted_environment_variable("SXML_TRACE");
    if (text == nullptr || *text == '\0') return 0;
    const char* end = text + std::strlen(text);
    int level = 0;
    const auto [rest, error] = std::from_chars(text, end, level);
    if (error == std::errc() && rest == end && level >= 0 &&
        level <= std::numeric_limits<std::int16_t>::max()) {
        return level;
    }
    std::fprintf(stderr, "sxml: SXML_TRACE=%s in the environment is not a trace level (0 to 11)\n",
                 text);
    return 0;
}

// The file is emptied at the first line: until then a program can still reject it.
[[gnu::constructor]] void start_trace() {
    const int level = level_from_environment();
    const char* file = platform::trusted_environment_variable("SXML_TRACE_FILE");
    const char* name = level > 0 && file != nullptr ? file : "";
    if (!open_trace(level, name)) {
        std::fprintf(stderr, "sxml: cannot open SXML_TRACE_FILE %s: %s\n", name,
                     std::strerror(errno));
    }
}

}  // namespace

bool has_trace_failed() {
    return trace.has_failed;
}

bool set_trace(int level, const std::string& file) {
    const bool is_open = open_trace(level, file);
    output();
    return is_open;
}

}  // namespace host

using namespace host;

void host_trace(std::int32_t step, int level, const char* format, ...) {
    if (step < 0) move_indent(step);
    if (level <= host_trace_on && host_trace_on > 0) {
        indent_line();
        std::va_list arguments;
        va_start(arguments, format);
        print_line(format, arguments);
        va_end(arguments);
    }
    if (step > 0) move_indent(step);
}

void host_trace_printf(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    std::vfprintf(output(), format, arguments);
    va_end(arguments);
    flush_lines();
}

void host_trace_dump(int /*reserved1*/, int /*reserved2*/, const void* data, std::size_t length) {
    const auto* bytes = static_cast<const unsigned char*>(data);
    for (std::size_t offset = 0; offset < length; offset += DUMP_BYTES_PER_LINE) {
        const std::size_t left = length - offset;
        dump_line(bytes + offset, offset, left < DUMP_BYTES_PER_LINE ? left : DUMP_BYTES_PER_LINE);
    }
    flush_lines();
}
