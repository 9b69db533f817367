#include "tools/sxml/cob/judge.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <iterator>
#include <map>
#include <nlohmann/json.hpp>
#include <set>
#include <sstream>
#include <string_view>

#include "tools/sxml/cob/generated_code.h"
#include "tools/sxml/cob/run.h"
#include "tools/sxml/failure.h"

namespace command::cob {

namespace {

using Json = nlohmann::ordered_json;

// The runtime's codes for types and flags; the same in all its releases.
constexpr unsigned TYPE_DISPLAY = 0x10;
constexpr unsigned TYPE_BINARY = 0x11;
constexpr unsigned TYPE_PACKED = 0x12;
constexpr unsigned TYPE_FLOAT = 0x13;
constexpr unsigned TYPE_DOUBLE = 0x14;
constexpr unsigned TYPE_EDITED = 0x24;
constexpr unsigned HAVE_SIGN = 0x01;
constexpr unsigned SIGN_SEPARATE = 0x02;
constexpr unsigned SIGN_LEADING = 0x04;
constexpr unsigned BINARY_SWAP = 0x20;
constexpr unsigned NO_SIGN_NIBBLE = 0x100;
constexpr unsigned BINARY_TRUNC = 0x800;

struct Table {
    std::int64_t count;
    std::int64_t stride;
};

// An item that a statement can refer to.
struct Reference {
    std::vector<std::string> path;  // the item's name and the groups around it, outward
    std::vector<Table> tables;      // outermost first
    std::int64_t offset;
    std::int64_t length;
    Json* field;  // null for groups
};

class References {
  public:
    explicit References(Json& description) {
        for (Json& record : description["records"]) add(record, {}, {});
        for (const Reference& item : all_) by_name_[item.path.front()].push_back(&item);
        std::copy_if(all_.begin(), all_.end(), std::back_inserter(unique_),
                     [this](const Reference& one) { return !is_ambiguous(one); });
    }
    // The items whose names are unique.
    const std::vector<Reference>& all() const { return unique_; }

  private:
    void add(Json& item, std::vector<std::string> path, std::vector<Table> tables) {
        const std::string name = item.value("cobol", "");
        if (item.contains("occurs")) {
            tables.push_back({item["occurs"].value("count", std::int64_t{1}),
                              item["occurs"].value("stride", std::int64_t{0})});
        }
        const bool is_group = item.contains("items");
        // A record that is a field holds that field without a name.
        const bool is_field_of_record = name.empty() && path.size() == 1 && !is_group;
        if (!name.empty()) path.insert(path.begin(), name);
        if (!name.empty() || is_field_of_record) {
            all_.push_back(
                {path, tables, item["offset"], item["length"], is_group ? nullptr : &item});
        }
        if (is_group) {
            for (Json& each : item["items"]) add(each, path, tables);
        }
    }

    // Whether the names of `one`, in this order, are among those of the other.
    static bool fits(const Reference& one, const Reference& other) {
        std::size_t at = 0;
        for (const std::string& name : other.path) {
            if (at < one.path.size() && name == one.path[at]) ++at;
        }
        return at == one.path.size();
    }
    bool is_ambiguous(const Reference& one) const {
        const std::vector<const Reference*>& namesakes = by_name_.at(one.path.front());
        return std::any_of(namesakes.begin(), namesakes.end(), [&](const Reference* other) {
            const bool is_same = other->path == one.path && other->offset == one.offset &&
                                 other->length == one.length;
            return !is_same && fits(one, *other);
        });
    }

    std::vector<Reference> all_;
    std::map<std::string, std::vector<const Reference*>> by_name_;
    std::vector<Reference> unique_;
};

// A statement that the compiler turns into a call with the item as a parameter. Some names mean
// something else in one of them.
struct Verb {
    const char* words;
    const char* parameter;  // what stands before it in the generated code
};
constexpr Verb VERBS[] = {{"CALL \"PROBE\" USING BY REFERENCE ", "cob_procedure_params[0] = "},
                          {"DISPLAY ", "cob_display (0, 1, 1, "}};

// One statement: an item at its first occurrence, or at the second of each table.
struct Probe {
    const Reference* item;
    std::vector<std::int64_t> subscripts;

    std::int64_t offset() const {
        std::int64_t offset = item->offset;
        for (std::size_t i = 0; i < subscripts.size(); ++i) {
            offset += (subscripts[i] - 1) * item->tables[i].stride;
        }
        return offset;
    }
    std::string statement(const Verb& verb, const std::string& file) const {
        std::string text = verb.words;
        for (const std::string& name : item->path) {
            text += (&name == &item->path.front() ? "" : "\n OF ") + name;
        }
        if (!file.empty()) text += "\n OF " + file;
        for (std::size_t i = 0; i < subscripts.size(); ++i) {
            text += (i == 0 ? " (" : " ") + std::to_string(subscripts[i]);
        }
        return " " + text + (subscripts.empty() ? "" : ")") + "\n .\n";
    }
};

std::vector<Probe> probes_of(const std::vector<Reference>& items) {
    std::vector<Probe> probes;
    for (const Reference& item : items) {
        const std::size_t tables = item.tables.size();
        probes.push_back({&item, std::vector<std::int64_t>(tables, 1)});
        if (tables == 0) continue;
        std::vector<std::int64_t> second;
        for (const Table& table : item.tables)
            second.push_back(std::min<std::int64_t>(2, table.count));
        probes.push_back({&item, second});
    }
    return probes;
}

// The source with these statements in the program and none in the others.
std::string probe_text(const Source& source, std::size_t program, const std::string& statements) {
    std::string text;
    std::size_t at = 0;
    for (std::size_t i = 0; i < source.programs.size(); ++i) {
        const Program& each = source.programs[i];
        if (!each.has_statements) continue;
        text += source.text.substr(at, each.statements_begin - at) + "\n";
        text += i == program ? statements : " CONTINUE.\n";
        at = each.statements_end;
    }
    return text + source.text.substr(at);
}

bool is_one_of(const std::string& type, std::initializer_list<const char*> types) {
    return std::find(types.begin(), types.end(), type) != types.end();
}

// What the compiler takes a field for, in the words of descriptions; empty for characters.
std::string type_of(const GeneratedItem& item) {
    const bool is_signed = (item.flags & HAVE_SIGN) != 0;
    switch (item.type) {
        case TYPE_DISPLAY:
            if (!is_signed) return "display_unsigned";
            return std::string("display_sign_") +
                   ((item.flags & SIGN_LEADING) != 0 ? "leading" : "trailing") +
                   ((item.flags & SIGN_SEPARATE) != 0 ? "_separate" : "");
        case TYPE_BINARY:
            return std::string((item.flags & BINARY_SWAP) != 0 ? "binary" : "native") +
                   (is_signed ? "_signed" : "_unsigned");
        case TYPE_PACKED:
            if ((item.flags & NO_SIGN_NIBBLE) != 0) return "packed_no_sign";
            return is_signed ? "packed_signed" : "packed_unsigned";
        case TYPE_FLOAT:
        case TYPE_DOUBLE:
            return "float";
        default:
            return {};
    }
}

bool is_binary(const std::string& type) {
    return type.starts_with("binary_") || type.starts_with("native_");
}

void set_flag(Json& field, const char* flag, bool is_set) {
    Json flags = field.value("flags", Json::array());
    const auto found = std::find(flags.begin(), flags.end(), flag);
    if (is_set == (found != flags.end())) return;
    if (is_set) {
        flags.push_back(flag);
    } else {
        flags.erase(found);
    }
    if (flags.empty()) {
        field.erase("flags");
    } else {
        field["flags"] = flags;
    }
}

// What is different in the nature of the field; empty when nothing is. Takes byte order and
// truncation over.
std::string compare_types(Json& field, const GeneratedItem& item) {
    const std::string ours = field.value("type", "");
    const std::string theirs = type_of(item);
    const bool is_number = !is_one_of(ours, {"alphanumeric", "alphabetic", "edited", "justified",
                                             "opaque", "national", "encoded_text", "text"});
    if (!is_number && theirs.empty()) return {};
    const bool is_blank_when_zero = item.type == TYPE_EDITED && ours == "display_unsigned";
    if (is_blank_when_zero) return {};
    if (is_binary(ours) && is_binary(theirs) && ours.substr(6) == theirs.substr(6)) {
        if (field["length"] != 1) field["type"] = theirs;
        set_flag(field, "truncate", (item.flags & BINARY_TRUNC) != 0);
    } else if (ours != theirs && is_number) {
        return "is " + ours + ", for cobc " + (theirs.empty() ? "text" : theirs);
    }
    if (!is_number || ours == "float" || field.value("usage", "") == "POINTER") return {};
    const int scale = field.value("stored_scale", field.value("scale", 0));
    if (scale == -item.scale) return {};
    return "has the scale " + std::to_string(-scale) + ", for cobc " + std::to_string(item.scale);
}

std::string compare(const Probe& probe, const GeneratedItem& item) {
    const std::string& name = probe.item->path.front();
    if (!item.offset || (!item.size && probe.item->field != nullptr)) {
        return name +
               " has no fixed place; items after a table with DEPENDING ON move with "
               "-fodoslide";
    }
    const auto differs = [&](const char* what, std::int64_t ours, std::int64_t theirs) {
        return name + " has the " + what + " " + std::to_string(ours) + ", for cobc " +
               std::to_string(theirs);
    };
    if (*item.offset != probe.offset()) return differs("offset", probe.offset(), *item.offset);
    if (item.size && *item.size != probe.item->length) {
        return differs("length", probe.item->length, *item.size);
    }
    if (probe.item->field == nullptr) return {};
    const std::string difference = compare_types(*probe.item->field, item);
    return difference.empty() ? difference : name + " " + difference;
}

// The lines of the program in which the compiler says that a name is not defined, or means
// something else in this place; nothing when it says anything else.
std::set<int> lines_of_unknown_names(const std::string& messages) {
    constexpr std::string_view FILE = "probe.cbl:";
    std::set<int> lines;
    std::istringstream stream(messages);
    for (std::string line; std::getline(stream, line);) {
        const std::size_t file = line.find(FILE);
        if (file == std::string::npos || line.find(" error: ") == std::string::npos) continue;
        const bool is_of_name = line.find("is not defined") != std::string::npos ||
                                line.find("syntax error, unexpected") != std::string::npos;
        if (!is_of_name) return {};
        lines.insert(std::atoi(line.c_str() + file + FILE.size()));
    }
    return lines;
}

// Makes C code of a program with a statement for each probe.
class ProbeProgram {
  public:
    ProbeProgram(const Source& source, std::size_t program, const std::string& file,
                 const Words& words)
        : source_(source), program_(program), file_(file), words_(words) {}

    // Takes out those that the compiler does not take by their names: a field that is described in
    // the FILLER of a record, as another record has it, and names that are words of statements.
    // The items beside them are compared all the same. Empty when it rejects the program.
    std::vector<GeneratedItem> compile(std::vector<Probe>& probes, const Verb& verb) const {
        const WorkFolder folder;
        std::vector<GeneratedItem> items;
        std::vector<Probe> known = probes;
        while (!run(known, verb, folder, items)) {
            const std::set<int> unknown = lines_of_unknown_names(text_of(folder.file("errors")));
            const std::size_t before = known.size();
            take_out(known, unknown, verb);
            if (known.empty() || known.size() == before) return {};
        }
        probes = std::move(known);
        return items;
    }

  private:
    int first_line() const {
        const std::string before = probe_text(source_, program_, "");
        const std::size_t at = text_before();
        return 2 + static_cast<int>(std::count(
                       before.begin(), before.begin() + static_cast<std::ptrdiff_t>(at), '\n'));
    }

    void take_out(std::vector<Probe>& probes, const std::set<int>& lines, const Verb& verb) const {
        int line = first_line();
        std::erase_if(probes, [&](const Probe& probe) {
            const std::string statement = probe.statement(verb, file_);
            const int end =
                line + static_cast<int>(std::count(statement.begin(), statement.end(), '\n'));
            const auto found = lines.lower_bound(line);
            line = end;
            return found != lines.end() && *found < end;
        });
    }

    // How much of the program comes before the statements.
    std::size_t text_before() const {
        const Program& program = source_.programs[program_];
        std::size_t size = 0;
        std::size_t at = 0;
        for (const Program& each : source_.programs) {
            if (!each.has_statements) continue;
            size += each.statements_begin - at;
            if (&each == &program) return size;
            size += std::string_view("\n CONTINUE.\n").size();
            at = each.statements_end;
        }
        return size;
    }

    bool run(const std::vector<Probe>& probes, const Verb& verb, const WorkFolder& folder,
             std::vector<GeneratedItem>& items) const {
        std::string statements;
        for (const Probe& probe : probes) statements += probe.statement(verb, file_);
        const std::string probe =
            folder.write("probe.cbl", probe_text(source_, program_, statements));
        std::vector<std::string> command = {"cobc", "-C", "-m", "-w"};
        for (const std::string& word : words_.reading) {
            const bool is_format = word == "-fixed" || word == "-F" || word == "-free" ||
                                   word == "--free" || word.starts_with("-fformat");
            if (!is_format) command.push_back(word);
        }
        for (const std::string& word :
             {std::string("-free"), std::string("-o"), folder.file("probe.c"), probe}) {
            command.push_back(word);
        }
        if (run_program(command, folder.file("errors")) != 0) return false;
        items = GeneratedCode(folder.file("probe.c")).parameters(verb.parameter);
        return items.size() == probes.size();
    }

    const Source& source_;
    std::size_t program_;
    const std::string& file_;
    const Words& words_;
};

}  // namespace

Judgement judge(const std::string& description, const Source& source, std::size_t program,
                const std::string& file, const Words& words) {
    Json json = Json::parse(description);
    const References references(json);
    std::vector<Probe> probes = probes_of(references.all());
    const ProbeProgram probe_program(source, program, file, words);
    std::vector<GeneratedItem> items;
    for (const Verb& verb : VERBS) {
        if (items.empty() && !probes.empty()) items = probe_program.compile(probes, verb);
    }
    Judgement judgement;
    if (items.empty() && !probes.empty()) {
        judgement.difference = "cobc does not tell where its items lie";
        return judgement;
    }
    for (std::size_t i = 0; i < probes.size(); ++i) {
        std::string difference = compare(probes[i], items[i]);
        if (difference.empty()) continue;
        judgement.difference = std::move(difference);
        return judgement;
    }
    judgement.description = json.dump();
    return judgement;
}

}  // namespace command::cob
