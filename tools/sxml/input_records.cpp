#include "tools/sxml/input_records.h"

#include <utility>

#include "host/errors.h"
#include "host/records/description.h"
#include "host/records/numbers.h"
#include "tools/sxml/document.h"
#include "tools/sxml/document_check.h"
#include "tools/sxml/errors.h"

namespace command {

namespace {

constexpr std::uint64_t NAMED_AT_MOST = 10;

InputRecords* current = nullptr;

std::string records_text(std::uint64_t count) {
    return std::to_string(count) + (count == 1 ? " record" : " records");
}

}  // namespace

int test_input_condition(Xfd* xfd, int number, const void* record) {
    const int holds = Q4TestCOBOLCond(xfd, number, record);
    if ((xfd->conditions[number - 1].is_true & 1) != 0) current->buffer_.add_condition(number);
    return holds;
}

int convert_input(XfdDataDesc* field, const XfdDataDesc* text, int mode) {
    const int result = Qconvert(field, text, mode);
    if (result == 0 && text->length > 0) current->report_number(*field, *text);
    return result;
}

host::Module load_module_for_input() {
    return load_module(&test_input_condition, &convert_input);
}

InputRecords::InputRecords(const host::Module& module, const std::string& file,
                           std::string shown_name, const RecordFields& fields, RecordBuffer& buffer)
    : module_(module),
      file_name_(file),
      shown_name_(std::move(shown_name)),
      fields_(fields),
      buffer_(buffer) {
    current = this;
    file_ = module.open(file.c_str(), XML_OPEN_INPUT);
    if (file_ == nullptr) fail_document();
}

InputRecords::~InputRecords() {
    if (file_ != nullptr) module_.close(file_);
    current = nullptr;
}

bool InputRecords::next() {
    buffer_.begin_record();
    const int result = module_.read(file_, buffer_.data());
    const int code = *host_file_error();
    if (result == 0 && code == HOST_FILE_END) return false;
    if (result == 0 || code != HOST_FILE_OK) fail_document();
    ++count_;
    return true;
}

void InputRecords::finish() {
    read_to_end();
    if (lost_numbers_ == 0) return;
    std::string text = std::to_string(lost_numbers_) + (lost_numbers_ == 1 ? " text" : " texts") +
                       " of numeric fields were no numbers or did not fit";
    if (lost_numbers_ > NAMED_AT_MOST) {
        text += "; the first " + std::to_string(NAMED_AT_MOST) + " are named above";
    }
    warn(shown_name_ + ": " + text);
}

// A read behind the last record reads on; at the end of the input it tells what is missing.
void InputRecords::read_to_end() {
    constexpr std::int32_t NOT_TOLD = -1;
    const std::int16_t& code = *host_file_error();
    std::int32_t& missing = *host_error_subcode();
    do {
        missing = NOT_TOLD;
        module_.read(file_, buffer_.data());
    } while (code == HOST_FILE_END && missing == NOT_TOLD);
    if (code != HOST_FILE_END || missing != 0) fail_document();
}

void InputRecords::fail_document() const {
    const int code = *host_file_error();
    if (code == HOST_FILE_NO_MEMORY) fail("there is not enough memory");
    if (code == HOST_FILE_OK && !records::last_description_error().empty())
        fail(records::last_description_error());
    const std::string after = "; " + records_text(count_) + " came before";
    const std::optional<DocumentProblem> problem = check_document(file_name_);
    if (!problem) fail(shown_name_ + ": the document cannot be read" + after);
    fail(shown_name_ + ":" + std::to_string(problem->line) + ":" + std::to_string(problem->column) +
         ": " + problem->text + after);
}

void InputRecords::report_number(const XfdDataDesc& field, const XfdDataDesc& text) {
    if (++lost_numbers_ > NAMED_AT_MOST) return;
    const auto offset = static_cast<const std::uint8_t*>(field.address) - buffer_.data();
    std::string name = "at byte offset " + std::to_string(offset);
    for (const Field& candidate : fields_.all()) {
        if (candidate.offset == offset && candidate.length == field.length) {
            name = fields_.name(candidate);
            break;
        }
    }
    const std::string_view value(static_cast<const char*>(text.address),
                                 static_cast<std::size_t>(text.length));
    constexpr std::size_t SHOWN = 40;
    warn(shown_name_ + ": record " + std::to_string(count_ + 1) + ", field " + name +
         ": no number that fits the field: '" + std::string(value.substr(0, SHOWN)) +
         (value.size() > SHOWN ? "...'" : "'"));
}

}  // namespace command
