// The page "Your nights": the last ninety nights as the logs tell them at the moment when it is made or refreshed, in
// the words that the page shows. It changes nothing. Main thread only.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "core/Observable.h"
#include "engine/NightHistory.h"
#include "platform/Geometry.h"
#include "platform/View.h"

namespace dormel {

class NightsView : public View, public Observable {
 public:
  static constexpr Size SIZE{460, 552};

  struct Figure {
    std::string value;
    std::string text;  ///< what it counts
  };

  [[nodiscard]] static std::shared_ptr<NightsView> create();

  [[nodiscard]] ViewKind kind() const override { return ViewKind::nights; }
  /// Reads the logs again.
  void refresh();

  [[nodiscard]] const NightHistory& history() const { return history_; }
  /// Oldest night first.
  [[nodiscard]] std::vector<std::string> sentences() const;
  /// Kept in a row, kept of the last thirty, and the minutes from the last use to the lock.
  [[nodiscard]] std::vector<Figure> figures() const;
  /// What has to be said about the whole; empty when there is nothing.
  [[nodiscard]] std::string note() const;

 private:
  NightsView();

  NightHistory history_;
};

}  // namespace dormel
