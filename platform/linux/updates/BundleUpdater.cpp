#include "platform/linux/updates/BundleUpdater.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include "platform/Defaults.h"
#include "platform/Texts.h"
#include "platform/Time.h"
#include "platform/linux/updates/UpdateHelper.h"

namespace dormel::updates {
namespace {

constexpr std::int64_t SHORTEST_INTERVAL = 60;
constexpr std::int64_t NAP = 3600;

}  // namespace

BundleUpdater::BundleUpdater(Clock& clock, RunLoop& loop, DefaultsStore& defaults, UpdateHelper& helper,
                             Options options)
    : clock_(clock),
      loop_(loop),
      defaults_(defaults),
      helper_(helper),
      options_(std::move(options)),
      self_(std::make_shared<BundleUpdater*>(this)) {
  if (!options_.enabled) return;
  options_.interval = std::max(options_.interval, SHORTEST_INTERVAL);
  sayWhatWaits();
  lookLater(options_.firstLook);
}

bool BundleUpdater::automaticallyChecksForUpdates() const {
  return defaults_.boolean(updateKey::checks).value_or(true);
}

void BundleUpdater::setAutomaticallyChecksForUpdates(bool on) { defaults_.set(updateKey::checks, {on}); }

bool BundleUpdater::automaticallyDownloadsUpdates() const {
  return defaults_.boolean(updateKey::downloads).value_or(true);
}

void BundleUpdater::setAutomaticallyDownloadsUpdates(bool on) {
  defaults_.set(updateKey::downloads, {on});
  if (options_.enabled && !looking_) sayWhatWaits();
}

bool BundleUpdater::canCheckForUpdates() const { return options_.enabled && !looking_; }

std::unique_ptr<Registration> BundleUpdater::observe(Task handler) { return observers_.add(std::move(handler)); }

void BundleUpdater::checkForUpdates() {
  if (canCheckForUpdates()) look(true, true);
}

bool BundleUpdater::installStagedUpdate() {
  if (!options_.enabled || looking_) return false;
  const auto version = helper_.waiting();
  if (version && !isWanted(*version)) return false;
  const UpdateResult result = helper_.install();
  say(result);  // nothing, too: what seemed to wait was of no use any more
  return result.kind == UpdateResult::Kind::installed;
}

void BundleUpdater::forget() {
  options_.enabled = false;
  looking_ = false;
  helper_.cancel();
  helper_.clear();
  status_.clear();
  observers_.call();
}

void BundleUpdater::lookLater(Seconds delay) {
  loop_.asyncAfter(delay, [weak = std::weak_ptr(self_)] {
    if (const auto self = weak.lock()) (*self)->lookIfDue();
  });
}

void BundleUpdater::lookIfDue() {
  if (!options_.enabled) return;
  // Asked afresh: another process of ours may have looked, or the user switched it off there.
  if (untilDue() <= 0 && !looking_ && automaticallyChecksForUpdates()) look(automaticallyDownloadsUpdates(), false);
  const std::int64_t rest = untilDue();
  lookLater(static_cast<Seconds>(rest > 0 ? std::min(rest, NAP) : NAP));
}

bool BundleUpdater::isWanted(const std::string& version) const {
  if (automaticallyDownloadsUpdates()) return true;
  const auto askedFor = defaults_.object(updateKey::askedFor);
  const auto* text = askedFor ? askedFor->as<std::string>() : nullptr;
  return text != nullptr && *text == version;
}

void BundleUpdater::sayWhatWaits() {
  const auto version = helper_.waiting();
  if (!version) return;
  if (isWanted(*version)) {
    say({UpdateResult::Kind::ready, *version});
  } else {
    say({UpdateResult::Kind::nothing});
  }
}

void BundleUpdater::look(bool fetch, bool byHand) {
  looking_ = true;
  byHand_ = byHand;
  heard_ = {};
  status_ = translate("Looking for updates…");
  // Noted before anything can go wrong: a server, or a program, that fails is not asked again at once.
  defaults_.set(updateKey::lastCheck, {now()});
  const auto weakly = [weak = std::weak_ptr(self_)](auto operation) {
    return [weak, operation](const auto&... arguments) {
      if (const auto self = weak.lock()) ((*self)->*operation)(arguments...);
    };
  };
  helper_.check(fetch, weakly(&BundleUpdater::heard), weakly(&BundleUpdater::ended));
  observers_.call();
}

void BundleUpdater::heard(const UpdateResult& result) {
  heard_ = result;
  if (result.kind == UpdateResult::Kind::fetching) say(result);
}

void BundleUpdater::ended() {
  looking_ = false;
  // A helper that fell silent in the middle of a download: the result that it owes is that one.
  if (heard_.kind == UpdateResult::Kind::fetching) heard_.kind = UpdateResult::Kind::notFetched;
  if (heard_.kind == UpdateResult::Kind::ready && byHand_) defaults_.set(updateKey::askedFor, {heard_.version});
  // Switched off while it was fetched: it is going to stay where it is.
  const bool rests = heard_.kind == UpdateResult::Kind::ready && !isWanted(heard_.version);
  say(rests ? UpdateResult{UpdateResult::Kind::nothing} : heard_);
}

void BundleUpdater::say(const UpdateResult& result) {
  status_ = sentence(result, options_.version);
  observers_.call();
}

std::int64_t BundleUpdater::now() const {
  return std::chrono::duration_cast<std::chrono::seconds>(clock_.now().time_since_epoch()).count();
}

std::int64_t BundleUpdater::untilDue() const {
  const auto last = defaults_.integer(updateKey::lastCheck);
  const std::int64_t time = now();
  // A last look in the future: the clock was wrong then, or is now.
  if (!last || *last > time || *last < 0) return 0;
  return std::max<std::int64_t>(0, options_.interval - (time - *last));
}

}  // namespace dormel::updates
