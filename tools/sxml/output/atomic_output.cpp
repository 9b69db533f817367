#include "tools/sxml/output/atomic_output.h"

#include <cerrno>
#include <utility>

#include "tools/sxml/failure.h"
#include "tools/sxml/output/hidden_failures.h"

namespace command {

namespace {

platform::Replacement begin_replacement(const std::string& target) {
    auto replacement = platform::Replacement::begin(target);
    if (!replacement) fail_file(target, errno);
    return *std::move(replacement);
}

}  // namespace

AtomicOutput::AtomicOutput(const std::string& target)
    : target_(target), replacement_(begin_replacement(target)) {
    if (write_name() == "-") target_ = "-";
}

conversion::ByteSink AtomicOutput::open() const {
    return value_of(conversion::ByteSink::open(write_name(), shown_name()));
}

void AtomicOutput::prepare() {
    if (const int error = replacement_.prepare(); error != 0) fail_file(target_, error);
}

void AtomicOutput::commit() {
    check_host();
    if (const int error = replacement_.commit(); error != 0) fail_file(target_, error);
}

void write_output(const std::string& target, std::string_view text) {
    AtomicOutput output(target);
    conversion::ByteSink sink = output.open();
    check(sink.write(text.data(), text.size()));
    check(sink.close());
    output.commit();
}

}  // namespace command
