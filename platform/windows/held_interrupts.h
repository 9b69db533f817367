// Holds an interrupt, which comes on a thread of its own, back for a while.
#pragma once

namespace platform {

// While this lives, what an interrupt removes is not gone through.
class HeldInterrupts {
  public:
    HeldInterrupts();
    ~HeldInterrupts();
    HeldInterrupts(const HeldInterrupts&) = delete;
    HeldInterrupts& operator=(const HeldInterrupts&) = delete;
};

}  // namespace platform
