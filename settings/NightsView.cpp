#include "settings/NightsView.h"

#include "core/Config.h"
#include "engine/NightReport.h"
#include "platform/Platform.h"
#include "platform/Texts.h"

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
  return {{std::to_string(inARow), translatePlural("night kept\nin a row", "nights kept\nin a row", inARow)},
          {std::to_string(history_.keptOfRecent()),
           translate("kept of the\nlast %1 nights", {std::to_string(NightHistory::RECENT)})},
          {minutes ? std::to_string(*minutes) + " min" : "–", translate("from last use\nto lock (median)")}};
}

std::string NightsView::note() const {
  if (history_.damaged) return translate(NightReport::DAMAGED);
  return history_.empty() ? translate(NightReport::NO_NIGHTS) : "";
}

}  // namespace dormel
