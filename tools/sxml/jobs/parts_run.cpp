#include "tools/sxml/jobs/parts_run.h"

#include <cerrno>
#include <exception>
#include <new>
#include <optional>
#include <vector>

#include "platform/descriptors.h"
#include "platform/processes.h"
#include "tools/sxml/failure.h"
#include "tools/sxml/output/hidden_failures.h"

namespace command {

namespace {

using platform::Channel;
using platform::NamelessFile;

// A worker and this process take turns: result of a part; its place in the output; the error
// number of putting it there, 0 for none. The next part follows.

PartResult convert(const PartsRun& run, std::uint64_t part, const NamelessFile& file) {
    try {
        PartResult result = run.convert(part, file);
        check_host();
        return result;
    } catch (const std::exception&) {
        return {};
    }
}

int put(const PartsRun& run, const PartResult& result, const NamelessFile& file,
        std::uint64_t position) {
    const int output = platform::open_to_write_into(run.output.write_name().c_str());
    if (output < 0) return errno;
    const int error = file.copy(result.begin, result.end, output, position);
    const int close_error = platform::close_descriptor(output);
    return error != 0 ? error : close_error;
}

void work_on_parts(const PartsRun& run, unsigned number, const NamelessFile& file,
                   const Channel& parent) {
    for (std::uint64_t part = number; part < run.parts; part += run.jobs) {
        const PartResult result = convert(run, part, file);
        if (parent.send(message_of(result)) != 0 || !result.is_done) return;
        const std::optional<std::string> position = parent.receive();
        if (!position) return;
        const int error = put(run, result, file, std::stoull(*position));
        if (parent.send(std::to_string(error)) != 0 || error != 0 || result.is_last) return;
    }
}

// Sent instead of a message by a worker that has no memory left: the other process decides whether
// that matters and is reported.
constexpr const char* NO_MEMORY = "no memory";
const Channel* other_process = nullptr;  // of a worker

void work(const PartsRun& run, unsigned number, const NamelessFile& file, const Channel& parent) {
    other_process = &parent;
    report_exhausted_memory_by([] { other_process->send(NO_MEMORY); });
    try {
        work_on_parts(run, number, file, parent);
    } catch (const std::bad_alloc&) {
        report_exhausted_memory();
    }
}

// What this process does.
class Supervisor {
  public:
    Supervisor(const PartsRun& run, platform::Workers workers)
        : run_(run), workers_(std::move(workers)), is_putting_(run.jobs) {
        done_.position = run.position;
    }

    PartsDone supervise() {
        while (done_.parts < run_.parts && !done_.is_whole) {
            const auto worker = static_cast<unsigned>(done_.parts % run_.jobs);
            wait_for_putting(worker);
            PartResult result = result_of(receive(worker));
            if (!result.is_done || !run_.accept(result)) break;
            workers_.channel(worker).send(std::to_string(done_.position));
            is_putting_[worker] = true;
            ++done_.parts;
            done_.position += result.end - result.begin;
            done_.is_whole = result.is_last || done_.parts == run_.parts;
        }
        for (unsigned worker = 0; worker < run_.jobs; ++worker) wait_for_putting(worker);
        return done_;
    }

  private:
    std::string receive(unsigned worker) {
        std::optional<std::string> message = workers_.channel(worker).receive();
        if (message == NO_MEMORY) throw std::bad_alloc();
        if (message) return *std::move(message);
        fail("a process that shared the work was ended by " + workers_.end_of(worker) +
             "; if it happens again, convert with --jobs 1");
    }

    void wait_for_putting(unsigned worker) {
        if (!is_putting_[worker]) return;
        is_putting_[worker] = false;
        const int error = std::stoi(receive(worker));
        if (error != 0) fail_file(run_.output.shown_name(), error);
    }

    const PartsRun& run_;
    platform::Workers workers_;
    std::vector<bool> is_putting_;
    PartsDone done_;
};

}  // namespace

PartsDone convert_parts(const PartsRun& run) {
    std::vector<NamelessFile> files;
    for (unsigned worker = 0; worker < run.jobs; ++worker) {
        std::optional<NamelessFile> file = NamelessFile::create();
        if (!file) return {0, run.position, false};
        files.push_back(*std::move(file));
    }
    std::optional<platform::Workers> workers = platform::Workers::start(
        run.jobs,
        [&](unsigned number, const Channel& parent) { work(run, number, files[number], parent); });
    if (!workers) return {0, run.position, false};
    return Supervisor(run, *std::move(workers)).supervise();
}

}  // namespace command
