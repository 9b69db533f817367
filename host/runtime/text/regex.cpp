// Regular expressions on PCRE2. Expressions and matches are objects of the handle registry, and
// PCRE2's own blocks are tracked like any other.
#define PCRE2_CODE_UNIT_WIDTH 8
#include "host/regex.h"

#include <pcre2.h>

#include <array>

#include "host/handles.h"
#include "host/runtime/library_versions.h"
#include "host/runtime/memory/tracked_memory.h"

namespace {

constexpr const char* SOURCE = "host/runtime/regex";
constexpr const char* DESCRIPTION = "regular expression";
// Limits on the work of one search, so that no pattern and text can block the process.
constexpr std::uint32_t MATCH_LIMIT = 10'000'000;
constexpr std::uint32_t HEAP_LIMIT_KIB = 64 * 1024;

struct Expression {
    pcre2_code* code;
};
struct Match {
    std::size_t start;
    std::size_t end;
};

void* take_memory(std::size_t size, void* /*context*/) {
    return host::memory::allocate(size, {SOURCE, __LINE__, DESCRIPTION});
}
void give_memory(void* block, void* /*context*/) {
    host::memory::release(block);
}

// Frees what the context functions made; each type of PCRE2 has its own function for that.
template <auto release_function, class T>
class Owned {
  public:
    explicit Owned(T* object) : object_(object) {}
    ~Owned() { release_function(object_); }
    Owned(const Owned&) = delete;
    Owned& operator=(const Owned&) = delete;
    T* get() const { return object_; }

  private:
    T* object_;
};
using GeneralContext = Owned<pcre2_general_context_free, pcre2_general_context>;
using CompileContext = Owned<pcre2_compile_context_free, pcre2_compile_context>;
using MatchContext = Owned<pcre2_match_context_free, pcre2_match_context>;
using MatchData = Owned<pcre2_match_data_free, pcre2_match_data>;

void destroy_expression(std::uint32_t handle) {
    pcre2_code_free(static_cast<Expression*>(host_handle_ptr(handle))->code);
}

std::uint32_t expression_type() {
    static constinit std::uint32_t id = 0;
    if (id == 0) {
        const HostHandleType type{sizeof(Expression), {}, HOST_HANDLE_KIND, {}, destroy_expression};
        id = host_handle_type_register(&type);
    }
    return id;
}

std::uint32_t match_type() {
    static constinit std::uint32_t id = 0;
    if (id == 0) {
        const HostHandleType type{sizeof(Match), {}, HOST_HANDLE_KIND, {}, nullptr};
        id = host_handle_type_register(&type);
    }
    return id;
}

pcre2_code* compile(const char* pattern) {
    const GeneralContext general(pcre2_general_context_create(take_memory, give_memory, nullptr));
    if (general.get() == nullptr) return nullptr;
    const CompileContext context(pcre2_compile_context_create(general.get()));
    if (context.get() == nullptr) return nullptr;
    pcre2_set_newline(context.get(), PCRE2_NEWLINE_LF);
    int error = 0;
    PCRE2_SIZE error_offset = 0;
    return pcre2_compile(reinterpret_cast<PCRE2_SPTR>(pattern), PCRE2_ZERO_TERMINATED,
                         PCRE2_DOLLAR_ENDONLY | PCRE2_NEVER_UTF | PCRE2_NEVER_UCP, &error,
                         &error_offset, context.get());
}

bool search(const pcre2_code* code, const char* text, std::size_t length, Match& match) {
    const GeneralContext general(pcre2_general_context_create(take_memory, give_memory, nullptr));
    if (general.get() == nullptr) return false;
    const MatchContext context(pcre2_match_context_create(general.get()));
    const MatchData data(pcre2_match_data_create_from_pattern(code, general.get()));
    if (context.get() == nullptr || data.get() == nullptr) return false;
    pcre2_set_match_limit(context.get(), MATCH_LIMIT);
    pcre2_set_heap_limit(context.get(), HEAP_LIMIT_KIB);
    if (pcre2_match(code, reinterpret_cast<PCRE2_SPTR>(text), length, 0, 0, data.get(),
                    context.get()) < 0) {
        return false;
    }
    const PCRE2_SIZE* range = pcre2_get_ovector_pointer(data.get());
    match = Match{range[0], range[1]};
    return range[0] <= range[1];
}

}  // namespace

std::uint32_t host_regex_compile(const char* pattern, int /*flags*/) {
    pcre2_code* code = pattern != nullptr ? compile(pattern) : nullptr;
    if (code == nullptr) return 0;
    const std::uint32_t handle =
        host_handle_new(expression_type(), 0, 0, SOURCE, __LINE__, DESCRIPTION, 0);
    if (handle == 0) {
        pcre2_code_free(code);
        return 0;
    }
    static_cast<Expression*>(host_handle_ptr(handle))->code = code;
    return handle;
}

std::uint32_t host_regex_match(std::uint32_t expression, const char* text, std::size_t length,
                               std::size_t* start, std::size_t* end) {
    if (expression == 0 || host_handle_type(expression) != expression_type()) return 0;
    const auto* object = static_cast<const Expression*>(host_handle_ptr(expression));
    Match found{};
    if (!search(object->code, text, length, found)) return 0;
    const std::uint32_t handle =
        host_handle_new(match_type(), 0, 0, SOURCE, __LINE__, "regular expression match", 0);
    if (handle == 0) return 0;
    *static_cast<Match*>(host_handle_ptr(handle)) = found;
    *start = found.start;
    *end = found.end;
    return handle;
}

void host_regex_match_free(std::uint32_t match) {
    if (match != 0 && host_handle_type(match) == match_type()) {
        host_handle_free(match, SOURCE, __LINE__, 0);
    }
}

void host_regex_free(std::uint32_t expression) {
    if (expression != 0 && host_handle_type(expression) == expression_type()) {
        host_handle_free(expression, SOURCE, __LINE__, 0);
    }
}

std::string host::regex_library_version() {
    std::array<char, 64> version{};
    const int size = pcre2_config(PCRE2_CONFIG_VERSION, nullptr);
    if (size <= 0 || static_cast<std::size_t>(size) > version.size()) return "unknown";
    pcre2_config(PCRE2_CONFIG_VERSION, version.data());
    return version.data();
}
