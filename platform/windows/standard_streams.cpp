#include "platform/standard_streams.h"

#include <fcntl.h>
#include <io.h>

#include <cstdlib>
#include <initializer_list>

#include "platform/descriptors.h"
#include "platform/windows/console.h"
#include "platform/windows/handles.h"

namespace platform {

namespace {

UINT code_page_before = 0;  // 0: not known

// What is written is UTF-8, and has the usual sequences for colours.
void prepare_console() {
    for (const int descriptor : {STANDARD_OUTPUT, STANDARD_ERROR}) {
        DWORD mode = 0;
        const HANDLE console = handle_of(descriptor);
        if (GetConsoleMode(console, &mode) == 0) continue;
        SetConsoleMode(console, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING);
    }
    code_page_before = GetConsoleOutputCP();
    if (code_page_before == 0 || code_page_before == CP_UTF8) return;
    SetConsoleOutputCP(CP_UTF8);
    std::atexit(restore_console);
}

}  // namespace

void restore_console() {
    if (code_page_before != 0) SetConsoleOutputCP(code_page_before);
}

bool open_missing_standard_streams() {
    for (const int descriptor : {STANDARD_INPUT, STANDARD_OUTPUT, STANDARD_ERROR}) {
        if (handle_of(descriptor) != INVALID_HANDLE_VALUE) {
            _setmode(descriptor, _O_BINARY);
            continue;
        }
        FileHandle null("NUL", descriptor == STANDARD_INPUT ? GENERIC_READ : GENERIC_WRITE,
                        OPEN_EXISTING);
        const int opened =
            null.into_descriptor(descriptor == STANDARD_INPUT ? _O_RDONLY : _O_WRONLY);
        if (opened < 0) return false;
        if (opened == descriptor) continue;
        const bool is_placed = _dup2(opened, descriptor) == 0;
        _close(opened);
        if (!is_placed) return false;
    }
    prepare_console();
    return true;
}

bool is_terminal(int descriptor) {
    DWORD mode = 0;
    return GetConsoleMode(handle_of(descriptor), &mode) != 0;
}

std::optional<int> terminal_width(int descriptor) {
    CONSOLE_SCREEN_BUFFER_INFO screen{};
    if (GetConsoleScreenBufferInfo(handle_of(descriptor), &screen) == 0) return std::nullopt;
    return screen.srWindow.Right - screen.srWindow.Left + 1;
}

}  // namespace platform
