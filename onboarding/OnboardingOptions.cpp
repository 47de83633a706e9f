#include "onboarding/OnboardingOptions.h"

#include <algorithm>
#include <array>

#include "platform/Texts.h"

namespace dormel::onboardingOptions {

std::vector<OnbWheel::Option> latest() {
  return {{"11 PM", 23}, {translate("Midnight"), 24},     {"1 AM", 25}, {"2 AM", 26},
          {"3 AM", 27},  {translate("4 AM or later"), 28}};
}

std::vector<OnbWheel::Option> want() {
  return {{"10 PM", 22}, {"11 PM", 23}, {translate("Midnight"), 24}, {"1 AM", 25}};
}

std::vector<OnbWheel::Option> lock() {
  return {{"10 PM", FIRST_LOCK}, {"11 PM", 23}, {translate("Midnight"), 24}, {"1 AM", 25}, {"2 AM", LAST_LOCK}};
}

std::vector<Nights> nights() {
  return {{translate("1–2 nights"), 2.0}, {translate("3–4 nights"), 4.0}, {translate("Most nights"), 7.0}};
}

std::vector<Keep> keeps() {
  return {{"scrolling", translate("Scrolling")},
          {"chatting", translate("Chatting")},
          {"movies & shows", translate("Movies & shows")},
          {"work", translate("Work")},
          {"games", translate("Games")},
          {"everything", translate("Everything")}};
}

std::string spokenKeep(const std::string& value) {
  static constexpr std::array SPOKEN{translatable("scrolling"), translatable("chatting"),
                                     translatable("movies & shows"), translatable("work"), translatable("games")};
  return std::find(SPOKEN.begin(), SPOKEN.end(), value) != SPOKEN.end() ? translate(value) : value;
}

}  // namespace dormel::onboardingOptions
