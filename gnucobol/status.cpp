#include "gnucobol/status.h"

#include <cerrno>
#include <cstring>

namespace gnucobol {

void set_status(cob_file& file, cob_field* item, Status status) {
    // By the first digit of the status.
    static constexpr int EXCEPTIONS[] = {0,
                                         COB_EC_I_O_AT_END,
                                         COB_EC_I_O_INVALID_KEY,
                                         COB_EC_I_O_PERMANENT_ERROR,
                                         COB_EC_I_O_LOGIC_ERROR,
                                         COB_EC_I_O_RECORD_OPERATION,
                                         COB_EC_I_O_FILE_SHARING};
    cob_global* const runtime = cob_get_global_ptr();
    const auto number = static_cast<unsigned>(status);
    runtime->cob_error_file = &file;
    file.file_status[0] = static_cast<unsigned char>('0' + number / 10);
    file.file_status[1] = static_cast<unsigned char>('0' + number % 10);
    if (item != nullptr) std::memcpy(item->data, file.file_status, 2);
    if (status == Status::done) {
        runtime->cob_exception_code = 0;
    } else {
        cob_set_exception(EXCEPTIONS[number / 10]);
    }
}

Result refusal(int system_error) {
    const std::string text = std::strerror(system_error);
    switch (system_error) {
        case EACCES:
        case EPERM:
        case EROFS:
        case EISDIR:
        case ELOOP:
            return {Status::not_permitted, text};
        case ENOSPC:
        case EDQUOT:
            return {Status::no_space, text};
        case EFBIG:
            return {Status::no_space, text + "; allow larger files (`ulimit -f`)"};
        case EMFILE:
        case ENFILE:
            return {Status::permanent_error,
                    text + "; close files, or allow more of them (`ulimit -n`)"};
        default:
            return {Status::permanent_error, text};
    }
}

}  // namespace gnucobol
