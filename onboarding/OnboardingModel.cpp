#include "onboarding/OnboardingModel.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "core/Config.h"
#include "onboarding/OnboardingOptions.h"
#include "platform/Defaults.h"
#include "platform/Platform.h"
#include "platform/Texts.h"

namespace dormel {
namespace {

/// A stored hour; nothing when there is none that counts.
std::optional<int> storedHour(const char* key) {
  const auto stored = platform().defaults.integer(key);
  if (!stored || *stored < 1 || *stored > std::numeric_limits<int>::max()) return {};
  return static_cast<int>(*stored);
}

std::optional<double> storedFactor(const char* key) {
  const auto stored = platform().defaults.object(key);
  if (!stored) return {};
  double factor = 0;
  if (const auto* real = stored->as<double>()) factor = *real;
  if (const auto* whole = stored->as<std::int64_t>()) factor = static_cast<double>(*whole);
  return std::isfinite(factor) && factor > 0 ? std::optional(factor) : std::nullopt;
}

/// A stored list of texts; empty when anything else is in it.
std::vector<std::string> storedTexts(const char* key) {
  const auto stored = platform().defaults.object(key);
  const auto* array = stored ? stored->as<PropertyListArray>() : nullptr;
  if (array == nullptr) return {};
  std::vector<std::string> texts;
  for (const PropertyListValue& value : *array) {
    const auto* text = value.as<std::string>();
    if (text == nullptr) return {};
    texts.push_back(*text);
  }
  return texts;
}

}  // namespace

int dayHour(int nightHour) { return ((nightHour % 24) + 24) % 24; }

std::string spokenHour(int nightHour) {
  return dayHour(nightHour) == 0 ? translate("midnight") : nightHourLabel(nightHour);
}

std::shared_ptr<OnboardingModel> OnboardingModel::restored() {
  auto model = std::make_shared<OnboardingModel>();
  model->late = storedHour(defaultsKey::onboardingLate);
  model->nightsFactor = storedFactor(defaultsKey::onboardingNights);
  model->want = storedHour(defaultsKey::onboardingWant);
  model->keeps = storedTexts(defaultsKey::onboardingKeeps);
  if (const auto lock = storedHour(defaultsKey::onboardingLock)) model->lockNight = *lock;
  return model;
}

void OnboardingModel::save() const {
  PropertyListArray texts;
  for (const std::string& keep : *keeps) texts.push_back({keep});
  DefaultsStore& defaults = platform().defaults;
  defaults.set(defaultsKey::onboardingLate, {std::int64_t{late->value_or(-1)}});
  defaults.set(defaultsKey::onboardingNights, {nightsFactor->value_or(-1.0)});
  defaults.set(defaultsKey::onboardingWant, {std::int64_t{want->value_or(-1)}});
  defaults.set(defaultsKey::onboardingKeeps, {std::move(texts)});
  defaults.set(defaultsKey::onboardingLock, {std::int64_t{*lockNight}});
}

std::optional<int> OnboardingModel::weeklyHours() const {
  if (!*late || !*want || !*nightsFactor || **want >= **late) return {};
  const double hours = std::round((static_cast<double>(**late) - **want) * **nightsFactor);
  // Stored answers may be any numbers.
  return static_cast<int>(std::clamp<double>(hours, 2, std::numeric_limits<int>::max()));
}

std::string OnboardingModel::mirrorLine() const {
  if (!*late || !*nightsFactor) return translate("You're up too late, too often.");
  const char* often = translatable("some nights");
  if (**nightsFactor >= 4) often = translatable("several nights a week");
  if (**nightsFactor >= 7) often = translatable("most nights");
  std::string line = translate("You're up until about %1, %2.", {spokenHour(**late), translate(often)});
  const bool everything = std::find(keeps->begin(), keeps->end(), "everything") != keeps->end();
  if (!keeps->empty() && !everything)
    line += " " + translate("Mostly %1.", {onboardingOptions::spokenKeep(keeps->front())});
  return line;
}

int OnboardingModel::suggestedLock() const {
  return std::clamp(want->value_or(24), onboardingOptions::FIRST_LOCK, onboardingOptions::LAST_LOCK);
}

}  // namespace dormel
