#include "fsi/xml/sxml/writing/planned_record.h"

#include <algorithm>
#include <cstring>

#include "fsi/xml/elements/text_output.h"
#include "fsi/xml/sxml/items.h"
#include "host/ascii_words.h"

namespace {

using ascii::Word;
using ascii::WORD_SIZE;

constexpr std::size_t LONGEST_ENTITY = 6;

// Copies markup of a plan in steps; as many bytes may be written beyond its end.
char* put_markup(char* at, const char* markup, std::size_t length) {
    for (std::size_t i = 0; i < length; i += MARKUP_READ_SIZE) {
        std::memcpy(at + i, markup + i, MARKUP_READ_SIZE);
    }
    return at + length;
}

[[gnu::always_inline]] inline void write_markup(RecordOutput& output, const char* markup,
                                                std::size_t length) {
    while (length + MARKUP_READ_SIZE > RecordOutput::CAPACITY) {
        constexpr std::size_t PIECE = RecordOutput::CAPACITY / 2;
        output.keep_to(put_markup(output.room_for(PIECE), markup, PIECE));
        markup += PIECE;
        length -= PIECE;
    }
    output.keep_to(put_markup(output.room_for(length + MARKUP_READ_SIZE), markup, length));
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

// Texts with other than printable ASCII characters take the slow path.
void write_text(RecordWriter& writer, const PlanStep& step) {
    const XfdItem& field = writer.xfd.items[step.item];
    const std::string_view text = writer.text_giver == nullptr
                                      ? std::string_view(writer.record + step.offset, step.length)
                                      : characters_of(writer, field);
    if (text.size() <= MOST_PLANNED_TEXT) {
        const std::size_t length = ascii::length_without_blanks(text.data(), text.size());
        char* const at = writer.output.room_for(LONGEST_ENTITY * length + WORD_SIZE);
        const Look look = copy(at, text.data(), length);
        if (!ascii::is_odd(look.odd)) {
            if (*at != ' ' && !ascii::has_markup(look.lacking)) {
                writer.output.keep_to(at + length);
            } else {
                const std::size_t first = std::min(text.find_first_not_of(' '), length);
                const char* const start = text.data() + first;
                writer.output.keep_to(put_escaped(at, start, length - first));
            }
            return;
        }
    }
    write_characters(writer, field, text);
}

// The host makes the text where it is to be.
void write_number(RecordWriter& writer, const PlanStep& step) {
    constexpr char BLANKS[] = "                ";
    constexpr std::size_t RUN = sizeof BLANKS - 1;
    XfdItem& field = writer.xfd.items[step.item];
    const std::size_t length = number_text_length(field.data);
    char* const text = writer.output.room_for(MOST_NUMBER_TEXT + RUN);
    for (std::size_t i = 0; i <= length; i += RUN) std::memcpy(text + i, BLANKS, RUN);
    convert_number(field, writer.record + step.offset, {text, length});
    const bool is_plain = ascii::is_printable(text, std::max(length, WORD_SIZE));
    const bool has_point =
        writer.xfd.conventions == nullptr || writer.xfd.conventions->decimal_point == '.';
    if (is_plain && has_point) {
        std::size_t end = length;
        while (end > 1 && text[end - 1] == ' ') --end;
        writer.output.keep_to(text + end);
        return;
    }
    const std::size_t end = finish_number(writer.xfd, text, length);
    if (is_plain) {
        writer.output.keep_to(text + end);
        return;
    }
    char copy[MOST_NUMBER_TEXT];
    std::memcpy(copy, text, end);
    writer.output.write({copy, end});
}

void write_value(RecordWriter& writer, const PlanStep& step) {
    if (step.condition != 0 && !condition_holds(writer.xfd, step.condition)) return;
    switch (step.kind) {
        case PlanStep::TEXT:
            return write_text(writer, step);
        case PlanStep::NUMBER:
            return write_number(writer, step);
        default:
            write_field(writer, step.item);
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
    std::uint32_t written = 0;  // of the markup, or passed over
    std::uint32_t step_end = step->markup_length;
    std::uint32_t number = is_short ? 0 : plan.child_count;
    for (;;) {
        const PlanChild* const missing = missing_child(plan, number, writer.record_length);
        const std::uint32_t place = missing != nullptr ? missing->markup : UINT32_MAX;
        while (step_end <= place) {
            write_markup(writer.output, plan.markup + written, step_end - written);
            written = step_end;
            if (step->kind == PlanStep::END) return;
            write_value(writer, *step);
            step_end += (++step)->markup_length;
        }
        write_markup(writer.output, plan.markup + written, place - written);
        written = missing->markup_end;
        while (step < plan.steps + missing->next_step) step_end += (++step)->markup_length;
        number = missing->next_child;
    }
}
