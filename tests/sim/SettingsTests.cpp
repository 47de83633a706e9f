// What the windows that the user opens show, as far as logic decides it.
#include <gtest/gtest.h>

#include "settings/AccessibilityCardView.h"
#include "tests/sim/Program.h"

namespace dormel {
namespace {

using Lines = Program::Lines;

TEST(Settings, TheCardsSwitchFlipsWhileItIsShown) {
  SimMachine machine;
  int opened = 0;
  auto card = AccessibilityCardView::create([&] { ++opened; });
  std::string positions;
  const Observation observation = card->observe([&] { positions += card->toggleOn() ? '1' : '0'; });
  machine.advance(5);
  EXPECT_FALSE(card->toggleOn()) << "nobody sees it yet";
  card->onAppear();
  machine.advance(0.7);
  card->onAppear();
  machine.advance(0.699);
  EXPECT_EQ(positions, "");
  machine.advance(0.001);
  EXPECT_EQ(positions, "1");
  machine.advance(4.2);
  EXPECT_EQ(positions, "1010");
  card->openSettings();
  EXPECT_EQ(opened, 1);
  card.reset();
  EXPECT_EQ(machine.timeline.repeatingTimers(), 0);
}

TEST(Settings, TheCardsButtonLeadsToThePermissionAndLeavesTheCard) {
  Program program;
  program.machine.accessibility.setTrusted(false);
  program.machine.setWallClock("2026-11-16 23:00:00");
  program.open({"--scheduled"});
  ASSERT_EQ(program.machine.windows.visible().size(), 1U);
  const std::shared_ptr<View> card = program.machine.windows.visible().front()->content();
  ASSERT_EQ(card->kind(), ViewKind::accessibilityCard);
  program.machine.journal.clear();
  std::static_pointer_cast<AccessibilityCardView>(card)->openSettings();
  program.machine.advance(60);
  EXPECT_EQ(program.effects(),
            Lines{"open x-apple.systempreferences:com.apple.preference.security?Privacy_Accessibility"});
  EXPECT_EQ(program.machine.windows.visible().size(), 1U);
}

TEST(Settings, HourLabels) {
  const struct {
    int hour;
    const char* label;
  } rows[] = {{0, "12:00 AM"}, {1, "1:00 AM"}, {11, "11:00 AM"}, {12, "12:00 PM"}, {13, "1:00 PM"}, {23, "11:00 PM"}};
  for (const auto& row : rows) EXPECT_EQ(hourLabel(row.hour), row.label);
}

TEST(Settings, ThePageFollowsTheMachineWithinTwoSeconds) {
  SimMachine machine;  // 21:00
  const auto page = StatusPage::create({});
  int notices = 0;
  const Observation observation = page->observe([&] { ++notices; });
  page->onAppear();
  const auto shown = [&] {
    return page->statusTitle() + " / " + page->statusText() + " / " + page->scheduleText() + " / " +
           page->permissionText() + (page->isArmed() ? " / armed" : "") + (page->isLockedIn() ? " / locked in" : "") +
           (page->canRunDemo() ? " / demo" : "");
  };
  const std::string granted = "Granted. Dormel can lock the screen.";
  const std::string hours = "Locks 10:00 PM, unlocks 6:00 AM.";
  EXPECT_EQ(shown(), "Not set up / Dormel --setup arms the nightly lock. / Locks 12:00 AM, unlocks 6:00 AM. / " +
                         granted + " / demo");

  const struct {
    const char* name;
    std::function<void()> change;
    std::string shows;
  } rows[] = {
      {"set up from a shell",
       [&] { machine.defaults.writeFromOutside(defaultsKey::onboardingComplete, PropertyListValue{true}); },
       "Enabled / Locks your screen on schedule. / Locks 12:00 AM, unlocks 6:00 AM. / " + granted + " / armed / demo"},
      {"another hour",
       [&] { machine.defaults.writeFromOutside(defaultsKey::blockStartHour, PropertyListValue{std::int64_t{22}}); },
       "Enabled / Locks your screen on schedule. / " + hours + " / " + granted + " / armed / demo"},
      {"the permission goes", [&] { machine.accessibility.setTrusted(false); },
       "Enabled / Locks your screen on schedule. / " + hours + " / Required. Dormel can't lock the screen. / armed"},
      {"the hours begin", [&] { machine.setWallClock("2026-11-16 22:00:00"); },
       "Enabled / Locks your screen on schedule. / " + hours +
           " / Required. Dormel can't lock the screen. / armed / locked in"},
      {"switched off",
       [&] { machine.defaults.writeFromOutside(defaultsKey::blockingEnabled, PropertyListValue{false}); },
       "Disabled / Dormel won't lock your screen. / " + hours + " / Required. Dormel can't lock the screen."},
      {"the permission comes", [&] { machine.accessibility.setTrusted(true); },
       "Disabled / Dormel won't lock your screen. / " + hours + " / " + granted + " / demo"},
  };
  for (const auto& row : rows) {
    machine.advance(60);
    notices = 0;
    row.change();
    machine.advance(2);
    EXPECT_EQ(shown(), row.shows) << row.name;
    EXPECT_EQ(notices, 1) << row.name;
  }
  EXPECT_EQ(page->versionText(), "1.0 (build 1)");
}

}  // namespace
}  // namespace dormel
