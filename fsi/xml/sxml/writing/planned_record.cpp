#include "fsi/xml/sxml/writing/planned_record.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <utility>

#include "fsi/xml/elements/text_output.h"
#include "fsi/xml/sxml/items.h"
#include "host/ascii_words.h"

namespace {

using ascii::Word;
using ascii::WORD_SIZE;

// Where a record is put together: bytes go to `at`, and the output learns of them when others need
// it.
struct Room {
    RecordOutput& output;
    char* at;
    const char* end;

    explicit Room(RecordOutput& to) : output(to), at(to.room_for(0)), end(to.end()) {}
    // Makes room for `size` bytes, at most RecordOutput::CAPACITY.
    void have(std::size_t size) {
        if (size > static_cast<std::size_t>(end - at)) have_after_flush(size);
    }
    void hand_over() const { output.keep_to(at); }
    // After others have written.
    void take_over() { at = output.room_for(0); }

  private:
    [[gnu::noinline]] void have_after_flush(std::size_t size) {
        hand_over();
        at = output.room_for(size);
    }
};

// Puts markup of a plan, in steps: there must be room for one more than it needs.
[[gnu::always_inline]] inline void put_markup(Room& room, const char* markup, std::size_t length) {
    char* const at = room.at;
    std::memcpy(at, markup, MARKUP_READ_SIZE);
    for (std::size_t i = MARKUP_READ_SIZE; i < length; i += MARKUP_READ_SIZE) {
        std::memcpy(at + i, markup + i, MARKUP_READ_SIZE);
    }
    room.at = at + length;
}

[[gnu::noinline]] void put_long_markup(Room& room, const char* markup, std::size_t length) {
    while (length > 0) {
        const std::size_t piece = std::min(length, MOST_MARKUP_AT_ONCE);
        room.have(piece + MARKUP_READ_SIZE);
        put_markup(room, markup, piece);
        markup += piece;
        length -= piece;
    }
}

// Puts markup of a step, or a part of it, and makes room for the field after it.
[[gnu::always_inline]] inline void write_markup(Room& room, const PlanStep& step,
                                                const char* markup, std::size_t length) {
    if (step.markup_length > MOST_MARKUP_AT_ONCE) {
        put_long_markup(room, markup, length);
        room.have(step.room);
    } else {
        room.have(step.room);
        put_markup(room, markup, length);
    }
}

// Copies a text of printable characters, markup characters as entities.
char* put_escaped(char* at, const char* text, std::size_t length) {
    for (const char* const end = text + length; text != end; ++text) {
        const std::string_view entity = markup_entity(static_cast<unsigned char>(*text));
        if (entity.empty()) {
            *at++ = *text;
        } else {
            at = std::copy(entity.begin(), entity.end(), at);
        }
    }
    return at;
}

// What a look at a text while it was copied has shown.
struct Look {
    Word odd = 0;
    Word lacking = ascii::HIGH_BITS;

    void at(Word word) {
        odd |= ascii::oddities(word);
        lacking &= ascii::lacks_markup(word);
    }
};

// Copies a text, in words; up to a word is written beyond its end. The last word overlaps the one
// before it, so nothing but the text is read.
Look copy(char* at, const char* text, std::size_t length) {
    Look look;
    if (length <= WORD_SIZE) {
        const Word word = ascii::load_short(text, length);
        look.at(word);
        std::memcpy(at, &word, sizeof word);
        return look;
    }
    const std::size_t last = length - WORD_SIZE;
    for (std::size_t i = 0; i < last; i += WORD_SIZE) {
        const Word word = ascii::load(text + i);
        look.at(word);
        std::memcpy(at + i, &word, sizeof word);
    }
    const Word word = ascii::load(text + last);
    look.at(word);
    std::memcpy(at + last, &word, sizeof word);
    return look;
}

// Puts a text of one word. False: nothing was put, since it begins with a blank or has to be
// escaped.
bool put_word(Room& room, Word word) {
    const Word other = word ^ ascii::BLANKS;
    if (other == 0) return true;
    const bool begins_blank = (other & 0xFF) == 0;
    if (begins_blank || ascii::is_odd(ascii::oddities(word)) ||
        ascii::has_markup(ascii::lacks_markup(word))) {
        return false;
    }
    std::memcpy(room.at, &word, sizeof word);
    room.at += WORD_SIZE - static_cast<std::size_t>(std::countl_zero(other)) / 8;
    return true;
}

// Puts a text of at most two words, that are `distance` bytes apart and may overlap. False: nothing
// was put, since it begins with a blank or has to be escaped.
bool put_words(Room& room, Word first, Word last, std::size_t distance) {
    Look look;
    look.at(first);
    look.at(last);
    if (ascii::is_odd(look.odd) || ascii::has_markup(look.lacking)) return false;
    std::memcpy(room.at, &first, sizeof first);
    std::memcpy(room.at + distance, &last, sizeof last);
    const Word other = last ^ ascii::BLANKS;
    if (other != 0 && *room.at != ' ') {
        room.at += distance + WORD_SIZE - static_cast<std::size_t>(std::countl_zero(other)) / 8;
        return true;
    }
    const Word other_first = first ^ ascii::BLANKS;
    if (*room.at == ' ') return (other | other_first) == 0;
    room.at += WORD_SIZE - static_cast<std::size_t>(std::countl_zero(other_first)) / 8;
    return true;
}

// Puts a text of any length. False: nothing was put, since it has other characters.
bool put_text(Room& room, std::string_view text) {
    const std::size_t length = ascii::length_without_blanks(text.data(), text.size());
    const Look look = copy(room.at, text.data(), length);
    if (ascii::is_odd(look.odd)) return false;
    if (*room.at != ' ' && !ascii::has_markup(look.lacking)) {
        room.at += length;
    } else {
        const std::size_t first = std::min(text.find_first_not_of(' '), length);
        room.at = put_escaped(room.at, text.data() + first, length - first);
    }
    return true;
}

// A field of at most a word, from a record that goes on for a word.
Word load_field(const char* field, std::size_t length) {
    const Word beyond = length < WORD_SIZE ? ~Word{0} << (8 * length) : 0;
    const Word word = ascii::load(field);
    return word ^ ((word ^ ascii::BLANKS) & beyond);
}

// Any text. Those with other than printable ASCII characters take the slow path.
[[gnu::noinline]] void write_any_text(RecordWriter& writer, const PlanStep& step, Room& room) {
    const XfdItem& field = writer.xfd.items[step.item];
    const std::string_view text = writer.text_giver == nullptr
                                      ? std::string_view(writer.record + step.offset, step.length)
                                      : characters_of(writer, field);
    if (text.size() <= MOST_PLANNED_TEXT) {
        room.have(room_for_text(text.size()));
        if (put_text(room, text)) return;
    }
    room.hand_over();
    write_characters(writer, field, text);
    room.take_over();
}

void write_text(RecordWriter& writer, const PlanStep& step, Room& room) {
    if (writer.text_giver == nullptr && step.length <= 2 * WORD_SIZE) {
        const char* const text = writer.record + step.offset;
        if (step.length > WORD_SIZE) {
            const std::size_t distance = step.length - WORD_SIZE;
            const Word last = ascii::load(text + distance);
            if (put_words(room, ascii::load(text), last, distance)) return;
        } else {
            const std::size_t left = writer.record_length - static_cast<std::size_t>(step.offset);
            const Word word = left >= WORD_SIZE ? load_field(text, step.length)
                                                : ascii::load_short(text, step.length);
            if (put_word(room, word)) return;
        }
    }
    write_any_text(writer, step, room);
}

// The host makes the text where it is to be.
void write_number(RecordWriter& writer, const PlanStep& step, Room& room) {
    XfdItem& field = writer.xfd.items[step.item];
    const std::size_t length = step.length;
    char* const text = room.at;
    std::memset(text, ' ', NUMBER_RUN);
    for (std::size_t i = NUMBER_RUN; i < length; i += NUMBER_RUN) {
        std::memset(text + i, ' ', NUMBER_RUN);
    }
    convert_number(field, writer.record + step.offset, {text, length});
    const bool is_plain = ascii::is_printable(text, std::max(length, WORD_SIZE));
    const bool has_point =
        writer.xfd.conventions == nullptr || writer.xfd.conventions->decimal_point == '.';
    if (is_plain && has_point) {
        const std::size_t end = ascii::length_without_blanks(text, length);
        room.at = text + std::max(end, std::min<std::size_t>(length, 1));
        return;
    }
    const std::size_t end = finish_number(writer.xfd, text, length);
    if (is_plain) {
        room.at = text + end;
        return;
    }
    char copy[MOST_NUMBER_TEXT];
    std::memcpy(copy, text, end);
    room.hand_over();
    writer.output.write({copy, end});
    room.take_over();
}

void write_value(RecordWriter& writer, const PlanStep& step, Room& room) {
    if (step.condition != 0 && !condition_holds(writer.xfd, step.condition)) return;
    switch (step.kind) {
        case PlanStep::TEXT:
            return write_text(writer, step, room);
        case PlanStep::NUMBER:
            return write_number(writer, step, room);
        default:
            room.hand_over();
            write_field(writer, step.item);
            room.take_over();
    }
}

// The first child from `number` on that the record has no place for; null when there is none.
const PlanChild* missing_child(const LayoutPlan& plan, std::uint32_t number, std::uint32_t length) {
    for (; number < plan.child_count; ++number) {
        if (plan.children[number].extent > length) return plan.children + number;
    }
    return nullptr;
}

}  // namespace

// One loop for all records, so that everything that it calls for each field becomes a part of it.
void write_planned(RecordWriter& writer, const LayoutPlan& plan) {
    const bool is_short = writer.record_length < plan.full_length;
    const PlanStep* step = plan.steps;
    const char* markup = plan.markup;        // to be put next
    std::size_t left = step->markup_length;  // before the step's field
    std::uint32_t number = is_short ? 0 : plan.child_count;
    Room room(writer.output);
    for (;;) {
        const PlanChild* const missing = missing_child(plan, number, writer.record_length);
        const char* const place = missing != nullptr ? plan.markup + missing->markup : nullptr;
        std::size_t distance =
            missing != nullptr ? static_cast<std::size_t>(place - markup) : SIZE_MAX;
        for (; left <= distance; distance -= std::exchange(left, (++step)->markup_length)) {
            write_markup(room, *step, markup, left);
            markup += left;
            if (step->kind == PlanStep::END) return room.hand_over();
            write_value(writer, *step, room);
        }
        write_markup(room, *step, markup, distance);
        const char* end = markup + left;
        markup = plan.markup + missing->markup_end;
        while (step < plan.steps + missing->next_step) end += (++step)->markup_length;
        left = static_cast<std::size_t>(end - markup);
        number = missing->next_child;
    }
}
