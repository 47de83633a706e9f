// Draws the screens in their states to PNG files: gallery [folder [language [pictures]]]. Needs no display. What the
// documentation shows goes into the second folder as well. Look at them, at both scales, whenever something about the
// look has changed.
#include <QDir>
#include <QGuiApplication>
#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <QQuickItem>
#include <QQuickWindow>
#include <cmath>
#include <functional>
#include <memory>
#include <optional>

#include "assistant/AssentaHostApp.h"
#include "assistant/OverlayContentView.h"
#include "core/AppSupport.h"
#include "core/Config.h"
#include "platform/Texts.h"
#include "platform/linux/qt/AboutView.h"
#include "platform/linux/qt/AlertView.h"
#include "settings/AccessibilityCardView.h"
#include "settings/NightsView.h"
#include "settings/SettingsView.h"
#include "tests/drawn/DrawnNight.h"
#include "tests/drawn/StrangersScreens.h"
#include "tools/gallery/PictureFolders.h"

using namespace dormel;

namespace {

struct Monitor {
  const char* name;
  int width;  // pixels
  int height;
  double scale;
};

constexpr Monitor MONITORS[] = {
    {"1080p", 1920, 1080, 1}, {"4k", 3840, 2160, 2}, {"1280x1024", 1280, 1024, 1}, {"1440p-125", 2560, 1440, 1.25}};

QLinearGradient wallpaper(const QSize& size) {
  QLinearGradient colours(0, 0, size.width(), size.height());
  colours.setColorAt(0, QColor(40, 60, 90));
  colours.setColorAt(1, QColor(220, 180, 150));
  return colours;
}

QImage inPixels(QImage picture) {
  picture.setDevicePixelRatio(1);
  return picture;
}

/// What a whole monitor shows: a blocker in its middle, or a pill in the corner of a desktop.
QImage onMonitor(const QImage& picture, const Monitor& monitor, bool pill) {
  const QImage pixels = inPixels(picture);
  QImage screen(monitor.width, monitor.height, QImage::Format_RGB32);
  QPainter painter(&screen);
  painter.fillRect(screen.rect(), Qt::black);
  if (pill) {
    painter.fillRect(screen.rect(), wallpaper(screen.size()));
    const int margin = static_cast<int>(std::lround(24 * monitor.scale));
    painter.drawImage(monitor.width - pixels.width() - margin, margin, pixels);
  } else {
    painter.drawImage((monitor.width - pixels.width()) / 2, (monitor.height - pixels.height()) / 2, pixels);
  }
  return screen;
}

/// Something that stands on the desktop.
QImage onDesktop(const QImage& picture, double scale) {
  const int margin = static_cast<int>(40 * scale);
  QImage desktop(picture.width() + 2 * margin, picture.height() + 2 * margin, QImage::Format_RGB32);
  QPainter painter(&desktop);
  painter.fillRect(desktop.rect(), wallpaper(desktop.size()));
  painter.drawImage(margin, margin, inPixels(picture));
  return desktop;
}

/// The picture of a window with its corners cut, as a desktop that blends shows it.
QImage withCutCorners(const QImage& picture, double scale) {
  QImage cut(picture.size(), QImage::Format_ARGB32_Premultiplied);
  cut.fill(Qt::transparent);
  QPainter painter(&cut);
  painter.setRenderHint(QPainter::Antialiasing);
  QPainterPath shape;
  shape.addRoundedRect(cut.rect(), 14 * scale, 14 * scale);
  painter.setClipPath(shape);
  painter.drawImage(0, 0, inPixels(picture));
  painter.setPen(QPen(QColor(255, 255, 255, 20), scale));
  const double inset = scale / 2;
  painter.drawRoundedRect(QRectF(cut.rect()).adjusted(inset, inset, -inset, -inset), 14 * scale, 14 * scale);
  return cut;
}

/// The root of the scene that was loaded last.
QQuickItem& lastScene() {
  return *static_cast<QQuickWindow*>(QGuiApplication::allWindows().constLast())
              ->contentItem()
              ->childItems()
              .constFirst();
}

enum class Docs {
  no,
  yes,  ///< the documentation shows this one
};

class Gallery {
 public:
  using MakeView = std::function<std::shared_ptr<View>(DrawnMachine&)>;
  using Touch = std::function<void(QQuickItem& root)>;

  explicit Gallery(PictureFolders& folders) : folders_(folders) {}

  /// One picture per monitor of what `play` leads to, in a night of its own.
  void show(const char* name, const DrawnNight::Options& options, const std::function<void(DrawnNight&)>& play,
            const std::function<void(DrawnNight&)>& then = {}, Docs docs = Docs::no) {
    for (const Monitor& monitor : MONITORS) {
      DrawnNight night(options);
      night.speak(folders_.language());
      play(night);
      const bool pill = night.view()->kind() == ViewKind::graceCountdown;
      const Size pillSize{220, 64};
      DrawnView drawn(night.factory, night.view(), monitor.scale, pill ? std::optional(pillSize) : std::nullopt);
      drawn.picture();
      if (then) {
        then(night);
      } else {
        night.pass(4.5);
      }
      const bool chosen = docs == Docs::yes && QLatin1String(monitor.name) == QLatin1String("1440p-125");
      const QImage screen = onMonitor(drawn.picture(), monitor, pill);
      const QRect corner(screen.width() - 480, 0, 480, 160);
      const QRect middle(screen.width() / 2 - 700, screen.height() / 2 - 500, 1400, 1000);
      if (chosen) folders_.keep(QLatin1String(name), screen.copy(pill ? corner : middle));
      folders_.save(QStringLiteral("%1-%2").arg(QLatin1String(name), QLatin1String(monitor.name)), screen);
    }
  }

  /// A card or an alert, once it came to rest.
  void showPage(const char* name, const MakeView& make, Seconds after = 3, Docs docs = Docs::no) {
    for (const int scale : {1, 2}) {
      DrawnMachine machine;
      machine.speak(folders_.language());
      machine.speakAsLinux();
      DrawnView drawn(machine.factory, make(machine), scale);
      drawn.picture();
      machine.pass(after);
      const QImage picture = onDesktop(drawn.picture(), scale);
      if (docs == Docs::yes && scale == 2) folders_.keep(QLatin1String(name), picture);
      folders_.save(QStringLiteral("%1-%2x").arg(QLatin1String(name)).arg(scale), picture);
    }
  }

  /// A main window in its frame, once it came to rest; then `touch` does something to its scene, and it rests again. On
  /// strangers' screens, too, as far as they have room for it.
  void showWindow(const char* name, const MakeView& make, const Touch& touch = {}, Docs docs = Docs::no) {
    for (const int scale : {1, 2}) {
      const QImage window = windowPicture(make, touch, scale, {});
      if (docs == Docs::yes && scale == 2) folders_.keep(QLatin1String(name), window);
      folders_.save(QStringLiteral("%1-%2x").arg(QLatin1String(name)).arg(scale), onDesktop(window, scale));
    }
    for (const StrangersScreen& screen : STRANGERS_SCREENS) {
      folders_.save(QStringLiteral("%1-%2").arg(QLatin1String(name), QLatin1String(screen.name)),
                    onDesktop(windowPicture(make, touch, screen.scale, screen), screen.scale));
    }
  }

 private:
  [[nodiscard]] QImage windowPicture(const MakeView& make, const Touch& touch, double scale,
                                     const std::optional<StrangersScreen>& screen) const {
    DrawnMachine machine;
    machine.speak(folders_.language());
    machine.speakAsLinux();
    DrawnView drawn(machine.factory, make(machine), scale);
    if (screen) drawn.canvas().resize(screen->sizeOf(drawn.canvas().fittingSize()), scale);
    QQuickItem& root = lastScene();
    const std::unique_ptr<QQuickItem> frame = machine.stage->makeWindowFrame(true);
    frame->setParentItem(&root);
    frame->setZ(1);
    frame->setSize(root.size());
    drawn.picture();
    machine.pass(3);
    if (touch) touch(root);
    machine.pass(3);
    return withCutCorners(drawn.picture(), scale);
  }

  PictureFolders& folders_;
};

std::shared_ptr<View> card(DrawnMachine& /*machine*/) {
  return AccessibilityCardView::create([] {});
}

std::shared_ptr<View> alert(const Alert& alert) {
  return std::make_shared<AlertView>(alert, [](std::size_t) {});
}

/// The settings on a machine that something was done to first.
Gallery::MakeView settings(const std::function<void(DrawnMachine&)>& prepare = {}) {
  return [prepare](DrawnMachine& desk) {
    desk.store(defaultsKey::blockEndHour, {std::int64_t{6}});
    if (prepare) prepare(desk);
    const auto nothing = [] {};
    return SettingsView::create(desk.machine.updater,
                                {nothing, nothing, nothing, [] { return true; }, nothing, nothing, nothing});
  };
}

void visit(QQuickItem& item, const std::function<void(QQuickItem&)>& see) {
  see(item);
  for (QQuickItem* child : item.childItems()) visit(*child, see);
}

std::vector<QQuickItem*> squaresOf(QQuickItem& root) {
  std::vector<QQuickItem*> squares;
  visit(root, [&](QQuickItem& item) {
    if (item.property("place").isValid()) squares.push_back(&item);
  });
  return squares;
}

void scrollDown(QQuickItem& root) {
  visit(root, [](QQuickItem& item) {
    if (!item.inherits("QQuickFlickable")) return;
    item.setProperty("contentY", item.property("contentHeight").toDouble() - item.height());
  });
}

void openPicker(QQuickItem& root) {
  visit(root, [](QQuickItem& item) {
    if (item.property("open").isValid()) item.setProperty("open", true);
  });
}

void showSettings(Gallery& gallery) {
  const auto locked = [](DrawnMachine& desk) { desk.machine.setWallClock("2026-11-16 23:05:00"); };
  const auto update = [](DrawnMachine& desk) {
    desk.machine.updater.setStatus("Dormel 1.1 is ready and will be installed when you open Dormel again.");
  };
  gallery.showWindow("settings-enabled", settings(), {}, Docs::yes);
  gallery.showWindow("settings-lower-half", settings(), scrollDown, Docs::yes);
  gallery.showWindow("settings-picker", settings(), openPicker, Docs::yes);
  gallery.showWindow("settings-disabled",
                     settings([](DrawnMachine& desk) { desk.store(defaultsKey::blockingEnabled, {false}); }), {},
                     Docs::yes);
  gallery.showWindow("settings-locked-in", settings(locked), {}, Docs::yes);
  gallery.showWindow("settings-locked-in-lower-half", settings(locked), scrollDown);
  gallery.showWindow("settings-not-trusted",
                     settings([](DrawnMachine& desk) { desk.machine.accessibility.setTrusted(false); }), {}, Docs::yes);
  gallery.showWindow("settings-update", settings(update), scrollDown, Docs::yes);
}

/// The logs of ninety nights. With `mixed` some were opened, the newest ones not, and some are not recorded.
void putNights(DrawnMachine& desk, bool mixed) {
  const auto drawn = [](unsigned night, unsigned below) { return (night * 2654435761U >> 16U) % below; };
  std::string nights;
  std::string unlocks;
  const std::chrono::sys_days today = std::chrono::floor<std::chrono::days>(desk.machine.clock.now());
  for (unsigned i = 90; i > 0; --i) {
    if (mixed && drawn(i, 13) == 2) continue;
    const std::string day = dateText(std::chrono::local_days((today - std::chrono::days(i)).time_since_epoch()));
    nights += (nights.empty() ? "[" : ",") + ("{\"night\":\"" + day) + "\",\"firedAt\":\"" + day +
              "T21:00:04.512Z\",\"idleSeconds\":" + std::to_string(i * 7 % 240) + "}";
    if (!mixed || i < 5 || drawn(i, 7) != 1) continue;
    for (unsigned number = 1; number <= 1 + i % 4; ++number) {
      unlocks += day + " 2" + std::to_string(2 + number / 3) + ":" + std::to_string(14 + 17 * (number % 3)) +
                 ":07 — unlocked (#" + std::to_string(number) + ", held 30s)\n";
    }
  }
  desk.machine.files.put(AppSupport::url("nights.json"), nights + "]");
  desk.machine.files.put(Config::unlockLogPath(), unlocks);
  desk.store(defaultsKey::use24HourClock, {true});
}

void showNights(Gallery& gallery) {
  gallery.showWindow("nights-empty", [](DrawnMachine&) { return NightsView::create(); });
  gallery.showWindow("nights-full", [](DrawnMachine& desk) {
    putNights(desk, false);
    return NightsView::create();
  });
  const auto mixed = [](DrawnMachine& desk) {
    putNights(desk, true);
    return NightsView::create();
  };
  gallery.showWindow("nights", mixed, {}, Docs::yes);
  gallery.showWindow("nights-stepped", mixed, [](QQuickItem& root) {
    for (QQuickItem* item : squaresOf(root)) {
      if (item->property("text").toString().contains(QStringLiteral("4 times")))
        item->forceActiveFocus(Qt::TabFocusReason);
    }
  });
  gallery.showWindow("nights-damaged", [](DrawnMachine& desk) {
    putNights(desk, true);
    desk.machine.files.put(AppSupport::url("nights.json"), "[{");
    desk.store(defaultsKey::use24HourClock, {false});
    return NightsView::create();
  });
}

void showWindows(Gallery& gallery) {
  gallery.showPage("card-off", card, 1.0);
  gallery.showPage("card-turning", card, 1.58);
  gallery.showPage("card", card, 2.2, Docs::yes);
  gallery.showPage("alert-move", [](DrawnMachine&) {
    return alert({AlertStyle::informational,
                  translate("Move Dormel to Applications"),
                  translate("Dormel is running from a disk image. It needs to be in your Applications folder to work "
                            "properly.\n\nAfter moving, you can eject the disk image."),
                  {translate("Move to Applications"), translate("Quit")}});
  });
  gallery.showPage("alert-recovery", [](DrawnMachine& desk) {
    const RecoveryWords words = desk.machine.wording.recovery(true);
    return alert({AlertStyle::warning, words.title, words.text, {words.button, translate("Not Now")}});
  });
  gallery.showPage("alert-not-armed", [](DrawnMachine& desk) {
    const RecoveryWords words = desk.machine.wording.recovery(false);
    return alert({AlertStyle::warning, words.title, words.text, {"OK"}});
  });
  gallery.showPage("alert-short", [](DrawnMachine& desk) {
    return alert({AlertStyle::informational,
                  translate("Dormel uninstalled"),
                  translate("Dormel has been removed from your %1.", {desk.machine.wording.computer()}),
                  {"OK"}});
  });
  for (const AssentaPanel panel : {AssentaPanel::accessibility, AssentaPanel::screenRecording}) {
    const std::string name = "guide-" + std::string(rawValue(panel)).substr(sizeof "Privacy_" - 1);
    gallery.showPage(
        name.c_str(),
        [panel](DrawnMachine& desk) {
          AssentaHostApp host = AssentaHostApp::current(desk.machine.bundle);
          return std::make_shared<OverlayContentView>(host, panel, [] {});
        },
        1.7);
  }
  gallery.showPage("about", [](DrawnMachine&) { return std::make_shared<AboutView>(); });
}

}  // namespace

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  QGuiApplication application(argc, argv);
  const QDir folder(argc > 1 ? QString::fromLocal8Bit(argv[1]) : QStringLiteral("gallery"));
  const std::optional<QDir> pictures = argc > 3 ? std::optional(QDir(QString::fromLocal8Bit(argv[3]))) : std::nullopt;
  if (!folder.mkpath(QStringLiteral("."))) return 1;
  if (pictures && !pictures->mkpath(QStringLiteral("."))) return 1;
  PictureFolders folders(folder, argc > 2 ? argv[2] : "en", pictures);
  drawFirstRun(folders);
  Gallery gallery(folders);
  showSettings(gallery);
  showNights(gallery);
  showWindows(gallery);

  const auto nothing = [](DrawnNight&) {};
  const auto holdFor = [](Seconds seconds) {
    return [seconds](DrawnNight& night) {
      night.pass(4.5);
      night.holdKeys();
      night.skip(seconds);
      night.pass(0.5);
    };
  };
  const auto unlock = [](DrawnNight& night) {
    night.skip(4.5);
    night.holdKeys();
    night.skip(30.1);
    night.machine.keyboard.releaseAll();
  };
  const auto grace = [unlock](Seconds left) {
    return [unlock, left](DrawnNight& night) {
      unlock(night);
      night.skip(300 - left - 1);
    };
  };

  gallery.show("idle-24h", {}, nothing);
  gallery.show("idle-12h", {.at = "2026-11-16 23:05:00", .use24HourClock = false, .seed = 2}, nothing);
  std::vector<std::pair<KeyCode, const char*>> confusing;
  for (const LetterRow& row : LEFT_LETTERS) confusing.emplace_back(row.keyCode, "σ");
  for (const LetterRow& row : RIGHT_LETTERS) confusing.emplace_back(row.keyCode, ",");
  gallery.show("idle-confusing-layout", {.layout = confusing}, nothing);
  gallery.show("fading-in", {}, nothing, [](DrawnNight& night) { night.pass(2.0); });
  gallery.show("some-keys", {}, nothing, [](DrawnNight& night) {
    night.pass(4.5);
    night.holdKeys(3);
    night.pass(0.5);
  });
  gallery.show("hold-20", {}, nothing, holdFor(6));
  gallery.show("blocker", {}, nothing, holdFor(18), Docs::yes);
  gallery.show("hold-90", {}, nothing, holdFor(27));
  gallery.show("rolling", {}, nothing, [](DrawnNight& night) {
    night.pass(4.5);
    night.holdKeys();
    night.pass(10.16);
  });
  gallery.show("reshuffled", {}, nothing, [](DrawnNight& night) {
    night.pass(4.5);
    night.machine.keyboard.press(49);
    night.pass(0.6);
  });
  gallery.show("unlocked", {}, nothing, [unlock](DrawnNight& night) {
    night.pass(4.5);
    unlock(night);
    night.pass(1.2);
  });
  gallery.show(
      "pill-300", {},
      [unlock](DrawnNight& night) {
        unlock(night);
        night.skip(4);
      },
      [](DrawnNight& night) { night.pass(1); });
  gallery.show(
      "pill", {}, grace(254), [](DrawnNight& night) { night.pass(1); }, Docs::yes);
  for (const int left : {61, 45, 12}) {
    gallery.show(qPrintable(QStringLiteral("pill-%1").arg(left)), {}, grace(left),
                 [](DrawnNight& night) { night.pass(1); });
  }
  return folders.isWhole() ? 0 : 1;
}
