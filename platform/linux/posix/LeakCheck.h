// What the address sanitizer does at an ordinary exit, for a program that leaves by another door.
#pragma once

namespace dormel::posix {

/// Reports memory that nobody can reach any more, in a build under that sanitizer; does nothing in others. Any thread.
void checkForLeaks();

}  // namespace dormel::posix
