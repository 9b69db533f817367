// System calls that fail. A filter of the kernel hands the calls of the wanted kind to a signal
// handler, whoever makes them: the C library's own streams call nothing that could be replaced.
#include <linux/audit.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <ucontext.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <initializer_list>
#include <string_view>

#include "tests/faults/fault_plan.h"

// A system call from a place that the filter lets through.
extern "C" long faults_system_call(long number, long a, long b, long c, long d, long e, long f);
extern "C" const char faults_system_call_end;
asm(R"(
    .text
    .globl faults_system_call
    .hidden faults_system_call
    .hidden faults_system_call_end
faults_system_call:
    mov %rdi, %rax
    mov %rsi, %rdi
    mov %rdx, %rsi
    mov %rcx, %rdx
    mov %r8, %r10
    mov %r9, %r8
    mov 8(%rsp), %r9
    syscall
    .globl faults_system_call_end
faults_system_call_end:
    ret
)");

namespace {

using faults::Kind;

std::initializer_list<long> calls_of(Kind kind) {
    static constexpr std::initializer_list<long> reads = {SYS_read, SYS_pread64, SYS_readv};
    static constexpr std::initializer_list<long> writes = {SYS_write, SYS_pwrite64, SYS_writev};
    static constexpr std::initializer_list<long> syncs = {SYS_fsync, SYS_fdatasync};
    static constexpr std::initializer_list<long> renames = {SYS_rename, SYS_renameat, SYS_renameat2,
                                                            SYS_link, SYS_linkat};
    static constexpr std::initializer_list<long> opens = {SYS_open, SYS_openat, SYS_creat};
    static constexpr std::initializer_list<long> links = {SYS_readlink, SYS_readlinkat};
    switch (kind) {
        case Kind::read:
            return reads;
        case Kind::write:
            return writes;
        case Kind::sync:
            return syncs;
        case Kind::rename:
            return renames;
        case Kind::open:
            return opens;
        case Kind::link:
            return links;
        default:
            return {};
    }
}

// The files of the system itself. The C library does not say that it could not read one of its
// tables; what it does instead is its own affair.
bool is_of_system(const char* path) {
    for (const char* folder : {"/usr/", "/lib/", "/etc/"}) {
        if (std::strncmp(path, folder, std::strlen(folder)) == 0) return true;
    }
    return std::strstr(path, "/gconv") != nullptr;
}

// The path of an open file. Empty when there is none, as for a pipe.
void find_path(long descriptor, char* path, std::size_t size) {
    std::array<char, 40> link{};
    std::snprintf(link.data(), link.size(), "/proc/self/fd/%ld", descriptor);
    const ssize_t length = ::readlink(link.data(), path, size - 1);
    path[length > 0 ? length : 0] = '\0';
}

bool is_exempt(Kind kind, const greg_t* registers) {
    // A message about a failing write to standard error could not be read.
    if (kind == Kind::write) return registers[REG_RDI] == STDERR_FILENO;
    if (kind == Kind::read) {
        std::array<char, 1024> path;
        find_path(registers[REG_RDI], path.data(), path.size());
        return is_of_system(path.data());
    }
    if (kind != Kind::open) return false;
    const bool is_at = registers[REG_RAX] == SYS_openat;
    const auto* path = reinterpret_cast<const char*>(registers[is_at ? REG_RSI : REG_RDI]);
    return path != nullptr && is_of_system(path);
}

void serve(int /*signal*/, siginfo_t* /*info*/, void* context) {
    greg_t* registers = static_cast<ucontext_t*>(context)->uc_mcontext.gregs;
    const Kind kind = faults::plan().kind;
    if (!is_exempt(kind, registers) && faults::fails(kind)) {
        registers[REG_RAX] = -faults::plan().error;
        return;
    }
    registers[REG_RAX] = faults_system_call(
        registers[REG_RAX], registers[REG_RDI], registers[REG_RSI], registers[REG_RDX],
        registers[REG_R10], registers[REG_R8], registers[REG_R9]);
}

constexpr std::size_t LARGEST_FILTER = 32;

class Filter {
  public:
    explicit Filter(std::initializer_list<long> calls) {
        load(offsetof(seccomp_data, instruction_pointer));
        const auto end = reinterpret_cast<std::uintptr_t>(&faults_system_call_end);
        // The lower half of the address tells enough.
        add(BPF_JMP | BPF_JEQ | BPF_K, static_cast<std::uint32_t>(end), 0, 1);
        add(BPF_RET | BPF_K, SECCOMP_RET_ALLOW, 0, 0);
        load(offsetof(seccomp_data, nr));
        for (const long call : calls) {
            add(BPF_JMP | BPF_JEQ | BPF_K, static_cast<std::uint32_t>(call), 0, 1);
            add(BPF_RET | BPF_K, SECCOMP_RET_TRAP, 0, 0);
        }
        add(BPF_RET | BPF_K, SECCOMP_RET_ALLOW, 0, 0);
    }

    bool install() {
        sock_fprog program{static_cast<unsigned short>(size_), code_.data()};
        return prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
               prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) == 0;
    }

  private:
    void load(std::size_t offset) {
        add(BPF_LD | BPF_W | BPF_ABS, static_cast<std::uint32_t>(offset), 0, 0);
    }
    void add(int operation, std::uint32_t value, int if_true, int if_false) {
        code_[size_++] = {static_cast<std::uint16_t>(operation), static_cast<std::uint8_t>(if_true),
                          static_cast<std::uint8_t>(if_false), value};
    }

    std::array<sock_filter, LARGEST_FILTER> code_{};
    std::size_t size_ = 0;
};

__attribute__((constructor)) void watch_system_calls() {
    const std::initializer_list<long> calls = calls_of(faults::plan().kind);
    if (calls.size() == 0) return;
    struct sigaction action {};
    action.sa_sigaction = serve;
    action.sa_flags = SA_SIGINFO | SA_NODEFER;
    constexpr std::string_view refused = "faults: the kernel takes no filter of system calls\n";
    if (sigaction(SIGSYS, &action, nullptr) != 0 || !Filter(calls).install()) {
        [[maybe_unused]] const ssize_t count =
            ::write(STDERR_FILENO, refused.data(), refused.size());
        _exit(125);
    }
}

}  // namespace
