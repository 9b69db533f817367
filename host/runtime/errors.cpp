#include "host/errors.h"

namespace {

constexpr int DETAIL_CODES = 32;  // 0 to 31 have a word each; one more serves all others

struct ErrorValues {
    std::int16_t file_error;
    std::int32_t details[DETAIL_CODES + 1];
    std::int32_t subcode;
    const char* text;
};

thread_local constinit ErrorValues values{};

}  // namespace

std::int16_t* host_file_error() {
    return &values.file_error;
}

std::int32_t* host_error_detail(int code) {
    return &values.details[code >= 0 && code < DETAIL_CODES ? code : DETAIL_CODES];
}

std::int32_t* host_error_subcode() {
    return &values.subcode;
}

const char** host_error_text() {
    return &values.text;
}
