// What the painter may not do, whatever goes wrong in it: write, make or change any file, start a program, open a
// socket, signal or look into another process. Reading stays: fonts and the toolkit's plugins come from files.
#pragma once

namespace dormel::paint {

/// For the rest of this process and for all of its threads. By Landlock where the kernel has it, and by a filter of
/// system calls. False when neither can be had; the painter works all the same.
bool confineThisProcess();

}  // namespace dormel::paint
