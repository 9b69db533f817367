#include "gnucobol/fcd.h"

#include <algorithm>

namespace gnucobol {

namespace {

// Numbers of the description are big-endian.
std::uint32_t number_of(const unsigned char* bytes, std::size_t size) {
    std::uint32_t number = 0;
    for (std::size_t i = 0; i < size; ++i) number = number << 8 | bytes[i];
    return number;
}

void store_number(unsigned char (&bytes)[4], std::uint32_t number) {
    for (int i = 3; i >= 0; --i, number >>= 8) bytes[i] = static_cast<unsigned char>(number);
}

void store_status(unsigned char* digits, Status status) {
    const auto number = static_cast<unsigned>(status);
    digits[0] = static_cast<unsigned char>('0' + number / 10);
    digits[1] = static_cast<unsigned char>('0' + number % 10);
}

std::string without_filling(std::string name) {
    name.resize(std::min(name.find('\0'), name.size()));
    name.resize(name.find_last_not_of(' ') + 1);
    return name;
}

}  // namespace

Operation operation_of(const unsigned char* opcode) {
    switch (number_of(opcode, 2)) {
        case OP_OPEN_INPUT:
        case OP_OPEN_INPUT_NOREWIND:
            return Operation::open_input;
        case OP_OPEN_OUTPUT:
        case OP_OPEN_OUTPUT_NOREWIND:
            return Operation::open_output;
        case OP_OPEN_IO:
        case OP_OPEN_EXTEND:
        case OP_OPEN_INPUT_REVERSED:
            return Operation::open_other;
        case OP_CLOSE:
        case OP_CLOSE_LOCK:
        case OP_CLOSE_NO_REWIND:
        case OP_CLOSE_REEL:
        case OP_CLOSE_REMOVE:
        case OP_CLOSE_NOREWIND:
            return Operation::close;
        case OP_READ_SEQ:
        case OP_READ_SEQ_NO_LOCK:
        case OP_READ_SEQ_LOCK:
        case OP_READ_SEQ_KEPT_LOCK:
            return Operation::read_next;
        case OP_WRITE:
        case OP_WRITE_BEFORE:
        case OP_WRITE_BEFORE_TAB:
        case OP_WRITE_BEFORE_PAGE:
        case OP_WRITE_AFTER:
        case OP_WRITE_AFTER_TAB:
        case OP_WRITE_AFTER_PAGE:
            return Operation::write;
        case OP_REWRITE:
        case OP_DELETE:
            return Operation::update;
        case OP_DELETE_FILE:
            return Operation::delete_file;
        case OP_FLUSH:
        case OP_GETINFO:
        case OP_UNLOCK:
        case OP_UNLOCK_REC:
        case OP_COMMIT:
        case OP_ROLLBACK:
            return Operation::other;
        default:
            return Operation::position;
    }
}

const char* verb_of(Operation operation) {
    switch (operation) {
        case Operation::open_input:
            return "OPEN INPUT";
        case Operation::open_output:
            return "OPEN OUTPUT";
        case Operation::open_other:
            return "OPEN I-O or EXTEND";
        case Operation::close:
            return "CLOSE";
        case Operation::read_next:
            return "READ";
        case Operation::write:
            return "WRITE";
        case Operation::update:
            return "REWRITE or DELETE";
        case Operation::position:
            return "START or READ of another kind";
        case Operation::delete_file:
            return "DELETE FILE";
        case Operation::other:
            break;
    }
    return "file operation";
}

void set_status(FCD3& fcd, Status status) {
    store_status(fcd.fileStatus, status);
}

void set_status(cob_file& file, Status status) {
    if (file.file_status != nullptr) store_status(file.file_status, status);
}

// Of the operations that make the runtime look its record up, giving locks back does the least:
// with a file that is not open, nothing. What it leaves behind of its own success is put back.
cob_file* find_program_file(FCD3& fcd) {
    cob_global* const runtime = cob_get_global_ptr();
    const int exception = runtime->cob_exception_code;
    runtime->cob_error_file = nullptr;
    unsigned char unlock[2] = {OP_UNLOCK_REC >> 8, OP_UNLOCK_REC & 0xFF};
    EXTFH(unlock, &fcd);
    runtime->cob_exception_code = exception;
    cob_file* const file = runtime->cob_error_file;
    const bool is_it =
        file != nullptr && file->record != nullptr && file->record->data == fcd.recPtr;
    return is_it ? file : nullptr;
}

void renew_description(FCD3& fcd, const cob_file& file) {
    fcd.openMode = OPEN_NOT_OPEN;
    fcd.fileHandle = nullptr;
    fcd.fileOrg = file.organization == COB_ORG_LINE_SEQUENTIAL ? ORG_LINE_SEQ : ORG_SEQ;
    fcd.otherFlags = file.flag_optional != 0 ? OTH_OPTIONAL : OTH_NOT_OPTIONAL;
    fcd.recPtr = file.record->data;
    store_number(fcd.minRecLen, static_cast<std::uint32_t>(file.record_min));
    store_number(fcd.maxRecLen, static_cast<std::uint32_t>(file.record_max));
    store_number(fcd.curRecLen, static_cast<std::uint32_t>(file.record_max));
}

std::string assigned_name(const FCD3& fcd) {
    if (fcd.fnamePtr == nullptr) return {};
    return without_filling({fcd.fnamePtr, number_of(fcd.fnameLen, sizeof fcd.fnameLen)});
}

std::string assigned_name(const cob_file& file) {
    if (file.assign == nullptr || file.assign->data == nullptr) return {};
    const auto* const text = reinterpret_cast<const char*>(file.assign->data);
    return without_filling({text, file.assign->size});
}

bool is_sequential(const FCD3& fcd) {
    return fcd.fileOrg == ORG_SEQ || fcd.fileOrg == ORG_LINE_SEQ;
}

bool is_optional(const FCD3& fcd) {
    return (fcd.otherFlags & OTH_OPTIONAL) != 0;
}

// The runtime passes this as an option of the plain operation.
Closing closing_of(const FCD3& fcd) {
    switch (fcd.opt[3]) {
        case COB_CLOSE_LOCK:
            return Closing::with_lock;
        case COB_CLOSE_NO_REWIND:
            return Closing::no_rewind;
        case COB_CLOSE_UNIT:
        case COB_CLOSE_UNIT_REMOVAL:
            return Closing::reel;
        default:
            return Closing::plain;
    }
}

std::uint32_t shortest_record(const FCD3& fcd) {
    return number_of(fcd.minRecLen, sizeof fcd.minRecLen);
}
std::uint32_t longest_record(const FCD3& fcd) {
    return number_of(fcd.maxRecLen, sizeof fcd.maxRecLen);
}
std::uint32_t current_record(const FCD3& fcd) {
    return number_of(fcd.curRecLen, sizeof fcd.curRecLen);
}
void set_current_record(FCD3& fcd, std::uint32_t length) {
    store_number(fcd.curRecLen, length);
}

}  // namespace gnucobol
