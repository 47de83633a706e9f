// The painter of a simulated machine. It answers in virtual time with pictures of one colour, and can do all that the
// real one might: die, stand still, say what is not true.
#pragma once

#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "platform/common/paint/Messages.h"
#include "platform/common/paint/PainterProcess.h"
#include "platform/sim/SimTimeline.h"

namespace dormel {

class SimPainter final : public paint::PainterLauncher {
 public:
  /// What the processes do that are started from now on.
  enum class Mood {
    paints,
    dies,     ///< soon after its start, before its first answer
    hangs,    ///< takes orders and says nothing
    absent,   ///< cannot be started at all
    babbles,  ///< answers bytes that mean nothing
  };
  /// What it can say that cannot be true.
  enum class Lie {
    wrongVersion,
    helloTwice,
    memoryUnsealed,
    memoryTooSmall,
    memoryOfAnotherSize,
    manyFrames,
    frameBeyondMemory,
    changeOutsidePicture,
    changeOverflows,
    doneUnasked,
    strangersCanvas,
    nothingAtAll,
  };
  static constexpr Lie LAST_LIE = Lie::nothingAtAll;

  /// The colour of every pixel that it paints for that state.
  [[nodiscard]] static std::uint32_t colorOf(std::string_view state);

  explicit SimPainter(SimTimeline& timeline) : timeline_(timeline) {}

  [[nodiscard]] std::unique_ptr<paint::PainterProcess> start(paint::PainterHandlers handlers) override;

  void setMood(Mood mood) { mood_ = mood; }
  /// The one that runs: is killed, is stopped, tells a lie. Nothing happens when none runs.
  void die();
  void hang();
  void lie(Lie lie);

  [[nodiscard]] bool isRunning() const;
  /// When processes were started, by uptime; also those that could not be.
  [[nodiscard]] const std::vector<Seconds>& starts() const { return starts_; }
  /// The pointer events that reached it.
  [[nodiscard]] const std::vector<paint::Pointer>& pointers() const { return pointers_; }
  /// The one that runs says that a control with that number was pressed, in every canvas.
  void act(std::uint32_t action);

 private:
  struct Process;
  class Handle;

  SimTimeline& timeline_;
  Mood mood_ = Mood::paints;
  std::weak_ptr<Process> running_;
  std::vector<Seconds> starts_;
  std::vector<paint::Pointer> pointers_;
};

}  // namespace dormel
