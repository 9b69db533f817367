// A COBOL compiler judges sizes and offsets: a generated program displays LENGTH OF every item and
// its distance from the record's start, at the first occurrence and at the last.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>

#include "tests/records/cobc_program.h"
#include "tests/records/layout_fixture.h"

namespace {

using namespace records;
using layout_tests::has_cobc;
using layout_tests::run_cobc;
namespace fs = std::filesystem;
using Row = Description::Row;

constexpr int RANDOM_LAYOUTS = 300;

// Sizes as this compiler counts them.
LayoutOptions options_of_cobc() {
    LayoutOptions options;
    const bool is_3_1 = std::system("cobc --version | grep -q '(GnuCOBOL) 3\\.1\\.'") == 0;
    options.national_size = is_3_1 ? NationalSize::cobc_3_1 : NationalSize::cobc_3_2;
    return options;
}

// An item as a COBOL program refers to it.
struct Probe {
    std::string reference;    // qualified name
    std::vector<int> occurs;  // of the tables around it, outermost first
    std::vector<int> strides;
    const Row* row;

    std::string subscripted(bool last) const {
        std::string list;
        for (const int count : occurs) {
            list += (list.empty() ? "" : ", ") + std::to_string(last ? count : 1);
        }
        return list.empty() ? reference : reference + " (" + list + ")";
    }
    std::string expected(bool last) const {
        int offset = row->offset;
        for (std::size_t i = 0; last && i < occurs.size(); ++i) {
            offset += (occurs[i] - 1) * strides[i];
        }
        return std::to_string(offset) + " " + std::to_string(row->length);
    }
};

// The number of occurrences in a row's text; 0 for none. "1 to 5 depending on N" has 5.
int table_size(const std::string& occurs) {
    if (occurs.empty()) return 0;
    const std::size_t to = occurs.find(" to ");
    return std::stoi(to == std::string::npos ? occurs : occurs.substr(to + 4));
}

std::vector<Probe> probes_of(const std::vector<Row>& rows) {
    std::vector<Probe> probes;
    std::vector<const Row*> around;
    for (const Row& row : rows) {
        while (!around.empty() && around.back()->level >= row.level) around.pop_back();
        Probe probe{row.name, {}, {}, &row};
        around.push_back(&row);
        for (const Row* each : around) {
            if (const int size = table_size(each->occurs); size > 0) {
                probe.occurs.push_back(size);
                probe.strides.push_back(each->length);
            }
        }
        for (auto at = around.rbegin() + 1; at < around.rend(); ++at) {
            if (!(*at)->name.empty() && (*at)->name[0] < 'a')
                probe.reference += " OF " + (*at)->name;
        }
        const bool unnamed = row.name.empty() || row.name[0] >= 'a';
        if (!unnamed) probes.push_back(std::move(probe));
    }
    return probes;
}

// Counters go to their maximum first, since LENGTH OF follows them.
std::string counter_moves(const std::vector<Row>& rows) {
    std::string text;
    for (const Row& row : rows) {
        const std::size_t name = row.occurs.find("depending on ");
        if (name == std::string::npos) continue;
        text += "    MOVE " + std::to_string(table_size(row.occurs)) + " TO " +
                row.occurs.substr(name + 13) + "\n";
    }
    return text;
}

std::string program_of(const std::string& records, const std::vector<Description>& descriptions) {
    std::string data =
        "IDENTIFICATION DIVISION.\nPROGRAM-ID. PROBE.\nDATA DIVISION.\nWORKING-STORAGE SECTION.\n"
        "01 PROBE-A USAGE POINTER.\n01 PROBE-AN REDEFINES PROBE-A PIC 9(18) COMP-5.\n"
        "01 PROBE-B USAGE POINTER.\n01 PROBE-BN REDEFINES PROBE-B PIC 9(18) COMP-5.\n"
        "01 PROBE-D PIC -(9)9.\n01 PROBE-L PIC Z(9)9.\n" +
        records;
    std::string code = "PROCEDURE DIVISION.\nPROBE-START.\n";
    int section = 0;
    for (const Description& description : descriptions) {
        code += "PROBE-P" + std::to_string(++section) + ".\n" + counter_moves(description.rows());
        for (const Probe& probe : probes_of(description.rows())) {
            if (probe.row->level == 1) {
                code += "    SET PROBE-B TO ADDRESS OF " + probe.reference + "\n";
            }
            for (const bool last : {false, true}) {
                const std::string item = probe.subscripted(last);
                code.append("    SET PROBE-A TO ADDRESS OF ").append(item);
                code.append("\n    MOVE LENGTH OF ").append(item);
                code.append(" TO PROBE-L\n    PERFORM PROBE-SHOW\n");
            }
        }
        code += "    CONTINUE.\n";
    }
    return data + code +
           "    STOP RUN.\nPROBE-SHOW.\n    SUBTRACT PROBE-BN FROM PROBE-AN GIVING PROBE-D\n"
           "    DISPLAY FUNCTION TRIM(PROBE-D) ' ' FUNCTION TRIM(PROBE-L).\n";
}

void judge(const std::string& records, const std::vector<Description>& descriptions,
           const std::string& name, const std::string& options) {
    const std::vector<std::string> said =
        run_cobc(program_of(records, descriptions), name, options);
    std::size_t line = 0;
    int wrong = 0;
    for (const Description& description : descriptions) {
        for (const Probe& probe : probes_of(description.rows())) {
            for (const bool last : {false, true}) {
                ASSERT_LT(line, said.size()) << "the program stopped early";
                if (said[line++] == probe.expected(last)) continue;
                ADD_FAILURE() << probe.subscripted(last) << " (" << probe.row->picture << " "
                              << probe.row->usage << "): offset and length " << probe.expected(last)
                              << ", cobc says " << said[line - 1];
                ASSERT_LT(++wrong, 10);
            }
        }
    }
    EXPECT_EQ(line, said.size());
}

// Makes record descriptions of every kind of item that has a size.
class RandomRecords {
  public:
    RandomRecords(std::uint32_t seed, int number)
        : random_(seed), prefix_("R" + std::to_string(number) + "-") {}

    std::string record() {
        const std::string record_name = name();
        text_ = "01 " + record_name + ".\n";
        line(5, name() + " PIC X" + times(3) + ".");  // a FILLER alone would describe nothing
        items(5, 0, 0);
        if (chance(4)) {
            text_ += "01 " + name() + " REDEFINES " + record_name + ".\n";
            line(5, name() + " PIC X(3).");
        }
        return text_;
    }

  private:
    int pick(int low, int high) { return std::uniform_int_distribution<>(low, high)(random_); }
    bool chance(int one_in) { return pick(1, one_in) == 1; }
    std::string name() { return prefix_ + std::to_string(++count_); }
    void line(int level, const std::string& rest) {
        text_ += std::string(static_cast<std::size_t>(level), ' ') + std::to_string(level) + " " +
                 rest + "\n";
    }
    std::string times(int most) { return "(" + std::to_string(pick(1, most)) + ")"; }

    std::string table(int tables) {
        if (tables >= 3 || !chance(4)) return "";
        return " OCCURS " + std::to_string(pick(1, 4)) + " TIMES";
    }

    // Clauses of an elementary item.
    std::string form() {
        const std::string sign = chance(2) ? "S" : "";
        const std::string sync = chance(3) ? " SYNC" : "";
        switch (pick(0, 14)) {
            case 0:
                return "PIC " + sign + "9" + times(18) + " COMP" + sync;
            case 1:
                return "PIC " + sign + "9" + times(18) + " COMP-5" + sync;
            case 2:
                return "PIC " + sign + "9" + times(30) + "V9" + times(5) + " COMP-3";
            case 3:
                return "PIC 9" + times(30) + " COMP-6";
            case 4:
                return "PIC " + sign + "9" + times(18) + " COMP-X" + sync;
            case 5:
                return "PIC X" + times(8) + " COMP-X" + sync;
            case 6:
                return (chance(2) ? "COMP-1" : "COMP-2") + sync;
            case 7:
                return (chance(2) ? "INDEX" : "POINTER") + sync;
            case 8: {
                const char* const usages[] = {"BINARY-CHAR", "BINARY-SHORT", "BINARY-LONG",
                                              "BINARY-DOUBLE"};
                return usages[pick(0, 3)] + std::string(chance(2) ? " UNSIGNED" : "") + sync;
            }
            case 9:
                return "PIC S9" + times(20) + " SIGN " + (chance(2) ? "LEADING" : "TRAILING") +
                       (chance(2) ? " SEPARATE" : "");
            case 10:
                return "PIC " + sign + (chance(2) ? "99PPP" : "VPP99");
            case 11:
                return chance(2) ? "PIC ZZ,ZZ9.99-" : "PIC XXBXX/X0";
            case 12:
                return "PIC N" + times(9);
            case 13:
                return "PIC " + sign + "9" + times(20) + "V99";
            default:
                return "PIC X" + times(30) + sync;
        }
    }

    void elementary(int level, int tables) {
        const std::string clauses = form();
        line(level, (chance(8) ? "FILLER " : name() + " ") + clauses + table(tables) + ".");
    }

    // A group whose usage or sign its numbers take over.
    void inheriting_group(int level) {
        const char* const usages[] = {"COMP", "COMP-3", "COMP-5", "SIGN TRAILING SEPARATE",
                                      "SIGN LEADING SEPARATE"};
        line(level, name() + " " + usages[pick(0, 4)] + ".");
        line(level + 2, name() + " PIC S9" + times(18) + ".");
        line(level + 2, name() + ".");
        line(level + 4, name() + " PIC S9" + times(18) + (chance(2) ? " SYNC." : "."));
    }

    void redefinition(int level) {
        const std::string original = name();
        const bool group_first = chance(2);
        const auto group = [&](const std::string& header) {
            line(level, header);
            for (int i = pick(1, 3); i > 0; --i) line(level + 2, name() + " PIC X(4).");
            line(level + 2, name() + " PIC 9(4) COMP" + (chance(2) ? " SYNC" : "") + ".");
        };
        if (group_first) {
            group(original + ".");
            line(level, name() + " REDEFINES " + original + " PIC 9(6).");
        } else {
            line(level, original + " PIC X(24).");
            group(name() + " REDEFINES " + original + ".");
            line(level, name() + " REDEFINES " + original + " PIC X(3) OCCURS 5.");
        }
    }

    void items(int level, int depth, int tables) {
        for (int i = pick(1, 5); i > 0; --i) {
            const int kind = pick(0, 9);
            if (kind == 0) {
                inheriting_group(level);
            } else if (kind == 1) {
                redefinition(level);
            } else if (kind <= 3 && depth < 4) {
                const std::string occurs = table(tables);
                line(level, name() + occurs + ".");
                items(level + 5, depth + 1, tables + (occurs.empty() ? 0 : 1));
            } else {
                elementary(level, tables);
            }
        }
    }

    std::mt19937 random_;
    std::string prefix_;
    std::string text_;
    int count_ = 0;
};

int number_from(const char* variable, int fallback) {
    const char* text = std::getenv(variable);
    return text == nullptr ? fallback : std::atoi(text);
}

// SXML_TEST_LAYOUTS and SXML_TEST_SEED ask for more or other layouts.
void judge_random(BinarySize rule, const std::string& name, const std::string& options) {
    if (!has_cobc()) GTEST_SKIP() << "cobc is not installed";
    const int count = number_from("SXML_TEST_LAYOUTS", RANDOM_LAYOUTS / 2);
    const auto seed = static_cast<std::uint32_t>(number_from("SXML_TEST_SEED", 20261));
    std::cout << count << " random layouts, SXML_TEST_SEED=" << seed << "\n";
    LayoutOptions layout = options_of_cobc();
    layout.binary_size = rule;
    std::string records;
    std::vector<Description> descriptions;
    for (int i = 0; i < count; ++i) {
        const std::string text = RandomRecords(seed + static_cast<std::uint32_t>(i), i).record();
        records += text;
        descriptions.push_back(layout_tests::described(text, layout));
    }
    judge(records, descriptions, name, options);
}

TEST(CobcLayout, RandomLayouts1248) {
    judge_random(BinarySize::by_digits_1248, "1248", "");
}

TEST(CobcLayout, RandomLayouts248) {
    judge_random(BinarySize::by_digits_248, "248", "-fbinary-size=2-4-8");
}

TEST(CobcLayout, RandomLayouts1to8) {
    judge_random(BinarySize::smallest, "1to8", "-fbinary-size=1--8");
}

// Clauses that the random records leave out.
constexpr const char* EVERY_CLAUSE =
    "01 EVERY-REC.\n"
    "  05 GROUP-SYNC COMP SYNC.\n"
    "    10 GS-1 PIC S9(9).\n"
    "    10 GS-2 PIC S9(4).\n"
    "  05 GROUP-FLOAT COMP-1 SYNC.\n"
    "    10 GF-1.\n"
    "    10 GF-2.\n"
    "  05 ALPHA PIC A(5) JUSTIFIED RIGHT.\n"
    "  05 GROUP-8 COMP SYNC.\n"
    "    10 G8-1 PIC S9(4).\n"
    "    10 G8-2 PIC S9(9) SYNC.\n"
    "    10 G8-3 PIC S9(2).\n"
    "    10 G8-4 PIC S9(2).\n"
    "  05 ODD-1 PIC X.\n"
    "  05 GROUP-2 COMP-5 SYNC OCCURS 3.\n"
    "    10 G2-1 PIC 9(2).\n"
    "    10 G2-2 PIC 9(2).\n"
    "  05 ODD-2 PIC X.\n"
    "  05 GROUP-I INDEX SYNC.\n"
    "    10 GI-1.\n"
    "  05 ODD-3 PIC X.\n"
    "  05 GROUP-D SYNC.\n"
    "    10 GD-1 PIC S9(4) COMP.\n"
    "  05 EDITED PIC ZZ9 BLANK WHEN ZERO.\n"
    "  05 FS USAGE FLOAT-SHORT.\n"
    "  05 FL USAGE FLOAT-LONG SYNC.\n"
    "  05 PP USAGE POINTER.\n"
    "  05 NAT-N PIC N(3) USAGE NATIONAL.\n"
    "  05 NAT-EDITED PIC NNBN.\n"
    "  05 NAT-GROUP NATIONAL.\n"
    "    10 NG-1 PIC NN/N.\n"
    "    10 NG-2 PIC 9(3)V9.\n"
    "    10 NG-3 PIC S9(3) SIGN TRAILING SEPARATE.\n"
    "    10 NG-4 PIC X(3).\n"
    "  05 ORIGINAL PIC X(6).\n"
    "  05 FIRST-V REDEFINES ORIGINAL.\n"
    "    10 FV-1 PIC X(2).\n"
    "      88 IS-ONE VALUE 'A' THRU 'C' 'X'.\n"
    "    10 FV-2 REDEFINES FV-1 PIC 9(2).\n"
    "  05 SECOND-V REDEFINES ORIGINAL PIC S9(3)V99 SIGN LEADING SEPARATE.\n"
    "  66 RENAMED RENAMES ALPHA THRU EDITED.\n";

constexpr const char* COUNTED =
    "01 COUNTED-REC.\n"
    "  05 N PIC 9(2).\n"
    "  05 T OCCURS 2 TO 5 TIMES DEPENDING ON N INDEXED BY IX.\n"
    "    10 T-A PIC X(3).\n"
    "    10 T-B PIC S9(9) COMP SYNC OCCURS 2.\n";

TEST(CobcLayout, EveryClause) {
    if (!has_cobc()) GTEST_SKIP() << "cobc is not installed";
    std::vector<Description> descriptions;
    descriptions.push_back(layout_tests::described(EVERY_CLAUSE, options_of_cobc()));
    descriptions.push_back(layout_tests::described(COUNTED, options_of_cobc()));
    judge(std::string(EVERY_CLAUSE) + COUNTED, descriptions, "every", "");
}

// What cobc refuses is refused, and what it takes is taken. `standard` is cobc's.
TEST(CobcLayout, SameClausesAreRefused) {
    if (!has_cobc()) GTEST_SKIP() << "cobc is not installed";
    const struct {
        const char* items;
        const char* standard = "default";
    } cases[] = {
        {"05 T PIC X OCCURS 9 DEPENDING N."},
        {"05 T PIC X OCCURS 0 TO 9 DEPENDING N. 05 A PIC X."},
        {"05 G. 10 T PIC X OCCURS 9 DEPENDING N. 10 U REDEFINES T PIC X. 05 A PIC X."},
        {"05 G OCCURS 2. 10 T PIC X OCCURS 9 DEPENDING N."},
        {"05 A PIC 9(4) SIGN LEADING."},
        {"05 A PIC 9(4) SIGN TRAILING SEPARATE."},
        {"05 A PIC +9(4) SIGN LEADING."},
        {"05 A PIC X SIGN LEADING SEPARATE."},
        {"05 A PIC S9(4) COMP-3 SIGN LEADING."},
        {"05 A COMP-1 SIGN LEADING."},
        {"05 G SIGN LEADING SEPARATE. 10 A PIC 9. 10 B PIC S9 COMP-3. 10 C PIC X."},
        {"05 A PIC 9(4) BINARY-LONG."},
        {"05 A PIC X(4) COMP-2."},
        {"05 G POINTER. 10 A PIC X(4)."},
        {"05 A PIC X. 03 B PIC X.", "mf"},
        {"05 G. 10 A PIC X. 07 B PIC X.", "mf"},
        {"05 A PIC X. 03 B PIC X. 05 C PIC X.", "mf"},
        {"05 FLOAT PIC X.", "cobol85"},
        {"05 DOUBLE PIC X(4) OCCURS 2.", "cobol85"},
        {"05 BINARY-INT PIC 9(4).", "ibm"},
        {"05 UNSIGNED-CHAR PIC X."},
    };
    const fs::path folder = fs::path(SXML_BUILD_DIR) / "tests" / "probe_refused";
    fs::create_directories(folder);
    for (const auto& each : cases) {
        SCOPED_TRACE(each.items);
        const std::string record = std::string("01 R.\n05 N PIC 9.\n") + each.items + "\n";
        std::ofstream(folder / "probe.cob")
            << "IDENTIFICATION DIVISION.\nPROGRAM-ID. PROBE.\nDATA DIVISION.\n"
               "WORKING-STORAGE SECTION.\n"
            << record << "PROCEDURE DIVISION.\n    STOP RUN.\n";
        const std::string command = "cd '" + folder.string() +
                                    "' && cobc -fsyntax-only -free -std=" + each.standard +
                                    " probe.cob > log 2>&1";
        const bool is_taken = std::system(command.c_str()) == 0;
        EXPECT_EQ(layout_tests::compile(record).description.has_value(), is_taken);
    }
}

// A file of copybooks/ as cobc takes it: what it does not know, or not there, is blanked out.
std::string copybook_text(const std::string& file) {
    std::ifstream in(fs::path(SXML_SOURCE_DIR) / "tests" / "records" / "copybooks" / file);
    std::ostringstream out;
    out << in.rdbuf();
    std::string text = out.str();
    for (const std::string word :
         {"EJECT", "SKIP2", " any length", " is global", " value -1.5e3",
          " values \"abc\" & \"def\"",
          // cobc adds redefinitions to the length of a record with a counter.
          "2 to", "depending on u1 of big"}) {
        for (std::size_t at = 0; (at = text.find(word, at)) != std::string::npos;) {
            text.replace(at, word.size(), word.size(), ' ');
        }
    }
    return text;
}

// Whole copybooks in both formats, as they are found in the field.
TEST(CobcLayout, Copybooks) {
    if (!has_cobc()) GTEST_SKIP() << "cobc is not installed";
    const std::pair<const char*, const char*> files[] = {
        {"account.cpy", "FIXED"},   {"policy.cpy", "FIXED"},        {"tabs.cpy", "FIXED"},
        {"everything.cpy", "FREE"}, {"copylib/payrec.cbl", "FREE"},
    };
    std::string records;
    std::vector<Description> descriptions;
    for (const auto& [file, format] : files) {
        const std::string text = copybook_text(file);
        Diagnostics diagnostics;
        const auto source = parse_copybook_text(text, file, {}, diagnostics);
        auto description = compile_description(*source, options_of_cobc(), diagnostics);
        ASSERT_TRUE(description) << diagnostics.text();
        descriptions.push_back(std::move(*description));
        records += std::string(">>SOURCE FORMAT IS ") + format + "\n" + text +
                   "\n       >>SOURCE FORMAT IS FREE\n";
    }
    judge(records, descriptions, "copybooks", "");
}

}  // namespace
