// Every text that is drawn, or read to somebody, was looked up in the language's table.
#include <gtest/gtest.h>

#include <QAccessible>
#include <QGuiApplication>
#include <QQuickItem>
#include <QQuickWindow>
#include <QRegularExpression>

#include "core/Config.h"
#include "onboarding/OnboardingView.h"
#include "platform/common/paint/PlainLines.h"
#include "platform/linux/qt/AboutView.h"
#include "platform/linux/qt/AlertView.h"
#include "settings/AccessibilityCardView.h"
#include "settings/NightsView.h"
#include "settings/SettingsView.h"
#include "tests/drawn/DrawnNight.h"

namespace dormel {
namespace {

/// Figures, hours, signs and names are the same in every language, and so is what stands on a key.
bool isSame(QString text) {
  static const QRegularExpression marked(QStringLiteral("‹[^‹›]*›"));
  while (text.contains(marked)) text.remove(marked);
  static const QRegularExpression rest(QStringLiteral(
      "^(AM|PM|Dormel(\\.app)?|DORMEL|STANFORD|SLEEP|PSYCHOLOGICAL MEDICINE|UK BIOBANK|[LR]\\.\\w+|Super|Alt|"
      "[A-Z⇧]|min|[\\d\\s:.,%–()✓/])*$"));
  return rest.match(text).hasMatch();
}

void look(QQuickItem& item, const std::string& where, int& seen) {
  if (!item.isVisible()) return;
  // Lines whose pieces or figures are items of their own have the whole as a property.
  for (const char* whole : {"text", "plain"}) {
    const QString text = item.property(whole).toString();
    if (item.inherits("QQuickText") || !text.contains(QStringLiteral("‹"))) continue;
    EXPECT_TRUE(isSame(text)) << where << ": " << qPrintable(text);
    ++seen;
    return;
  }
  QStringList texts;
  if (item.inherits("QQuickText")) texts << item.property("text").toString();
  if (const auto* read = QAccessible::queryAccessibleInterface(&item)) texts << read->text(QAccessible::Name);
  for (QString text : texts) {
    text.remove(QRegularExpression(QStringLiteral("<[^>]*>|&nbsp;")));  // a headline's emphasis
    EXPECT_TRUE(isSame(text)) << where << ": " << qPrintable(text);
    seen += text.contains(QStringLiteral("‹")) ? 1 : 0;
  }
  for (QQuickItem* child : item.childItems()) look(*child, where, seen);
}

void expectLookedUp(const std::string& where) {
  auto& window = *static_cast<QQuickWindow*>(QGuiApplication::allWindows().constLast());
  int seen = 0;
  look(*window.contentItem(), where, seen);
  EXPECT_GT(seen, 0) << where;
}

void answer(DrawnMachine& desk) {
  desk.store(defaultsKey::onboardingLate, {std::int64_t{26}});
  desk.store(defaultsKey::onboardingNights, {4.0});
  desk.store(defaultsKey::onboardingWant, {std::int64_t{23}});
  desk.store(defaultsKey::onboardingKeeps, {PropertyListArray{{std::string("work")}}});
}

TEST(DrawnTexts, OfTheFirstRunAreLookedUp) {
  DrawnMachine desk;
  desk.speakAsLinux();
  desk.machine.texts.setMarked(true);
  answer(desk);
  const auto view = OnboardingView::create({[](const auto&) { return true; }, [] {}});
  DrawnView drawn(desk.factory, view, 1);
  for (const OnboardingBeat beat : ONBOARDING_BEATS) {
    desk.machine.accessibility.setTrusted(beat != OnboardingBeat::accessibility);
    drawn.picture();
    desk.pass(0.1);
    view->advance(beat);
    for (int scene = 0; scene < 4; ++scene) {
      desk.pass(4.7);
      drawn.picture();
      expectLookedUp("screen " + std::to_string(rawValue(beat)));
    }
  }
}

TEST(DrawnTexts, OfEveryOtherWindowAreLookedUp) {
  const auto settings = [](DrawnMachine& desk) {
    return SettingsView::create(desk.machine.updater, {[] {}, [] {}, [] {}, [] { return true; }, [] {}, [] {}, [] {}});
  };
  const struct {
    const char* name;
    std::function<std::shared_ptr<View>(DrawnMachine&)> make;
  } windows[] = {
      {"settings", settings},
      {"settings, locked in and nothing granted",
       [&](DrawnMachine& desk) {
         desk.machine.accessibility.setTrusted(false);
         desk.machine.setWallClock("2026-11-16 23:05:00");
         return settings(desk);
       }},
      {"settings, switched off",
       [&](DrawnMachine& desk) {
         desk.store(defaultsKey::blockingEnabled, {false});
         return settings(desk);
       }},
      {"nights", [](DrawnMachine&) { return NightsView::create(); }},
      {"card", [](DrawnMachine&) { return AccessibilityCardView::create([] {}); }},
      {"about", [](DrawnMachine&) { return std::make_shared<AboutView>(); }},
  };
  for (const auto& window : windows) {
    DrawnMachine desk;
    desk.speakAsLinux();
    desk.machine.texts.setMarked(true);
    DrawnView drawn(desk.factory, window.make(desk), 1);
    drawn.picture();
    desk.pass(1);
    drawn.picture();
    expectLookedUp(window.name);
  }
}

TEST(DrawnTexts, OfTheLockAreLookedUpByWhoLocks) {
  DrawnNight night({.use24HourClock = false});
  night.machine.texts.setMarked(true);
  const auto overlay = std::static_pointer_cast<PaintedView>(night.view());
  DrawnView drawn(night.factory, overlay, 1);
  night.pass(4.5);
  drawn.picture();
  expectLookedUp("locked");
  night.holdKeys();
  night.pass(0.5);
  drawn.picture();
  expectLookedUp("held");
  night.skip(30);
  night.machine.keyboard.releaseAll();
  night.pass(1);
  drawn.picture();
  expectLookedUp("unlocked");
  night.skip(4);
  DrawnView pill(night.factory, night.view(), 1);
  pill.picture();
  expectLookedUp("grace");
}

TEST(DrawnTexts, OfTheLockCanBeWrittenPlainlyInEveryLanguage) {
  for (const char* language : {"en", "de", "fr"}) {
    DrawnNight night;
    night.speak(language);
    night.speakAsLinux();
    const auto check = [&](const View& view) {
      for (const std::string& line : static_cast<const PaintedView&>(view).plainLines(paint::canWritePlainly)) {
        EXPECT_TRUE(paint::canWritePlainly(line)) << language << ": " << line;
      }
    };
    check(*night.view());
    night.holdKeys();
    night.skip(10);
    check(*night.view());
    night.skip(21);
    check(*night.view());
    night.machine.keyboard.releaseAll();
    night.skip(5);
    check(*night.view());
    check(*AccessibilityCardView::create([] {}));
  }
}

}  // namespace
}  // namespace dormel
