// The way to GNOME Shell's extension: whether it is there, switched on and ours, and what is done to have it so. Main
// thread only. Each question asks the shell anew, and takes half a second at most.
#pragma once

#include <optional>
#include <string>

namespace dormel {
class ChildProcesses;
}

namespace dormel::gnome {

enum class ExtensionState {
  elsewhere,   ///< this is no Wayland session of GNOME Shell
  tooOld,      ///< a shell before 45, which reads no such extension
  allOff,      ///< the user, or the shell after a crash, has switched off all extensions
  allOffBare,  ///< so, and GNOME's own program for extensions is not installed
  absent,      ///< it lies nowhere where the shell looks
  afterLogin,  ///< it lies there; the shell looks only at a login
  off,         ///< the shell knows it, and its switch is off
  failed,      ///< the shell cannot run it
  on,
  onOlder,  ///< on; a newer one lies there, and takes over at the next login
};

/// What the shell and the disk say.
struct ExtensionFacts {
  int shellVersion = 0;      ///< the first number of it; 0 where no shell answers
  bool areAllowed = true;    ///< extensions altogether
  bool hasProgram = true;    ///< GNOME's own for extensions
  std::optional<int> state;  ///< as the shell numbers it; nothing where it does not know ours
  int loadedVersion = 0;     ///< of the one that the shell has loaded
  int waitingVersion = 0;    ///< of the one that the next login finds; 0 for none
};

[[nodiscard]] ExtensionState stateOf(const ExtensionFacts& facts);

/// The text of a list of texts, as the settings database writes it, with this one in it. Nothing where it is no list.
[[nodiscard]] std::optional<std::string> listedIn(const std::string& list, const std::string& name);

/// The same without it. Nothing where it is not in there.
[[nodiscard]] std::optional<std::string> unlistedIn(const std::string& list, const std::string& name);

class ExtensionSwitch {
 public:
  /// `resources`: the folder of the extension in the program's bundle. `children` outlives it.
  ExtensionSwitch(ChildProcesses& children, std::string resources);

  [[nodiscard]] ExtensionState state() const;
  /// Goes as far as can be gone now, the user having agreed to `advice`: puts the extension where the shell looks,
  /// unless the system has it there, and flips its switch; where all extensions are off, GNOME's own program for them
  /// is opened, or, where there is none, they are all switched on. False where nothing could be done.
  [[nodiscard]] bool lead();
  /// A copy that we made and that is of another version than this program is replaced.
  void refreshCopy() const;
  /// Takes back what `lead` did.
  void remove();

 private:
  [[nodiscard]] ExtensionFacts facts() const;
  [[nodiscard]] bool copy() const;
  [[nodiscard]] bool list();
  [[nodiscard]] bool unlist(const char* key);
  [[nodiscard]] bool set(const char* key, const std::string& value);

  ChildProcesses& children_;
  const std::string resources_;
};

/// Where to look, in words for people, in English (translatable()); empty for a state in which there is nothing to do.
[[nodiscard]] std::string advice(ExtensionState state);

}  // namespace dormel::gnome
