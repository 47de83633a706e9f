// One element of a screen: what it is, what it says, when it comes in, and what a press of it does. A screen is the
// list of its elements, top to bottom; the drawing side has a component for each kind. Main thread only.
//
// An element is hidden until its moment. The clock starts when the screen is shown and the element is released,
// whichever is later; after `delay` seconds `on` turns true, and the drawing side moves it into its place.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "core/Observable.h"
#include "platform/RunLoop.h"

namespace dormel {

class OnboardingScreen;

class OnbElement {
 public:
  enum class Kind : std::uint8_t {
    mark,        ///< the program's mark, which draws itself
    headline,    ///< `headlineSpans` are in its text
    sub,         ///< a secondary line; with no text it takes no room
    kicker,      ///< a small heading
    whisper,     ///< a faint note
    line,        ///< as a headline: its strong words stand out, the others are dimmed
    note,        ///< a dimmed line
    figure,      ///< its part is shown, its text is read aloud
    fact,        ///< its text, and below it its part: what it holds for
    sources,     ///< its parts are names that lead somewhere
    wheel,       ///< its parts are the rows; the chosen one is in front
    choice,      ///< its parts are chips, of which one is the answer
    chips,       ///< its parts are chips, of which any number is
    permission,  ///< its part is the button's title (empty: none); chosen: it is there
    scene,       ///< what the screen plays
    button,      ///< a capsule
  };
  /// What differs from others of its kind.
  struct Style {
    double above = 0;  ///< space above it in points, as far as there is room
    double size = 0;   ///< in points, of its letters, each of its chips, or itself; 0: as its kind has it
    bool quiet = false;
    bool released = true;
  };
  /// Is told which of its parts was pressed: 0 where it has none.
  using Action = std::function<void(std::size_t part)>;

  OnbElement(OnboardingScreen& screen, Kind kind, Seconds delay, std::string words, Style style, Action press);

  const Kind kind;
  const Seconds delay;
  const Style style;
  const Action action;
  Published<std::string> text;
  Published<std::vector<std::string>> parts;
  /// Which of its parts are, in the order in which they were chosen.
  Published<std::vector<std::size_t>> chosen;
  /// All but gone while not, and not to be pressed.
  Published<bool> enabled;

  /// It is there, or moving in. It can be pressed from now on.
  [[nodiscard]] bool on() const { return on_; }
  [[nodiscard]] bool released() const { return released_; }
  /// Lets an element that was held back come in. Once is enough; it cannot be taken back.
  void release();

 private:
  friend class OnboardingScreen;
  void begin();  // the screen is shown
  void end();    // and has gone: what has not come in never will
  void comeIn();

  bool released_;
  bool shown_ = false;
  Published<bool> on_;
  Timer timer_;
};

}  // namespace dormel
