// Everything of this program that goes through GNOME Shell's extension, put together for one session. Main thread only,
// but for `restoreAtExit`.
#pragma once

#include <memory>
#include <vector>

#include "platform/Accessibility.h"
#include "platform/linux/DisplayChoice.h"
#include "platform/linux/DisplayFamily.h"
#include "platform/linux/gnome/Stage.h"

namespace dormel::gnome {

class GnomePlatform final : public DisplayFamily {
 public:
  /// Null where no extension of our protocol answers, unless this process only shows things in a session of GNOME:
  /// there it may come later. What an earlier run of the one that locks has left locked is its own to end. `loop`,
  /// `canvases` and `clock` outlive it.
  [[nodiscard]] static std::unique_ptr<GnomePlatform> connect(DisplayUse use, EventLoop& loop, CanvasFactory& canvases,
                                                              const Clock& clock, Stage::Limit limit);
  GnomePlatform(const GnomePlatform&) = delete;
  GnomePlatform& operator=(const GnomePlatform&) = delete;
  ~GnomePlatform() override;

  void setOnLost(Task onLost) override { stage_->setOnLost(std::move(onLost)); }
  void setOnScreensChanged(Task onChange) override { stage_->setOnScreensChanged(std::move(onChange)); }

  [[nodiscard]] Accessibility& accessibility() override;
  [[nodiscard]] EventTaps& eventTaps() override;
  [[nodiscard]] HardwareKeys& hardwareKeys() override { return *stage_; }
  [[nodiscard]] InputIdle& inputIdle() override;
  [[nodiscard]] KeyboardLayout& keyboardLayout() override { return stage_->labels(); }
  [[nodiscard]] Screens& screens() override { return *stage_; }
  [[nodiscard]] WindowServer& windows() override;

  void setLockdown(bool on) override { stage_->setLockdown(on); }
  void restoreAtExit(bool comesBack) override { stage_->restoreAtExit(comesBack, mayBeAbandoned_); }

 private:
  struct Services;
  GnomePlatform(std::shared_ptr<Stage> stage, bool mayBeAbandoned);

  const bool mayBeAbandoned_;
  std::shared_ptr<Stage> stage_;
  std::unique_ptr<Services> services_;
};

}  // namespace dormel::gnome
