// Every window and card on the screens of strangers: no control and no text lies outside of the window, or beneath
// another control.
#include "tests/drawn/StrangersScreens.h"

#include <gtest/gtest.h>

#include <QGuiApplication>
#include <QQuickItem>
#include <QQuickWindow>
#include <cmath>
#include <functional>
#include <memory>
#include <vector>

#include "assistant/OverlayContentView.h"
#include "core/AppSupport.h"
#include "core/Config.h"
#include "onboarding/OnboardingView.h"
#include "platform/linux/qt/AboutView.h"
#include "platform/linux/qt/AlertView.h"
#include "settings/AccessibilityCardView.h"
#include "settings/NightsView.h"
#include "settings/SettingsView.h"
#include "tests/drawn/DrawnMachine.h"
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

std::vector<Part> partsOf() {
  std::vector<Part> found;
  const QQuickItem& root =
      *static_cast<QQuickWindow*>(QGuiApplication::allWindows().constLast())->contentItem()->childItems().constFirst();
  collect(root, root, found);
  return found;
}

void expectAllInside(const std::string& where) {
  const std::vector<Part> parts = partsOf();
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

TEST(StrangersScreens, HaveRoomForEveryScreenOfTheFirstRun) {
  for (const auto& [screen, language] : FOREIGN_SCREENS) {
    DrawnMachine desk;
    desk.speak(language);
    desk.speakAsLinux();
    desk.machine.accessibility.setTrusted(false);
    desk.store(defaultsKey::onboardingLate, {std::int64_t{26}});
    desk.store(defaultsKey::onboardingNights, {4.0});
    desk.store(defaultsKey::onboardingWant, {std::int64_t{23}});
    desk.store(defaultsKey::onboardingKeeps, {PropertyListArray{{std::string("movies & shows")}}});
    const auto view = OnboardingView::create({[](const auto&) { return true; }, [] {}});
    DrawnView drawn(desk.factory, view, screen.scale, screen.sizeOf(OnboardingView::SIZE));
    for (const OnboardingBeat beat : ONBOARDING_BEATS) {
      drawn.picture();
      desk.pass(0.1);
      view->advance(beat);
      for (const Seconds moment : {1.7, 6.7, 11.6}) {  // while it comes in, and at each scene of the longest
        desk.pass(moment);
        drawn.picture();
        expectAllInside(std::string(screen.name) + ", " + language + ", screen " + std::to_string(rawValue(beat)));
      }
      EXPECT_FALSE(partsOf().empty()) << rawValue(beat);
    }
  }
}

struct Window {
  const char* name;
  std::function<std::shared_ptr<View>(DrawnMachine&)> make;
  std::optional<Size> wanted;  // else what fits
};
const Window WINDOWS[] = {
    {"settings",
     [](DrawnMachine& desk) {
       desk.machine.accessibility.setTrusted(false);
       desk.machine.updater.setStatus("Dormel 1.1 is ready and will be installed when you open Dormel again.");
       return SettingsView::create(desk.machine.updater,
                                   {[] {}, [] {}, [] {}, [] { return true; }, [] {}, [] {}, [] {}});
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
           Alert{AlertStyle::warning, words.title, words.text, {words.button, "Not Now"}}, [](std::size_t) {});
     },
     {}},
};

TEST(StrangersScreens, HaveRoomForEveryOtherWindow) {
  for (const auto& [screen, language] : FOREIGN_SCREENS) {
    for (const Window& window : WINDOWS) {
      DrawnMachine desk;
      desk.speak(language);
      desk.speakAsLinux();
      const auto view = window.make(desk);
      const Size wanted = window.wanted ? *window.wanted : QmlCanvas(desk.stage, view).fittingSize();
      DrawnView drawn(desk.factory, view, screen.scale, screen.sizeOf(wanted));
      drawn.picture();
      desk.pass(3);
      drawn.picture();
      expectAllInside(std::string(screen.name) + ", " + language + ", " + window.name);
      EXPECT_FALSE(partsOf().empty()) << window.name;
    }
  }
}

// Of white on our ground: letters that are fainter have less than the contrast of 4.4 to 1.
constexpr double READABLE = 0.44;

void expectReadable(const QQuickItem& item, double opacity, const char* where) {
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

TEST(StrangersScreens, AreReadableInHighContrast) {
  AppPalette::setHighContrast(true);
  for (const Window& window : WINDOWS) {
    if (window.name == std::string("card")) continue;  // the painter's, which knows no desktop
    DrawnMachine desk;
    const auto view = window.make(desk);
    DrawnView drawn(desk.factory, view, 1, window.wanted ? *window.wanted : QmlCanvas(desk.stage, view).fittingSize());
    drawn.picture();
    desk.pass(3);
    drawn.picture();
    expectReadable(*static_cast<QQuickWindow*>(QGuiApplication::allWindows().constLast())->contentItem(), 1,
                   window.name);
  }
  AppPalette::setHighContrast(false);
}

}  // namespace
}  // namespace dormel
