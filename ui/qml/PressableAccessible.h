// What assistive tools are told about a Pressable beyond what the toolkit (6.4) tells them of an item: that it is
// disabled, and whether the list that it can open is open. Main thread only.
#pragma once

namespace dormel {

/// From now on Pressables describe themselves so. Once per process is enough.
void installPressableAccessible();

}  // namespace dormel
