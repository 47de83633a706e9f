// The three descriptors that every program counts on.
#pragma once

namespace dormel::posix {

/// Opens /dev/null as whichever of the descriptors 0, 1 and 2 the process was started without. Without it the next
/// thing that is opened gets the number, and a line for the log ends up in, say, the display's socket. To be called
/// before anything is opened.
void holdStandardDescriptors();

}  // namespace dormel::posix
