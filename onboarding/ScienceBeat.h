// Three facts about sleep, and the papers behind them. Main thread only.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "onboarding/OnbPill.h"
#include "onboarding/OnbText.h"
#include "onboarding/OnboardingScreen.h"
#include "platform/Texts.h"

namespace dormel {

class ScienceBeat : public OnboardingScreen {
 public:
  /// A source's name, which leads to its paper.
  struct Wordmark {
    std::string title;
    std::string url;
  };
  /// Bold, with what it holds for beneath it in regular weight.
  struct Fact {
    Fact(OnboardingScreen& screen, Seconds delay, std::string text, std::string of)
        : headline(std::move(text)), qualifier(std::move(of)), reveal(screen, delay) {}
    std::string headline;
    std::string qualifier;
    OnbReveal reveal;
  };

  explicit ScienceBeat(OnbAction go);

  OnbText headline{*this, 0.3, translate("Better sleep, better everything.")};
  OnbReveal sources{*this, 1.2};
  std::array<Fact, 3> facts;
  OnbPill button;

  [[nodiscard]] static const std::vector<Wordmark>& wordmarks();
  /// A wordmark was pressed, by its place: opens its paper in the browser.
  void open(std::size_t wordmark) const;
};

}  // namespace dormel
