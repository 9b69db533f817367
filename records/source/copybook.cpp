#include "records/copybook.h"

#include <algorithm>
#include <utility>

#include "records/source/entry_parser.h"
#include "records/source/program_structure.h"
#include "records/source/record_builder.h"
#include "records/source/text/copy_library.h"
#include "records/source/text/source_hints.h"
#include "records/source/text/text_case.h"
#include "records/source/text/text_manipulation.h"

namespace records {

namespace {

// "CUST-REC" from "copy/cust_rec.cpy": what a record is called that the source does not name.
std::string implied_record_name(const std::string& file) {
    if (!names_itself(file)) return "RECORD";
    std::string name = file.substr(file.rfind('/') + 1);
    name = to_upper(name.substr(0, name.find('.')));
    for (char& c : name) {
        if (!is_letter(c) && !is_digit(c)) c = '-';
    }
    const std::size_t start = name.find_first_not_of('-');
    if (start == std::string::npos) return "RECORD";
    return name.substr(start, name.find_last_not_of('-') + 1 - start);
}

class Compilation {
  public:
    Compilation(const CopybookOptions& options, Diagnostics& diagnostics)
        : options_(options),
          diagnostics_(diagnostics),
          context_{sources_, diagnostics, false, '$', {}} {}

    std::optional<RecordSource> parse(std::string text, const std::string& name) {
        source_.file = name;
        TextManipulator manipulator(options_, sources_, arena_, diagnostics_);
        const auto file = make_source_file(name, std::move(text), options_.tab_width);
        tokens_ = make_tokens(manipulator.expand(file), arena_);
        for (std::size_t i = 1; i < sources_.inclusion_count(); ++i) {
            diagnostics_.add_file(*sources_.file(static_cast<std::uint32_t>(i)).name);
        }
        structure_ = find_structure(tokens_, context_);
        source_.decimal_point_is_comma = context_.decimal_point_is_comma;
        source_.currency = context_.currency;
        const bool found = options_.fd.empty() ? take_only_choice() : take_chosen();
        if (found && source_.records.empty() && !diagnostics_.has_errors()) {
            fail("there is no data description in it");
        }
        if (diagnostics_.has_errors()) add_source_hints(manipulator.read_files(), diagnostics_);
        if (!found || source_.records.empty()) return std::nullopt;
        return std::move(source_);
    }

  private:
    using Kind = RecordArea::Kind;

    bool fail(std::string message) {
        diagnostics_.error(sources_.place({0, 0, 0}), std::move(message));
        return false;
    }

    // Takes the one record of the range: what it redefines is not taken, nor the clause.
    void take_record(TokenRange range) {
        take(range, [](DataItem& item) {
            if (item.level == 1) item.redefines.clear();
        });
    }

    void take(TokenRange range) {
        take(range, [](DataItem&) {});
    }

    template <typename Adapt>
    void take(TokenRange range, const Adapt& adapt) {
        TokenCursor cursor(tokens_, range.begin, range.end);
        // A bare copybook lends its own name; below an FD, the copybook that was copied does.
        const bool is_bare = !structure_.is_program && source_.name.empty();
        const bool is_empty = range.begin >= range.end;
        const std::uint32_t inclusion =
            is_bare || is_empty ? 0 : tokens_[range.begin].position.inclusion;
        const std::string& file = *sources_.file(inclusion).name;
        RecordBuilder builder(source_.records, implied_record_name(file), context_);
        while (!cursor.at_end()) {
            auto entry = parse_entry(cursor, context_);
            if (!entry) continue;
            if (entry->item) adapt(*entry->item);
            builder.add(std::move(*entry));
        }
    }

    // Failed copies within data descriptions matter only if the requested record is not found.
    bool report_missing(std::string message) {
        fail(std::move(message));
        for (const RecordArea& area : structure_.areas) {
            for (std::size_t i = area.tokens.begin; i < area.tokens.end; ++i) {
                if (tokens_[i].kind == WordKind::broken) context_.error(tokens_[i], {});
            }
        }
        return false;
    }

    // The file of this name: that of the program meant, or else the first.
    const RecordArea* find_file(const std::string& name) const {
        const RecordArea* found = nullptr;
        const std::string program = to_upper(options_.program);
        for (const RecordArea& area : structure_.areas) {
            if (area.name.empty() || area.name != name) continue;
            if (to_upper(area.program) == program) return &area;
            if (found == nullptr) found = &area;
        }
        return found;
    }

    bool take_chosen() {
        const std::string wanted = to_upper(options_.fd);
        if (const RecordArea* const area = find_file(wanted)) {
            source_.name = area->name;
            source_.record_contains = area->record_contains;
            take(area->tokens);
            return true;
        }
        for (const RecordArea& area : structure_.areas) {
            for (const RecordSpan& record : area.records) {
                if (record.name != wanted) continue;
                take_record(record.tokens);
                return true;
            }
        }
        const std::string names = all_names();
        return report_missing("there is no FD or record " + wanted +
                              (names.empty() ? std::string() : "; there are " + names));
    }

    // Without a choice: the only FD; in a bare copybook all records; in a program without files its
    // only record.
    bool take_only_choice() {
        const auto is_file = [](const RecordArea& area) { return area.kind == Kind::file; };
        const auto& areas = structure_.areas;
        const auto files = std::count_if(areas.begin(), areas.end(), is_file);
        if (files == 1) {
            const auto area = std::find_if(areas.begin(), areas.end(), is_file);
            source_.name = area->name;
            source_.record_contains = area->record_contains;
            take(area->tokens);
            return true;
        }
        if (files > 1) return fail("there are several FDs, choose one: " + all_names());
        if (!structure_.is_program) {
            take(areas.front().tokens);
            return true;
        }
        return take_only_record();
    }

    bool take_only_record() {
        const RecordSpan* only = nullptr;
        std::size_t count = 0;
        for (const RecordArea& area : structure_.areas) {
            for (const RecordSpan& record : area.records) {
                only = &record;
                ++count;
            }
        }
        if (count == 0) return report_missing("there is no data description in it");
        if (count > 1) {
            return fail("there is no FD but several records, choose one: " + all_names());
        }
        take_record(only->tokens);
        return true;
    }

    // The files, and the records where a record can be meant.
    std::string all_names() const {
        std::string names;
        const auto add = [&names](const std::string& name) {
            if (name.empty() || names.size() > 2000) return;
            names += (names.empty() ? "" : ", ") + name;
        };
        for (const RecordArea& area : structure_.areas) {
            add(area.name);
        }
        if (!names.empty() && options_.fd.empty()) return names;
        for (const RecordArea& area : structure_.areas) {
            for (const RecordSpan& record : area.records) add(record.name);
        }
        return names;
    }

    const CopybookOptions& options_;
    Diagnostics& diagnostics_;
    SourceSet sources_;
    TextArena arena_;
    std::vector<Token> tokens_;
    ParseContext context_;
    ProgramStructure structure_;
    RecordSource source_;
};

std::optional<RecordSource> compile(std::string text, const std::string& name,
                                    const CopybookOptions& options, Diagnostics& diagnostics) {
    if (looks_like_ebcdic(text)) {
        Place place;
        place.file = std::make_shared<const std::string>(name);
        diagnostics.error(
            std::move(place),
            "the text is in EBCDIC; convert it to ASCII first (`dd conv=ascii cbs=80` "
            "when its lines are 80 bytes without line ends, iconv otherwise)");
        return std::nullopt;
    }
    return Compilation(options, diagnostics).parse(std::move(text), name);
}

}  // namespace

bool names_itself(std::string_view file) {
    return !file.starts_with("/dev/fd/") && !file.starts_with("/proc/self/fd/");
}

std::optional<RecordSource> parse_copybook_file(const std::string& file,
                                                const CopybookOptions& options,
                                                Diagnostics& diagnostics) {
    std::string why;
    auto text = read_text_file(file, why);
    if (!text) {
        Place place;
        place.file = std::make_shared<const std::string>(file);
        diagnostics.error(std::move(place), "cannot read the file: " + why);
        return std::nullopt;
    }
    return compile(std::move(*text), file, options, diagnostics);
}

std::optional<RecordSource> parse_copybook_text(std::string_view text, const std::string& name,
                                                const CopybookOptions& options,
                                                Diagnostics& diagnostics) {
    return compile(std::string(text), name, options, diagnostics);
}

}  // namespace records
