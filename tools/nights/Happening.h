// One thing that the world or the user does to the machine in a night, and its form as a line of text.
//
// Each stands for itself: it carries all it needs, so that taking one out of a list leaves the others as they are.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>

#include "tools/nights/Dice.h"

namespace dormel::nights {

enum class Kind {
  // The user's hands.
  hold,
  fumble,
  key,
  drop,
  letGo,
  repeat,
  touch,
  // The desktop.
  plug,
  pull,
  resize,
  shift,
  scale,
  notice,
  focus,
  quit,
  launch,
  // The machine.
  sleep,
  clock,
  stall,
  // What goes wrong.
  permission,
  deny,
  loseTap,
  noTaps,
  terminate,
  kill,
  crash,
  full,
  folder,
  hang,
  painter,
  noPainter,
  // Another process.
  settings,
  hours,
  flag,
  // A Wayland desktop.
  steal,
  otherLock,
  compositor,
  gone,
  both,
  runtime,
  // GNOME's.
  extension,
  socket,
  lockScreen,
  // A program that the user opened.
  test,
  demo,
};

struct Happening {
  std::int64_t at = 0;  ///< milliseconds after the night's beginning
  Kind kind = Kind::touch;
  std::array<std::int64_t, 3> n{};  ///< what they are: see `meaning`; times in milliseconds

  /// "612250 hold 31000 80 5"
  [[nodiscard]] std::string text() const;
  /// Nothing when the line is not one.
  [[nodiscard]] static std::optional<Happening> parsed(const std::string& line);
  friend bool operator<(const Happening& a, const Happening& b) { return a.at < b.at; }
};

/// What the numbers of a kind mean, for people.
[[nodiscard]] const char* meaning(Kind kind);

/// A happening of any kind that fits a scheduled run (or, with `opened`, a program that the user opened) at `at`.
[[nodiscard]] Happening drawnHappening(Dice& dice, std::int64_t at, bool opened);

/// One that only a Wayland desktop knows, or only GNOME's.
[[nodiscard]] Happening drawnWaylandHappening(Dice& dice, std::int64_t at);
[[nodiscard]] Happening drawnGnomeHappening(Dice& dice, std::int64_t at);

}  // namespace dormel::nights
