#pragma once

namespace OSAL {

/// While one lives, Ctrl-C, a closed terminal or the system's request to end does not end the
/// program at once, so that it can take back what is not finished. The program ends when the last
/// one goes, as it would have ended without any; a second request ends it at once. To be made and
/// destroyed by one thread.
class HeldInterruption {
public:
    HeldInterruption();
    ~HeldInterruption();
    HeldInterruption(const HeldInterruption&) = delete;
    HeldInterruption& operator=(const HeldInterruption&) = delete;

    /// Whether the program is to end.
    static bool IsWanted();
};

} // namespace OSAL
