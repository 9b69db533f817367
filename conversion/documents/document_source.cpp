#include "conversion/documents/document_source.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <string_view>
#include <vector>

#include "conversion/formats/byte_sink.h"
#include "conversion/formats/byte_source.h"
#include "host/runtime/fetching/fetch.h"
#include "platform/descriptors.h"
#include "platform/files.h"
#include "platform/paths.h"

namespace conversion {

namespace {

constexpr const char* COPY_STEM = "sxml-input";
constexpr const char* SUFFIX = ".xml";

bool starts_with(std::string_view text, std::string_view lower_case) {
    return text.size() >= lower_case.size() &&
           std::equal(lower_case.begin(), lower_case.end(), text.begin(), [](char a, char b) {
               return a == static_cast<char>(std::tolower(static_cast<unsigned char>(b)));
           });
}

Done copy_all(ByteSource& source, ByteSink& sink) {
    constexpr std::size_t piece_size = std::size_t{1} << 16;
    std::vector<std::uint8_t> piece(piece_size);
    for (;;) {
        const Result<std::size_t> count = source.read(piece.data(), piece.size());
        if (!count) return count.problem();
        if (*count == 0) return sink.close();
        if (Done problem = sink.write(piece.data(), *count)) return problem;
    }
}

}  // namespace

bool is_url(const std::string& name) {
    return starts_with(name, "http:") || starts_with(name, "https:");
}

Result<DocumentSource> DocumentSource::open(const std::string& name, Pipes pipes) {
    if (is_url(name)) return fetch(name);
    if (name == "-") return copy(name);
    std::string file = name;
    auto state = platform::state_of(file);
    const int error = errno;
    if (!state && error == ENOENT) {
        file += SUFFIX;
        state = platform::state_of(file);
    }
    if (!state) return system_problem(name, error);
    if (state->kind == platform::FileKind::folder) return system_problem(file, EISDIR);
    if (state->kind == platform::FileKind::other && pipes == Pipes::copied) return copy(file);
    return DocumentSource(file, platform::absolute_name(file));
}

Result<DocumentSource> DocumentSource::empty_copy(const std::string& name) {
    const std::string folder = platform::temporary_folder();
    auto temporary = platform::TemporaryFile::create(folder, COPY_STEM);
    if (!temporary) {
        Problem problem = system_problem(name, errno);
        problem.what = "no copy can be kept in " + folder + ": " + problem.what;
        problem.remedy = "let TMPDIR name another folder";
        return problem;
    }
    DocumentSource source(name, temporary->name());
    source.copy_.emplace(std::move(*temporary));
    return source;
}

Result<DocumentSource> DocumentSource::fetch(const std::string& url) {
    Result<DocumentSource> source = empty_copy(url);
    if (!source) return source;
    const int descriptor = platform::open_to_write(source->file().c_str());
    if (descriptor < 0) return system_problem(source->file(), errno);
    std::string reason = host::fetch_document(url, descriptor);
    const int error = platform::close_descriptor(descriptor);
    if (reason.empty() && error == 0) return source;
    if (reason.empty()) return system_problem(source->file(), error);
    Problem problem{
        Cause::not_found, {}, "the document cannot be fetched, or not in full: " + reason, ""};
    problem.place.file = url;
    return problem;
}

Result<DocumentSource> DocumentSource::copy(const std::string& name) {
    Result<ByteSource> bytes = ByteSource::open(name);
    if (!bytes) return bytes.problem();
    Result<DocumentSource> source = empty_copy(bytes->name());
    if (!source) return source;
    Result<ByteSink> sink = ByteSink::open(
        source->file(), "the copy of " + bytes->name() + " in " + platform::temporary_folder());
    if (!sink) return sink.problem();
    if (const Done problem = copy_all(*bytes, *sink)) return *problem;
    return source;
}

}  // namespace conversion
