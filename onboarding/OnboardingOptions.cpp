#include "onboarding/OnboardingOptions.h"

namespace dormel::onboardingOptions {

std::vector<OnbWheel::Option> latest() {
  return {{"11 PM", 23}, {"Midnight", 24}, {"1 AM", 25}, {"2 AM", 26}, {"3 AM", 27}, {"4 AM or later", 28}};
}

std::vector<OnbWheel::Option> want() { return {{"10 PM", 22}, {"11 PM", 23}, {"Midnight", 24}, {"1 AM", 25}}; }

std::vector<OnbWheel::Option> lock() {
  return {{"10 PM", FIRST_LOCK}, {"11 PM", 23}, {"Midnight", 24}, {"1 AM", 25}, {"2 AM", LAST_LOCK}};
}

std::vector<Nights> nights() { return {{"1–2 nights", 2.0}, {"3–4 nights", 4.0}, {"Most nights", 7.0}}; }

std::vector<std::string> keeps() { return {"Scrolling", "Chatting", "Movies & shows", "Work", "Games", "Everything"}; }

}  // namespace dormel::onboardingOptions
