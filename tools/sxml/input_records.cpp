#include "tools/sxml/input_records.h"

#include <cstddef>
#include <limits>
#include <utility>

#include "conversion/documents/document_check.h"
#include "host/errors.h"
#include "records/description.h"
#include "records/numbers.h"
#include "tools/sxml/document.h"
#include "tools/sxml/errors.h"

namespace command {

namespace {

InputRecords* current = nullptr;

// True when there is a record layout without a condition, which takes the records of no other.
bool takes_any_record(const Xfd& xfd) {
    if ((xfd.flags & XFD_SEVERAL_LAYOUTS) == 0) return true;
    bool has_condition = true;
    for (std::int32_t i = 0; i < xfd.item_count; ++i) {
        const XfdItem& item = xfd.items[i];
        if (item.level == 1 && !has_condition) return true;
        if (item.level == 1) has_condition = false;
        if (item.condition > 0 && item.condition != XFD_GROUP) has_condition = true;
    }
    return !has_condition;
}

std::string records_text(std::uint64_t count) {
    return std::to_string(count) + (count == 1 ? " record" : " records");
}

}  // namespace

int test_input_condition(Xfd* xfd, int number, const void* record) {
    const int holds = Q4TestCOBOLCond(xfd, number, record);
    if ((xfd->conditions[number - 1].is_true & 1) != 0) {
        current->buffer_.add_condition(number);
        current->is_of_a_layout_ = true;
    }
    return holds;
}

Xfd* parse_input_description(const char* name, int first, int second) {
    Xfd* const xfd = Q4ParseXFD(name, first, second);
    if (xfd != nullptr) divert_texts(*xfd);
    current->xfd_ = xfd;
    return xfd;
}

// Nothing may be thrown through the module.
int convert_input(XfdDataDesc* field, const XfdDataDesc* text, int mode) {
    try {
        return current->convert(*field, *text, mode);
    } catch (...) {
        current->failure_ = std::current_exception();
        return 0;
    }
}

host::Module load_module_for_input() {
    return load_module(&parse_input_description, &test_input_condition, &convert_input);
}

InputRecords::InputRecords(const host::Module& module, const std::string& file,
                           std::string shown_name, const records::Description& description,
                           const RecordFields& fields, RecordBuffer& buffer, InputTexts& texts)
    : module_(module),
      file_name_(file),
      shown_name_(std::move(shown_name)),
      fields_(fields),
      buffer_(buffer),
      texts_(texts),
      single_entry_(description) {
    current = this;
    file_ = module.open(file.c_str(), XML_OPEN_INPUT);
    if (file_ == nullptr) fail_document();
    takes_any_record_ = takes_any_record(*xfd_);
}

InputRecords::~InputRecords() {
    if (file_ != nullptr) module_.close(file_);
    current = nullptr;
}

bool InputRecords::next() {
    buffer_.begin_record();
    texts_.begin_record(count_ + 1, buffer_.keeps());
    is_of_a_layout_ = takes_any_record_;
    const int result = module_.read(file_, buffer_.data());
    const int code = *host_file_error();
    single_entry_.end_record();
    if (failure_) std::rethrow_exception(failure_);
    if (result == 0 && code == HOST_FILE_END) return false;
    if (result == 0 || code != HOST_FILE_OK) fail_document();
    ++count_;
    if (!is_of_a_layout_) report_layout();
    return true;
}

void InputRecords::finish() {
    if (!module_.read_to_end(file_, buffer_.data())) fail_document();
    lost_numbers_.sum_up(shown_name_, "text", " of numeric fields that cannot be stored there");
    texts_.finish();
    strangers_.sum_up(shown_name_, "record",
                      " of no layout; only the fields that all layouts have were filled");
}

void InputRecords::fail_document() const {
    const int code = *host_file_error();
    if (code == HOST_FILE_NO_MEMORY) fail("there is not enough memory");
    if (code == HOST_FILE_OK && !records::last_description_error().empty())
        fail(records::last_description_error());
    const std::string after = records_text(count_) + " came before";
    conversion::Done problem = conversion::check_document(file_name_, shown_name_);
    if (!problem) fail(shown_name_ + ": the document cannot be read; " + after);
    problem->remedy = after;
    fail(*problem);
}

int InputRecords::convert(XfdDataDesc& field, const XfdDataDesc& text, int mode) {
    const auto* const item = reinterpret_cast<const XfdItem*>(
        reinterpret_cast<const char*>(&field) - offsetof(XfdItem, data));
    const auto index = static_cast<std::int32_t>(item - xfd_->items);
    // The length of a text of 2 GiB and more reads as a negative number.
    const std::int32_t size =
        text.length >= 0 ? text.length : std::numeric_limits<std::int32_t>::max();
    const std::string_view value(static_cast<const char*>(text.address),
                                 static_cast<std::size_t>(size));
    if (!single_entry_.is_in_use(item->offset)) return 1;
    if (field.type == TEXT_TO_MOVE) {
        texts_.move(index, value, static_cast<std::uint8_t*>(field.address));
        return 1;
    }
    const int result = Qconvert(&field, &text, mode);
    if (result == 0 && !value.empty()) report_number(index, value);
    single_entry_.number_stored(buffer_.data(), field.address);
    return result;
}

void InputRecords::report_number(std::int32_t item, std::string_view text) {
    if (!lost_numbers_.wants_next()) return;
    warn(shown_name_ + ": record " + std::to_string(count_ + 1) + ", field " + fields_.name(item) +
         ": no number that fits the field: " + quoted(text));
}

void InputRecords::report_layout() {
    if (!strangers_.wants_next()) return;
    warn(shown_name_ + ": record " + std::to_string(count_) +
         ": none of the record layouts' conditions holds");
}

}  // namespace command
