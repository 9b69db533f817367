#include "tools/sxml/reports/reject_file.h"

#include <utility>

#include "tools/sxml/failure.h"

namespace command {

namespace {

// Two hyphens may not stand in a comment.
std::string comment_text(std::string text) {
    for (std::size_t at = 0; at < text.size(); ++at) {
        const bool is_control = static_cast<unsigned char>(text[at]) < 0x20;
        if (is_control) text[at] = ' ';
        if (text[at] == '-' && text.compare(at + 1, 1, "-") == 0) text.insert(at + 1, " ");
    }
    return text;
}

bool is_ascii(const std::string& text) {
    for (const char c : text) {
        if (static_cast<unsigned char>(c) >= 0x80) return false;
    }
    return true;
}

}  // namespace

RejectFile::RejectFile(const ReportOptions& options, std::string input)
    : most_(options.max_rejects), input_(std::move(input)) {
    if (options.rejects.empty()) return;
    output_.emplace(options.rejects);
    sink_.emplace(output_->open());
}

void RejectFile::count_one() {
    if (++count_ > most_) {
        fail(input_ + ": more than " + std::to_string(most_) +
             " records cannot be converted; --max-rejects says how many may be rejected");
    }
}

void RejectFile::add(std::span<const std::uint8_t> record, const conversion::RecordFormat& format) {
    count_one();
    if (!writer_) writer_ = conversion::write_records(format, *sink_);
    check(writer_->add(record));
}

void RejectFile::add(conversion::InputDocument& document, const conversion::Problem& problem) {
    const std::string record = document.source_text();
    add(record, document.source_encoding(), problem);
}

void RejectFile::add(const std::string& record, const std::string& encoding,
                     const conversion::Problem& problem) {
    count_one();
    begin_document(encoding);
    std::string why = message_of(problem);
    // The message is in UTF-8, the document perhaps not.
    if (!is_ascii(why) && encoding != "UTF-8") why = problem.place.file;
    write("<!-- " + comment_text(why) + " -->\n" + record + "\n");
}

void RejectFile::begin_document(const std::string& encoding) {
    if (has_begun_) return;
    has_begun_ = true;
    write("<?xml version=\"1.0\" encoding=\"" + encoding + "\"?>\n<rejected>\n");
}

void RejectFile::write(const std::string& text) {
    check(sink_->write(text.data(), text.size()));
}

void RejectFile::finish_records() {
    if (!is_wanted()) return;
    if (writer_) check(writer_->close());
    finish();
}

void RejectFile::finish_document() {
    if (!is_wanted()) return;
    begin_document("UTF-8");
    write("</rejected>\n");
    finish();
}

void RejectFile::finish() {
    if (!writer_) check(sink_->close());
    output_->commit();
}

}  // namespace command
