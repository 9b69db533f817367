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

void write_markup(RecordOutput& output, const char* markup, std::size_t length) {
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

// Texts of anything but printable ASCII characters go the long way.
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

// A record that has no place for some of the items.
class ShortRecord {
  public:
    ShortRecord(RecordWriter& writer, const LayoutPlan& plan)
        : writer_(writer), plan_(plan), step_end_(plan.steps->markup_length) {}

    void write() {
        for (std::uint32_t number = 0; number < plan_.child_count;) {
            const PlanChild& child = plan_.children[number];
            if (child.extent <= writer_.record_length) {
                ++number;
                continue;
            }
            write_to(child.markup);
            pass_over(child);
            number = child.next_child;
        }
        while (plan_.steps[step_].kind != PlanStep::END) write_to(step_end_);
        write_to(step_end_);
    }

  private:
    // Writes the markup up to a place, and the fields that stand there.
    void write_to(std::uint32_t place) {
        while (step_end_ <= place && plan_.steps[step_].kind != PlanStep::END) {
            write_markup_to(step_end_);
            write_value(writer_, plan_.steps[step_++]);
            step_end_ += plan_.steps[step_].markup_length;
        }
        write_markup_to(place);
    }

    void write_markup_to(std::uint32_t place) {
        write_markup(writer_.output, plan_.markup + written_, place - written_);
        written_ = place;
    }

    void pass_over(const PlanChild& child) {
        written_ = child.markup_end;
        while (step_ < child.next_step) step_end_ += plan_.steps[++step_].markup_length;
    }

    RecordWriter& writer_;
    const LayoutPlan& plan_;
    std::uint32_t written_ = 0;  // of the markup, or passed over
    std::uint32_t step_ = 0;     // the next one
    std::uint32_t step_end_;     // where the markup before its field ends
};

}  // namespace

void write_planned(RecordWriter& writer, const LayoutPlan& plan) {
    if (writer.record_length < plan.full_length) return ShortRecord(writer, plan).write();
    const char* markup = plan.markup;
    for (const PlanStep* step = plan.steps;; ++step) {
        write_markup(writer.output, markup, step->markup_length);
        markup += step->markup_length;
        if (step->kind == PlanStep::END) return;
        write_value(writer, *step);
    }
}
