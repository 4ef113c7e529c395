#pragma once

namespace hazelmark::glass {

// What the other program has put where.
inline constexpr int kPhotoDescriptor = 3;
inline constexpr int kMemoryDescriptor = 4;
inline constexpr int kChannelDescriptor = 5;

/// Closes whatever else is open, sets the limits of memory and time that hold until the other program widens them, and
/// gives up all system calls but those that computing takes. False where the system has no such filter: then only the
/// limits hold.
bool enterSandbox();

} // namespace hazelmark::glass
