// Every screen of the first run, every window and card: on the screens of strangers no control and no text lies outside
// of the window or beneath another control; letters are readable; every text, drawn or read aloud, was looked up in the
// language's table.
#include "tests/drawn/StrangersScreens.h"

#include <gtest/gtest.h>

#include <QAccessible>
#include <QGuiApplication>
#include <QQuickItem>
#include <QQuickWindow>
#include <QRegularExpression>
#include <cmath>
#include <functional>
#include <memory>
#include <vector>

#include "assistant/OverlayContentView.h"
#include "core/AppSupport.h"
#include "core/Config.h"
#include "onboarding/OnboardingView.h"
#include "platform/Texts.h"
#include "platform/common/paint/PlainLines.h"
#include "platform/linux/qt/AboutView.h"
#include "platform/linux/qt/AlertView.h"
#include "settings/AccessibilityCardView.h"
#include "settings/NightsView.h"
#include "settings/SettingsView.h"
#include "tests/drawn/DrawnNight.h"
#include "ui/qml/AppPalette.h"
#include "ui/qml/Pressable.h"

namespace dormel {
namespace {

struct Part {
  QString what;
  QRectF box;  // in its page: the window, or what can be scrolled into it
  QSizeF page;
  bool isControl;
};

void collect(const QQuickItem& item, const QQuickItem& page, std::vector<Part>& found) {
  if (!item.isVisible() || item.opacity() < 0.004) return;
  const bool isControl = qobject_cast<const Pressable*>(&item) != nullptr;
  if (isControl || (item.inherits("QQuickText") && !item.property("text").toString().isEmpty())) {
    QString what = item.property(isControl ? "title" : "text").toString();
    if (what.isEmpty()) what = QString::fromLatin1(item.metaObject()->className());
    EXPECT_FALSE(item.property("truncated").toBool()) << qPrintable(what);
    found.push_back({what, item.mapRectToItem(&page, {0, 0, item.width(), item.height()}), page.size(), isControl});
  }
  // What overflows a scroll area is scrolled into it.
  const bool scrolls = item.inherits("QQuickFlickable");
  for (const QQuickItem* child : item.childItems()) collect(*child, scrolls ? *child : page, found);
}

QQuickItem& theWindow() {
  return *static_cast<QQuickWindow*>(QGuiApplication::allWindows().constLast())->contentItem();
}

void expectAllInside(const std::string& where) {
  std::vector<Part> parts;
  const QQuickItem& root = *theWindow().childItems().constFirst();
  collect(root, root, parts);
  for (const Part& part : parts) {
    const QRectF page = QRectF({0, 0}, part.page).adjusted(-0.5, -0.5, 0.5, 0.5);
    EXPECT_TRUE(page.contains(part.box)) << where << ": " << qPrintable(part.what) << " at " << part.box.x() << ","
                                         << part.box.y() << " " << part.box.width() << "x" << part.box.height()
                                         << " of " << part.page.width() << "x" << part.page.height();
    for (const Part& other : parts) {
      if (&other == &part || !part.isControl || !other.isControl || other.page != part.page) continue;
      EXPECT_FALSE(part.box.adjusted(1, 1, -1, -1).intersects(other.box))
          << where << ": " << qPrintable(part.what) << " and " << qPrintable(other.what);
    }
  }
}

using Prepare = std::function<void(DrawnMachine&)>;
using Look = std::function<void(const std::string& where)>;

/// Looks at each screen of the first run while it comes in, and at each scene of the longest.
void lookAtTheFirstRun(const StrangersScreen& screen, const Prepare& prepare, const Look& look) {
  DrawnMachine desk;
  desk.speakAsLinux();
  desk.machine.accessibility.setTrusted(false);
  desk.answerTheFirstRun("movies & shows");
  prepare(desk);
  const auto view = OnboardingView::create({[](const auto&) { return true; }, [] {}});
  DrawnView drawn(desk.factory, view, screen.scale, screen.sizeOf(OnboardingView::SIZE));
  for (const OnboardingBeat beat : ONBOARDING_BEATS) {
    drawn.picture();
    desk.pass(0.1);
    view->advance(beat);
    for (const Seconds moment : {1.7, 6.7, 11.6}) {
      desk.pass(moment);
      drawn.picture();
      look(std::string(screen.name) + ", screen " + std::to_string(rawValue(beat)));
    }
  }
}

struct Window {
  const char* name;
  std::function<std::shared_ptr<View>(DrawnMachine&)> make;
  std::optional<Size> wanted;  // else what fits
};

std::shared_ptr<View> settings(DrawnMachine& desk) {
  return SettingsView::create(desk.machine.updater, {[] {}, [] {}, [] {}, [] { return true; }, [] {}, [] {}, [] {}});
}

const Window WINDOWS[] = {
    {"settings, nothing granted",
     [](DrawnMachine& desk) {
       desk.machine.accessibility.setTrusted(false);
       desk.machine.updater.setStatus(
           translate("%1 is ready and will be installed when you open Dormel again.", {"Dormel 1.1"}));
       return settings(desk);
     },
     Size{460, 660}},
    {"settings, locked in",
     [](DrawnMachine& desk) {
       desk.machine.setWallClock("2026-11-16 23:05:00");
       return settings(desk);
     },
     Size{460, 660}},
    {"settings, switched off",
     [](DrawnMachine& desk) {
       desk.store(defaultsKey::blockingEnabled, {false});
       return settings(desk);
     },
     Size{460, 660}},
    {"nights",
     [](DrawnMachine& desk) {
       desk.machine.files.put(AppSupport::url("nights.json"),
                              R"([{"night":"2026-11-15","firedAt":"2026-11-15T21:00:00.000Z","idleSeconds":70}])");
       desk.machine.files.put(Config::unlockLogPath(),
                              "2026-11-15 23:41:07 — unlocked (#1, held 30s)\n"
                              "2026-11-15 23:48:07 — unlocked (#2, held 60s)\n"
                              "2026-11-15 23:55:07 — unlocked (#3, held 60s)\n");
       return NightsView::create();
     },
     NightsView::SIZE},
    {"guide",
     [](DrawnMachine& desk) {
       return std::make_shared<OverlayContentView>(AssentaHostApp::current(desk.machine.bundle),
                                                   AssentaPanel::screenRecording, [] {});
     },
     {}},
    {"card", [](DrawnMachine&) { return AccessibilityCardView::create([] {}); }, {}},
    {"about", [](DrawnMachine&) { return std::make_shared<AboutView>(); }, {}},
    {"alert",
     [](DrawnMachine& desk) {
       const RecoveryWords words = desk.machine.wording.recovery(true);
       return std::make_shared<AlertView>(
           Alert{AlertStyle::warning, words.title, words.text, {words.button, translate("Not Now")}},
           [](std::size_t) {});
     },
     {}},
};

void lookAtTheWindows(const StrangersScreen& screen, const Prepare& prepare, const Look& look) {
  for (const Window& window : WINDOWS) {
    DrawnMachine desk;
    desk.speakAsLinux();
    prepare(desk);
    const auto view = window.make(desk);
    const Size wanted = window.wanted ? *window.wanted : QmlCanvas(desk.stage, view).fittingSize();
    DrawnView drawn(desk.factory, view, screen.scale, screen.sizeOf(wanted));
    drawn.picture();
    desk.pass(3);
    drawn.picture();
    look(std::string(screen.name) + ", " + window.name);
  }
}

TEST(EveryScreen, HasRoomOnStrangersScreens) {
  for (const auto& [screen, language] : FOREIGN_SCREENS) {
    const auto speak = [language = language](DrawnMachine& desk) { desk.speak(language); };
    const auto look = [language = language](const std::string& where) { expectAllInside(where + ", " + language); };
    lookAtTheFirstRun(screen, speak, look);
    lookAtTheWindows(screen, speak, look);
  }
}

// Of white on our ground: letters that are fainter have less than the contrast of 4.4 to 1.
constexpr double READABLE = 0.44;

void expectReadable(const QQuickItem& item, double opacity, const std::string& where) {
  opacity *= item.opacity();
  if (!item.isVisible() || !item.isEnabled() || opacity < 0.004) return;
  const QString text = item.property("text").toString();
  if (item.inherits("QQuickText") && !text.isEmpty()) {
    const QColor colour = item.property("color").value<QColor>();
    // Dark letters stand on a white button.
    if (colour.value() > 100) {
      EXPECT_GE(colour.alphaF() * opacity, READABLE) << where << ": " << qPrintable(text);
    }
  }
  for (const QQuickItem* child : item.childItems()) expectReadable(*child, opacity, where);
}

TEST(EveryScreen, IsReadableInHighContrast) {
  AppPalette::setHighContrast(true);
  lookAtTheWindows(
      STRANGERS_SCREENS[4], [](DrawnMachine&) {},
      [](const std::string& where) {
        if (!where.ends_with("card")) expectReadable(theWindow(), 1, where);  // the painter's, which knows no desktop
      });
  AppPalette::setHighContrast(false);
}

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
  int seen = 0;
  look(theWindow(), where, seen);
  EXPECT_GT(seen, 0) << where;
}

TEST(EveryScreen, SaysWhatWasLookedUp) {
  const auto mark = [](DrawnMachine& desk) { desk.machine.texts.setMarked(true); };
  lookAtTheFirstRun(STRANGERS_SCREENS[0], mark, expectLookedUp);
  lookAtTheWindows(STRANGERS_SCREENS[0], mark, expectLookedUp);
}

TEST(TheLock, SaysWhatWasLookedUpByWhoLocks) {
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

TEST(TheLock, CanBeWrittenPlainlyInEveryLanguage) {
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
