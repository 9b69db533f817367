#include "fsi/xml/handlers/records/plain_records.h"

#include <array>
#include <cstring>
#include <string_view>

#include "fsi/xml/elements/ascii_case.h"
#include "fsi/xml/handlers/handlers.h"
#include "fsi/xml/handlers/records/record_handlers.h"
#include "fsi/xml/handlers/records/record_tree.h"
#include "host/ascii_words.h"
#include "host/trace.h"
#include "host/utf8.h"

namespace {

// What a byte of text is; those up to RETURN may stand in any text that is not kept, those up to
// BLANK in one that is.
enum ByteClass : std::uint8_t { PLAIN, BLANK, RETURN, MARKUP, REFERENCE, BRACKET, HIGH, BAD };

constexpr std::array<ByteClass, 256> make_classes() {
    std::array<ByteClass, 256> classes{};
    for (std::size_t i = 0; i < classes.size(); ++i)
        classes[i] = i < 0x20 ? BAD : i >= 0x80 ? HIGH : PLAIN;
    classes[' '] = classes['\t'] = classes['\n'] = BLANK;
    classes['\r'] = RETURN;
    classes['<'] = MARKUP;
    classes['&'] = REFERENCE;
    classes[']'] = BRACKET;
    return classes;
}
constexpr auto CLASSES = make_classes();

constexpr std::array<bool, 256> make_name_bytes() {
    std::array<bool, 256> bytes{};
    for (std::size_t i = 0; i < 26; ++i) bytes['a' + i] = bytes['A' + i] = true;
    for (std::size_t i = '0'; i <= '9'; ++i) bytes[i] = true;
    bytes['_'] = bytes[':'] = bytes['-'] = bytes['.'] = true;
    return bytes;
}
constexpr auto NAME_BYTES = make_name_bytes();

ByteClass class_of(char c) {
    return CLASSES[static_cast<unsigned char>(c)];
}
bool is_space(char c) {
    return class_of(c) == BLANK || class_of(c) == RETURN;
}
bool is_in_name(char c) {
    return NAME_BYTES[static_cast<unsigned char>(c)];
}
bool begins_name(char c) {
    return is_in_name(c) && !(c >= '0' && c <= '9') && c != '-' && c != '.';
}

enum class Outcome {
    TAKEN,
    MORE,  // the input ends too early to tell
    OTHER  // not plain, or no memory
};

// Reads one record. The input is followed by a NUL, so one byte at its end may be looked at.
class RecordReader {
  public:
    explicit RecordReader(XmlParser& parser)
        : parser_(parser), tree_(*parser.record), at_(parser.position), end_(parser.end) {}
    RecordReader(const RecordReader&) = delete;
    RecordReader& operator=(const RecordReader&) = delete;

    Outcome read() {
        while (is_space(*at_)) ++at_;
        if (at_ == end_) return Outcome::MORE;
        if (*at_ != '<') return Outcome::OTHER;
        for (;;) {
            if (end_ - at_ < 3) return Outcome::MORE;
            const Outcome tag = at_[1] == '/' ? end_tag() : start_tag();
            if (tag != Outcome::TAKEN || depth_ == 0) return tag;
            const Outcome text = read_text();
            if (text != Outcome::TAKEN) return text;
        }
    }
    const char* position() const { return at_; }

  private:
    static constexpr std::size_t MOST_DEPTH = 64;
    static constexpr std::size_t MOST_ATTRIBUTES = 8;
    static constexpr std::size_t MOST_NAME = 200;

    Outcome end_tag() {
        if (depth_ == 0) return Outcome::OTHER;
        const std::string_view name = open_[depth_ - 1];
        if (static_cast<std::size_t>(end_ - at_) < name.size() + 3) return Outcome::MORE;
        if (std::memcmp(at_ + 2, name.data(), name.size()) != 0) return Outcome::OTHER;
        if (at_[2 + name.size()] != '>') return Outcome::OTHER;
        at_ += name.size() + 3;
        close();
        return Outcome::TAKEN;
    }

    Outcome start_tag() {
        const char* const start = at_ + 1;
        if (!begins_name(*start) || depth_ == MOST_DEPTH) return Outcome::OTHER;
        std::size_t length = 0;
        const std::uint32_t name = known_name(start, length);
        if (start + length >= end_) return Outcome::MORE;
        if (!name || !start_record_element(tree_, name)) return Outcome::OTHER;
        open_[depth_++] = {start, length};
        at_ = start + length;
        if (is_space(*at_)) {
            const Outcome outcome = attributes();
            if (outcome != Outcome::TAKEN) return outcome;
        }
        if (*at_ == '>') {
            ++at_;
            return Outcome::TAKEN;
        }
        if (*at_ != '/') return at_ == end_ ? Outcome::MORE : Outcome::OTHER;
        if (at_ + 1 == end_) return Outcome::MORE;
        if (at_[1] != '>') return Outcome::OTHER;
        at_ += 2;
        close();
        return Outcome::TAKEN;
    }

    // The number under which an element whose name begins at `start` is stored, and the length of
    // that name; 0 when there is none. Most names follow each other as they did the last time.
    std::uint32_t known_name(const char* start, std::size_t& length) {
        RecordNames& names = tree_.names;
        if (names.previous) {
            for (const std::uint32_t expected : names.names[names.previous].successors) {
                if (!expected || !names.names[expected].stored_as) continue;
                const char* const text = name_text(names, expected);
                for (length = 0; text[length] && text[length] == start[length];) ++length;
                if (text[length] || is_in_name(start[length])) continue;
                names.previous = expected;
                return names.names[expected].stored_as;
            }
        }
        for (length = 0; is_in_name(start[length]);) ++length;
        char name[MOST_NAME + 1];
        if (length > MOST_NAME || start + length >= end_) return 0;
        std::memcpy(name, start, length);
        name[length] = '\0';
        return stored_name_number(parser_, name);
    }

    // Reads white space and attributes up to the end of the tag.
    Outcome attributes() {
        std::string_view names[MOST_ATTRIBUTES];
        for (std::size_t count = 0;; ++count) {
            const char* const before = at_;
            while (is_space(*at_)) ++at_;
            if (at_ == end_) return Outcome::MORE;
            if (*at_ == '>' || *at_ == '/') return Outcome::TAKEN;
            if (at_ == before || !begins_name(*at_) || count == MOST_ATTRIBUTES)
                return Outcome::OTHER;
            const char* const start = at_;
            while (is_in_name(*at_)) ++at_;
            names[count] = {start, static_cast<std::size_t>(at_ - start)};
            for (std::size_t i = 0; i < count; ++i) {
                if (names[i] == names[count]) return Outcome::OTHER;
            }
            const Outcome value = attribute_value();
            if (value != Outcome::TAKEN) return value;
            if (!note(names[count])) return Outcome::OTHER;
        }
    }

    Outcome attribute_value() {
        if (end_ - at_ < 2) return Outcome::MORE;
        const char quote = at_[1];
        if (at_[0] != '=' || (quote != '"' && quote != '\'')) return Outcome::OTHER;
        for (at_ += 2; *at_ != quote; ++at_) {
            const ByteClass found = class_of(*at_);
            if (found > RETURN && found != BRACKET)
                return at_ == end_ ? Outcome::MORE : Outcome::OTHER;
        }
        ++at_;
        return Outcome::TAKEN;
    }

    // No record holds the value of an attribute. False for a name that is too long.
    bool note(std::string_view attribute) {
        if (!tree_.notes_unused) return true;
        char name[MOST_NAME + 1];
        if (attribute.size() > MOST_NAME) return false;
        std::memcpy(name, attribute.data(), attribute.size());
        name[attribute.size()] = '\0';
        note_attribute(tree_, name);
        return true;
    }

    // Reads text up to the next tag.
    Outcome read_text() {
        for (;;) {
            const char* const start = at_;
            const ByteClass found = skip_plain();
            if (!take(start, static_cast<std::size_t>(at_ - start))) return Outcome::OTHER;
            if (found == MARKUP) return Outcome::TAKEN;
            if (at_ == end_) return Outcome::MORE;
            if (found != HIGH && found != REFERENCE) return Outcome::OTHER;
            const Outcome outcome = found == HIGH ? sequence() : reference();
            if (outcome != Outcome::TAKEN) return outcome;
        }
    }

    // Steps over text of one byte a character. Result: what stands after it.
    ByteClass skip_plain() {
        using namespace ascii;
        const ByteClass last = tree_.keeps_text ? BLANK : RETURN;
        for (;;) {
            while (end_ - at_ >= static_cast<std::ptrdiff_t>(WORD_SIZE)) {
                const Word word = load(at_);
                constexpr Word ADDED = 0x7F * EACH;
                const Word brackets = (word ^ (']' * EACH)) + ADDED;
                if (is_odd(oddities(word)) || has_markup(lacks_markup(word) & brackets)) break;
                at_ += WORD_SIZE;
            }
            for (std::size_t i = 0; i < WORD_SIZE; ++i, ++at_) {
                const ByteClass found = class_of(*at_);
                if (found > last) return found;
            }
        }
    }

    // False when memory is exhausted.
    bool take(const char* text, std::size_t length) {
        if (length == 0) return true;
        if (tree_.keeps_text) return append_record_text(tree_, text, length);
        note_lost_text(tree_, text, length);
        return true;
    }

    Outcome sequence() {
        const auto left = static_cast<std::size_t>(end_ - at_);
        const std::size_t length = utf8::sequence_length(at_, left);
        if (length == 0) return left < 4 ? Outcome::MORE : Outcome::OTHER;
        if (!take(at_, length)) return Outcome::OTHER;
        at_ += length;
        return Outcome::TAKEN;
    }

    Outcome reference() {
        struct Entity {
            std::string_view text;
            char character;
        };
        static constexpr Entity ENTITIES[] = {
            {"&lt;", '<'}, {"&gt;", '>'}, {"&amp;", '&'}, {"&apos;", '\''}, {"&quot;", '"'}};
        constexpr std::size_t LONGEST = 6;
        const auto left = static_cast<std::size_t>(end_ - at_);
        for (const Entity& entity : ENTITIES) {
            const std::size_t length = entity.text.size();
            if (left < length || std::memcmp(at_, entity.text.data(), length) != 0) continue;
            if (!take(&entity.character, 1)) return Outcome::OTHER;
            at_ += length;
            return Outcome::TAKEN;
        }
        return left < LONGEST ? Outcome::MORE : Outcome::OTHER;
    }

    void close() {
        tree_.elements[tree_.current].is_trimmed = true;
        end_record_element(tree_);
        --depth_;
    }

    XmlParser& parser_;
    RecordTree& tree_;
    const char* at_;
    const char* const end_;
    std::string_view open_[MOST_DEPTH];  // names of the open elements
    std::size_t depth_ = 0;
};

bool is_utf8(const XmlParser& parser) {
    if (parser.input_encoding != HOST_ENCODING_UTF8) return false;
    const char* const name = parser.encoding_name;
    return !name || equal_ignoring_case(name, "UTF-8");
}

// Whether Expat has read all that lies before the input's position, and stands between two children
// of the document element.
bool is_between_records(const XmlParser& parser) {
    constexpr std::uint32_t OTHERWISE =
        XMLPS_FAILED | XMLPS_OUT_OF_MEMORY | XMLPS_INPUT_ENDED | XMLPS_REPLAYING | XMLPS_ROOT_ENDED;
    if (parser.depth != 1 || parser.first_early || (parser.state & OTHERWISE)) return false;
    return current_byte_index(parser) + current_byte_count(parser) ==
           static_cast<std::int64_t>(parser.bytes_fed);
}

// Moves what is left to the start of the buffer and reads more after it. False at the end of the
// input, or when the buffer is full.
bool fill_up(XmlParser& parser, HostStream* stream) {
    const auto left = static_cast<std::size_t>(parser.end - parser.position);
    if (left > 0) std::memmove(parser.buffer, parser.position, left);
    parser.position = parser.buffer;
    parser.end = parser.buffer + left;
    if (left == XML_READ_SIZE) return false;
    const std::size_t count = host_fread(parser.end, 1, XML_READ_SIZE - left, stream);
    parser.end += count;
    return count > 0;
}

// Reading records twice is wasteful where most of them are not plain.
void count_refused(XmlParser& parser) {
    constexpr std::uint32_t TRIED = 64;
    constexpr std::uint32_t WORTH_IT = 8;
    ++parser.records_refused;
    const std::uint64_t wanted = std::uint64_t{WORTH_IT} * parser.records_refused;
    if (parser.records_refused >= TRIED && parser.records_taken < wanted) {
        forbid_plain_records(parser);
    }
}

}  // namespace

void allow_plain_records(XmlParser& parser) {
    parser.state |= XMLPS_PLAIN_RECORDS;
    XML_SetAttlistDeclHandler(parser.expat, attlist_decl);
}

bool take_plain_record(XmlParser& parser, HostStream* stream) {
    if (!(parser.state & XMLPS_PLAIN_RECORDS) || !parser.record || !stream || host_trace_on)
        return false;
    if (!is_utf8(parser)) {
        forbid_plain_records(parser);
        return false;
    }
    if (!is_between_records(parser)) return false;
    bool may_fill_up = true;
    for (;;) {
        *parser.end = '\0';
        RecordReader reader(parser);
        const Outcome outcome = reader.read();
        if (outcome == Outcome::TAKEN) {
            parser.bytes_passed += static_cast<std::uint64_t>(reader.position() - parser.position);
            parser.position += reader.position() - parser.position;
            parser.state |= XMLPS_RECORD_STARTED;
            ++parser.records_taken;
            return true;
        }
        clear_record(*parser.record);
        if (outcome == Outcome::OTHER || !may_fill_up || !fill_up(parser, stream)) break;
        may_fill_up = false;
    }
    count_refused(parser);
    return false;
}
