#include "settings/NightsView.h"

#include "core/Config.h"
#include "engine/NightReport.h"
#include "platform/Platform.h"

namespace dormel {
namespace {

NightHistory historyNow() { return NightHistory::read(platform().clock.now()); }

}  // namespace

std::shared_ptr<NightsView> NightsView::create() { return std::shared_ptr<NightsView>(new NightsView); }

NightsView::NightsView() : history_(historyNow()) {}

void NightsView::refresh() {
  history_ = historyNow();
  notifyObservers();
}

std::vector<std::string> NightsView::sentences() const {
  const bool use24HourClock = Config::use24HourClock();
  std::vector<std::string> all;
  for (const HistoryNight& night : history_.nights) all.push_back(night.sentence(use24HourClock));
  return all;
}

std::vector<NightsView::Figure> NightsView::figures() const {
  const int inARow = history_.keptInARow();
  const auto minutes = history_.medianIdleMinutes();
  return {{std::to_string(inARow), inARow == 1 ? "night kept\nin a row" : "nights kept\nin a row"},
          {std::to_string(history_.keptOfRecent()),
           "kept of the\nlast " + std::to_string(NightHistory::RECENT) + " nights"},
          {minutes ? std::to_string(*minutes) + " min" : "–", "from last use\nto lock (median)"}};
}

std::string NightsView::note() const {
  if (history_.damaged) return NightReport::DAMAGED;
  return history_.empty() ? NightReport::NO_NIGHTS : "";
}

}  // namespace dormel
