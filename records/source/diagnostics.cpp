#include "records/diagnostics.h"

#include <utility>

namespace records {

namespace {

constexpr int MAX_REPORTED = 100;  // of errors, and of warnings

const char* severity_name(Severity severity) {
    switch (severity) {
        case Severity::error:
            return "error";
        case Severity::warning:
            return "warning";
        case Severity::note:
            break;
    }
    return "note";
}

// The source line and, where the line reaches as far, a caret below the column.
void append_source(const Place& place, std::string& out) {
    if (place.text.empty()) return;
    out += "    " + place.text + "\n";
    if (place.column < 1 || static_cast<std::size_t>(place.column) > place.text.size() + 1) return;
    out += std::string(static_cast<std::size_t>(place.column) + 3, ' ') + "^\n";
}

void append_diagnostic(const Diagnostic& diagnostic, std::string& out) {
    const Place& place = diagnostic.place;
    if (place.file) {
        out += *place.file + ":";
        if (place.line > 0) {
            out += std::to_string(place.line) + ":" + std::to_string(place.column) + ":";
        }
        out += " ";
    }
    out += std::string(severity_name(diagnostic.severity)) + ": " + diagnostic.message + "\n";
    append_source(place, out);
}

}  // namespace

void Diagnostics::error(Place place, std::string message) {
    ++errors_;
    if (errors_ > MAX_REPORTED) return;
    add(Severity::error, std::move(place), std::move(message));
}

void Diagnostics::warning(Place place, std::string message) {
    ++warnings_;
    if (warnings_ > MAX_REPORTED) return;
    add(Severity::warning, std::move(place), std::move(message));
}

void Diagnostics::note(Place place, std::string message) {
    all_.push_back({Severity::note, std::move(place), std::move(message)});
}

void Diagnostics::add(Severity severity, Place place, std::string message) {
    std::shared_ptr<const Place> from = place.copied_from;
    all_.push_back({severity, std::move(place), std::move(message)});
    for (; from; from = from->copied_from) note(*from, "copied from here");
}

std::string Diagnostics::text() const {
    std::string out;
    for (const Diagnostic& diagnostic : all_) append_diagnostic(diagnostic, out);
    if (errors_ > MAX_REPORTED) {
        out += "note: " + std::to_string(errors_ - MAX_REPORTED) + " more errors not shown\n";
    }
    return out;
}

}  // namespace records
