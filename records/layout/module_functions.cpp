// The functions handed to the module: what they throw stays inside them.
#include <array>
#include <exception>
#include <new>
#include <string_view>

#include "host/config.h"
#include "records/layout/description_data.h"
#include "records/layout/description_files/search_path.h"

namespace records {
namespace {

thread_local const Description* bound = nullptr;
// An array, since a string would be destroyed with the thread, and the C library ends the process
// when it has no memory to note that. Longer texts are cut.
thread_local constinit std::array<char, 2048> last_error{};

void set_error(std::string_view text) {
    last_error[text.copy(last_error.data(), last_error.size() - 1)] = '\0';
}

Xfd* parse(const std::string& name) {
    if (bound != nullptr) return std::make_unique<XfdBlock>(bound->data().block).release();
    const std::string file = find_description_file(name);
    if (file.empty()) {
        set_error("error: no record description for " + name +
                  " (a file of its name with .xfd, .cpy or .cbl, on SXML_PATH or beside it)\n");
        return nullptr;
    }
    CopybookOptions copybook;
    copybook.copy_path = search_path();
    const char* fd = host_config_string("SXML_FD", nullptr);
    if (fd != nullptr) copybook.fd = fd;
    LayoutOptions layout;
    layout.name_case = configured_name_case();
    Diagnostics diagnostics;
    const std::optional<Description> description =
        load_description(file, copybook, layout, diagnostics);
    if (!description) {
        set_error(diagnostics.text());
        return nullptr;
    }
    return std::make_unique<XfdBlock>(description->data().block).release();
}

}  // namespace

NameCase configured_name_case() {
    switch (host_config_number("4GL_COLUMN_CASE", 0)) {
        case 1:
            return NameCase::underscores;
        case 2:
            return NameCase::unchanged;
        default:
            return NameCase::lower;
    }
}

void bind_description(const Description* description) {
    bound = description;
}

std::string last_description_error() {
    return last_error.data();
}

}  // namespace records

// Host libraries may hand over other version numbers; this host's descriptions have one form.
Xfd* Q4ParseXFD(const char* name, int /*first*/, int /*second*/) {
    records::set_error("");
    try {
        return records::parse(name == nullptr ? "" : name);
    } catch (const std::bad_alloc&) {
        records::set_error("error: memory is exhausted\n");
        return nullptr;
    } catch (const std::exception& failure) {
        records::set_error(failure.what());
        return nullptr;
    }
}

void Q4XFDFree(Xfd* xfd) {
    delete static_cast<records::XfdBlock*>(xfd);
}

int Q4TestCOBOLCond(Xfd* xfd, int number, const void* record) {
    auto* block = static_cast<records::XfdBlock*>(xfd);
    if (number < 1 || number > block->condition_count) return 0;
    const auto index = static_cast<std::size_t>(number - 1);
    const records::ConditionSet& tests = *block->tests;
    const records::ConditionSet::Numbered& condition = tests.numbered[index];
    const bool holds = tests.tests[condition.condition].holds(
        static_cast<const std::uint8_t*>(record), condition.shifts, block->position);
    XfdCondition& result = block->own_conditions[index];
    result.is_true = static_cast<std::uint8_t>((result.is_true & ~1) | (holds ? 1 : 0));
    return holds ? 1 : 0;
}
