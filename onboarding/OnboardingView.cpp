#include "onboarding/OnboardingView.h"

#include <algorithm>
#include <utility>

#include "onboarding/OnboardingOptions.h"
#include "onboarding/OnboardingScreens.h"
#include "platform/Defaults.h"
#include "platform/Platform.h"
#include "platform/Texts.h"

namespace dormel {
namespace {

constexpr int FIRST_LATE = 25;
constexpr int FIRST_WANT = 24;

/// The hour that a wheel starts at: the answer given before, if the wheel has it (what is stored may be any number).
int startOf(const std::vector<OnbWheel::Option>& options, const std::optional<int>& answer, int first) {
  const bool isOffered = std::any_of(options.begin(), options.end(),
                                     [&](const OnbWheel::Option& option) { return option.value == answer; });
  return isOffered ? *answer : first;
}

}  // namespace

std::shared_ptr<OnboardingView> OnboardingView::create(Hooks hooks) {
  return make(std::move(hooks), OnboardingModel::restored(), resumePoint(), false);
}

std::shared_ptr<OnboardingView> OnboardingView::createPreview(Hooks hooks) {
  return make(std::move(hooks), std::make_shared<OnboardingModel>(), OnboardingBeat::brand, true);
}

std::shared_ptr<OnboardingView> OnboardingView::make(Hooks hooks, std::shared_ptr<OnboardingModel> model,
                                                     OnboardingBeat beat, bool preview) {
  std::shared_ptr<OnboardingView> view(new OnboardingView(std::move(hooks), std::move(model), beat, preview));
  view->screen_ = view->makeScreen(beat);
  return view;
}

OnboardingView::OnboardingView(Hooks hooks, std::shared_ptr<OnboardingModel> model, OnboardingBeat beat, bool preview)
    : hooks_(std::move(hooks)), model_(std::move(model)), preview_(preview), beat_(beat) {}

OnboardingView::~OnboardingView() {
  if (screen_) screen_->disappear();
}

void OnboardingView::onAppear() {
  if (std::exchange(appeared_, true)) return;
  screen_->appear();
}

void OnboardingView::advance(OnboardingBeat target) {
  if (target == beat_) return;
  if (!preview_) {
    model_->save();
    platform().defaults.set(defaultsKey::onboardingBeat, {std::int64_t{rawValue(target)}});
  }
  beat_ = target;
  screen_->disappear();
  leaving_ = std::exchange(screen_, makeScreen(target));
  if (appeared_) screen_->appear();
  notifyObservers();
}

void OnboardingView::goBack() {
  if (const auto target = backTarget()) advance(*target);
}

OnbAction OnboardingView::going(OnboardingBeat target) {
  return [weak = weak_from_this(), target] {
    if (const auto self = weak.lock()) self->advance(target);
  };
}

template <typename Answer>
std::function<void(Answer)> OnboardingView::answering(void (*keep)(OnboardingModel&, Answer), OnboardingBeat target) {
  return [weak = weak_from_this(), keep, target](Answer answer) {
    const auto self = weak.lock();
    if (!self) return;
    keep(*self->model_, answer);
    self->advance(target);
  };
}

std::shared_ptr<OnboardingScreen> OnboardingView::makeScreen(OnboardingBeat beat) {
  using Beat = OnboardingBeat;
  using Keeps = const std::vector<std::string>&;
  switch (beat) {
    case Beat::brand:
      break;
    case Beat::promise:
      return std::make_shared<PromiseBeat>(going(Beat::q1Latest));
    case Beat::q1Latest:
      return std::make_shared<WheelQuestionBeat>(
          beat, translate("What's the latest you go to bed?"), onboardingOptions::latest(),
          startOf(onboardingOptions::latest(), model_->late, FIRST_LATE), translate("Continue"),
          answering<int>([](OnboardingModel& model, int hour) { model.late = hour; }, Beat::q2Nights));
    case Beat::q2Nights:
      return std::make_shared<QuestionBeat>(
          beat, translate("How often do you sleep this late?"), onboardingOptions::nights(),
          answering<double>([](OnboardingModel& model, double nights) { model.nightsFactor = nights; }, Beat::q3Want));
    case Beat::q3Want:
      return std::make_shared<WheelQuestionBeat>(
          beat, translate("When do you *want* to be asleep?"), onboardingOptions::want(),
          startOf(onboardingOptions::want(), model_->want, FIRST_WANT), translate("Continue"),
          answering<int>([](OnboardingModel& model, int hour) { model.want = hour; }, Beat::q4Keeps));
    case Beat::q4Keeps:
      return std::make_shared<KeepsBeat>(
          answering<Keeps>([](OnboardingModel& model, Keeps picks) { model.keeps = picks; }, Beat::mirror));
    case Beat::mirror:
      return std::make_shared<MirrorBeat>(*model_, going(Beat::howItWorks));
    case Beat::howItWorks:
      return std::make_shared<HowItWorksBeat>(*model_, going(Beat::accessibility));
    case Beat::accessibility:
      return std::make_shared<AccessibilityBeat>(going(Beat::demo));
    case Beat::demo:
      return std::make_shared<DemoBeat>(
          DemoBeat::Actions{hooks_.runDemo, going(Beat::debrief), going(Beat::accessibility)});
    case Beat::debrief:
      return std::make_shared<DebriefBeat>(going(Beat::science));
    case Beat::science:
      return std::make_shared<ScienceBeat>(going(Beat::schedule));
    case Beat::schedule:
      return std::make_shared<ScheduleBeat>(model_, preview_, going(Beat::finale));
    case Beat::finale:
      return std::make_shared<FinaleBeat>(*model_, [weak = weak_from_this()] {
        const auto self = weak.lock();
        if (!self) return;
        self->screen_->disappear();  // finished once
        if (self->hooks_.onComplete) self->hooks_.onComplete();
      });
  }
  return std::make_shared<BrandBeat>(going(Beat::promise));
}

}  // namespace dormel
