// Copies of this process that work in parallel, and the communication with them.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace platform {

// Whether the system can make a copy of a process.
bool has_process_copies();
// Processors that this process may use; at least 1.
unsigned usable_processors();

// One end of a connection between two processes, for messages of any size.
class Channel {
  public:
    // Owns the descriptor.
    explicit Channel(int descriptor) : descriptor_(descriptor) {}
    Channel(Channel&& other) noexcept;
    Channel& operator=(Channel&&) = delete;
    ~Channel();

    // Result: 0 or the error number: EPIPE when the other end is closed.
    int send(std::string_view message) const;
    // Waits for the next message. Nothing when the other end is gone. Throws std::bad_alloc.
    std::optional<std::string> receive() const;

  private:
    int descriptor_;  // -1: moved away
};

// Copies of this process. They end with it, whatever ends it, and when this object goes.
class Workers {
  public:
    // What a copy does, with its number from 0; it has all that this process has. It ends without
    // releasing anything (destructors of this process's objects and buffers of its streams do not
    // concern it), and what it throws ends it. Signals have their default effect on it.
    using Work = std::function<void(unsigned number, const Channel& parent)>;

    // Nothing, with the reason in errno, when they cannot all be made. Throws std::bad_alloc.
    static std::optional<Workers> start(unsigned count, const Work& work);
    Workers(Workers&& other) noexcept;
    Workers& operator=(Workers&&) = delete;
    ~Workers();

    unsigned count() const { return static_cast<unsigned>(members_.size()); }
    const Channel& channel(unsigned number) const;
    // Waits for the end of one. Result: what ended it, as in "signal 9" or "exit status 1".
    std::string end_of(unsigned number);

  private:
    struct Member;
    Workers();
    void add(const Work& work);

    std::vector<std::unique_ptr<Member>> members_;
};

}  // namespace platform
