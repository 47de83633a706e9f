// Draws the screens in their states to PNG files: gallery [folder]. Needs no display. Look at them, at both scales,
// whenever something about the look has changed.
#include <QDir>
#include <QGuiApplication>
#include <QLinearGradient>
#include <QPainter>
#include <cmath>
#include <cstdio>
#include <functional>

#include "assistant/AssentaHostApp.h"
#include "assistant/OverlayContentView.h"
#include "core/Config.h"
#include "platform/linux/qt/AboutView.h"
#include "platform/linux/qt/AlertView.h"
#include "settings/AccessibilityCardView.h"
#include "settings/StatusPage.h"
#include "tests/drawn/DrawnNight.h"

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

void save(const QString& path, const QImage& picture, const Monitor& monitor, bool pill) {
  QImage screen(monitor.width, monitor.height, QImage::Format_RGB32);
  QPainter painter(&screen);
  painter.fillRect(screen.rect(), Qt::black);
  QImage pixels = picture;
  pixels.setDevicePixelRatio(1);
  if (pill) {
    QLinearGradient wallpaper(0, 0, monitor.width, monitor.height);
    wallpaper.setColorAt(0, QColor(40, 60, 90));
    wallpaper.setColorAt(1, QColor(220, 180, 150));
    painter.fillRect(screen.rect(), wallpaper);
    const int margin = static_cast<int>(std::lround(24 * monitor.scale));
    painter.drawImage(monitor.width - pixels.width() - margin, margin, pixels);
  } else {
    painter.drawImage((monitor.width - pixels.width()) / 2, (monitor.height - pixels.height()) / 2, pixels);
  }
  painter.end();
  if (!screen.save(path)) std::fprintf(stderr, "cannot write %s\n", qPrintable(path));
}

/// Something that stands on the desktop.
void saveOnDesktop(const QString& path, const QImage& picture, double scale) {
  const int margin = static_cast<int>(40 * scale);
  QImage desktop(picture.width() + 2 * margin, picture.height() + 2 * margin, QImage::Format_RGB32);
  QPainter painter(&desktop);
  QLinearGradient wallpaper(0, 0, desktop.width(), desktop.height());
  wallpaper.setColorAt(0, QColor(40, 60, 90));
  wallpaper.setColorAt(1, QColor(220, 180, 150));
  painter.fillRect(desktop.rect(), wallpaper);
  QImage pixels = picture;
  pixels.setDevicePixelRatio(1);
  painter.drawImage(margin, margin, pixels);
  painter.end();
  if (!desktop.save(path)) std::fprintf(stderr, "cannot write %s\n", qPrintable(path));
}

class Gallery {
 public:
  explicit Gallery(const QDir& folder) : folder_(folder) {}

  /// One picture per monitor of what `play` leads to, in a night of its own.
  void show(const char* name, const DrawnNight::Options& options, const std::function<void(DrawnNight&)>& play,
            const std::function<void(DrawnNight&)>& then = {}) {
    for (const Monitor& monitor : MONITORS) {
      DrawnNight night(options);
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
      const QString file =
          folder_.filePath(QStringLiteral("%1-%2.png").arg(QLatin1String(name), QLatin1String(monitor.name)));
      save(file, drawn.picture(), monitor, pill);
      std::printf("%s\n", qPrintable(file));
    }
  }

  /// A page, a card or an alert, once it came to rest.
  void showPage(const char* name, const std::function<std::shared_ptr<View>(DrawnMachine&)>& make, Seconds after = 3) {
    for (const int scale : {1, 2}) {
      DrawnMachine machine;
      DrawnView drawn(machine.factory, make(machine), scale);
      drawn.picture();
      machine.pass(after);
      const QString file = folder_.filePath(QStringLiteral("%1-%2x.png").arg(QLatin1String(name)).arg(scale));
      saveOnDesktop(file, drawn.picture(), scale);
      std::printf("%s\n", qPrintable(file));
    }
  }

 private:
  QDir folder_;
};

std::shared_ptr<View> card(DrawnMachine& /*machine*/) {
  return AccessibilityCardView::create([] {});
}

std::shared_ptr<View> page() {
  return StatusPage::create({[] {}, [] {}, [] {}, [] {}});
}

std::shared_ptr<View> alert(const Alert& alert) {
  return std::make_shared<AlertView>(alert, [](std::size_t) {});
}

void showWindows(Gallery& gallery) {
  gallery.showPage("card-off", card, 1.0);
  gallery.showPage("card-turning", card, 1.58);
  gallery.showPage("card-on", card, 2.2);
  gallery.showPage("page-armed", [](DrawnMachine&) { return page(); });
  gallery.showPage("page-locked-in", [](DrawnMachine& desk) {
    desk.machine.setWallClock("2026-11-16 23:05:00");
    return page();
  });
  gallery.showPage("page-untrusted", [](DrawnMachine& desk) {
    desk.machine.accessibility.setTrusted(false);
    return page();
  });
  gallery.showPage("page-fresh", [](DrawnMachine& desk) {
    desk.store(defaultsKey::onboardingComplete, {false});
    return page();
  });
  gallery.showPage("alert-move", [](DrawnMachine&) {
    return alert({AlertStyle::informational,
                  "Move Dormel to Applications",
                  "Dormel is running from a disk image. It needs to be in your Applications folder to work "
                  "properly.\n\nAfter moving, you can eject the disk image.",
                  {"Move to Applications", "Quit"}});
  });
  gallery.showPage("alert-recovery", [](DrawnMachine&) {
    return alert({AlertStyle::warning,
                  "Dormel is switched off",
                  "Dormel was turned off in System Settings → Login Items & Extensions, so it will not lock at night. "
                  "macOS only lets you flip that switch yourself.\n\nIn the list, find \"Dormel\" and turn it back on "
                  "— you may need to scroll down. Then come back here, and Dormel re-arms itself.",
                  {"Open Login Items", "Not Now"}});
  });
  gallery.showPage("alert-short", [](DrawnMachine&) {
    return alert({AlertStyle::informational, "Dormel uninstalled", "Dormel has been removed from your Mac.", {"OK"}});
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
  QDir folder(argc > 1 ? QString::fromLocal8Bit(argv[1]) : QStringLiteral("gallery"));
  if (!folder.mkpath(QStringLiteral("."))) return 1;
  Gallery gallery(folder);

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
  gallery.show("fading-in", {}, nothing, [](DrawnNight& night) { night.pass(2.0); });
  gallery.show("some-keys", {}, nothing, [](DrawnNight& night) {
    night.pass(4.5);
    night.holdKeys(3);
    night.pass(0.5);
  });
  gallery.show("hold-20", {}, nothing, holdFor(6));
  gallery.show("hold-60", {}, nothing, holdFor(18));
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
  for (const int left : {61, 45, 12}) {
    gallery.show(qPrintable(QStringLiteral("pill-%1").arg(left)), {}, grace(left),
                 [](DrawnNight& night) { night.pass(1); });
  }
  return 0;
}
