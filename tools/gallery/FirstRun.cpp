// The first run.
#include <QPainter>
#include <QQuickItem>
#include <QQuickWindow>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "onboarding/OnboardingView.h"
#include "onboarding/qml/OnboardingScenes.h"
#include "platform/linux/qt/AboutView.h"
#include "tests/drawn/DrawnMachine.h"
#include "tests/drawn/StrangersScreens.h"
#include "tools/gallery/PictureFolders.h"
#include "ui/qml/UiModule.h"

using namespace dormel;

namespace {

struct Moment {
  const char* name;
  OnboardingBeat beat;
  Seconds after;  ///< the screen was entered
  bool onSheet = false;
  std::function<void(DrawnMachine&)> given = {};
};

void unanswered(DrawnMachine& desk) {
  for (const char* key : {defaultsKey::onboardingLate, defaultsKey::onboardingWant})
    desk.store(key, {std::int64_t{-1}});
}

void earlyToBed(DrawnMachine& desk) {
  desk.store(defaultsKey::onboardingLate, {std::int64_t{23}});
  desk.store(defaultsKey::onboardingWant, {std::int64_t{24}});
}

void untrusted(DrawnMachine& desk) { desk.machine.accessibility.setTrusted(false); }

std::vector<Moment> moments() {
  using enum OnboardingBeat;
  return {
      {"01-brand-drawing", brand, 2.1},
      {"01-brand", brand, 6, true},
      {"02-promise-early", promise, 0.6},
      {"02-promise", promise, 5, true},
      {"03-latest-early", q1Latest, 1.4},
      {"03-latest", q1Latest, 4, true, unanswered},
      {"04-nights-early", q2Nights, 1.35},
      {"04-nights", q2Nights, 4, true},
      {"05-want-early", q3Want, 1.4},
      {"05-want", q3Want, 4, true},
      {"06-keeps-early", q4Keeps, 1.7},
      {"06-keeps", q4Keeps, 4, true},
      {"07-mirror-counting", mirror, 2.6},
      {"07-mirror", mirror, 7, true},
      {"07-mirror-ahead", mirror, 7, false, earlyToBed},
      {"08-how-lock", howItWorks, 3, true},
      {"08-how-between", howItWorks, 5.5},
      {"08-how-keys", howItWorks, 6.6, true},
      {"08-how-snooze", howItWorks, 13, true},
      {"08-how-morning", howItWorks, 19},
      {"09-permission-early", accessibility, 1.4},
      {"09-permission", accessibility, 5, true, untrusted},
      {"09-permission-granted", accessibility, 5},
      {"10-demo-early", demo, 1.6},
      {"10-demo", demo, 5, true},
      {"11-debrief-early", debrief, 0.5},
      {"11-debrief", debrief, 5, true},
      {"12-science-early", science, 4.0},
      {"12-science", science, 9, true},
      {"13-schedule-early", schedule, 1.4},
      {"13-schedule", schedule, 5, true},
      {"14-finale-early", finale, 2.9},
      {"14-finale", finale, 8, true},
  };
}

QString named(const char* name, int scale) {
  return QStringLiteral("first-run-%1-%2x").arg(QLatin1String(name)).arg(scale);
}

/// All on one, in rows of four.
class ContactSheet {
 public:
  void add(const QImage& picture) {
    QImage pixels = picture;
    pixels.setDevicePixelRatio(1);
    tiles_.push_back(pixels.scaled(TILE, Qt::KeepAspectRatio, Qt::SmoothTransformation));
  }

  [[nodiscard]] QImage picture() const {
    const int rows = (static_cast<int>(tiles_.size()) + COLUMNS - 1) / COLUMNS;
    QImage sheet(GAP + COLUMNS * (TILE.width() + GAP), GAP + rows * (TILE.height() + GAP), QImage::Format_RGB32);
    sheet.fill(QColor(30, 30, 33));
    QPainter painter(&sheet);
    for (int i = 0; i < static_cast<int>(tiles_.size()); ++i) {
      painter.drawImage(GAP + i % COLUMNS * (TILE.width() + GAP), GAP + i / COLUMNS * (TILE.height() + GAP),
                        tiles_[static_cast<std::size_t>(i)]);
    }
    return sheet;
  }

 private:
  static constexpr int COLUMNS = 4;
  static constexpr int GAP = 12;
  static constexpr QSize TILE{450, 310};
  std::vector<QImage> tiles_;
};

/// A screen at its moment, in the room that there is for it.
QImage pictureOf(const std::string& language, const Moment& moment, double scale, const Size& size) {
  DrawnMachine desk;
  desk.speak(language);
  desk.speakAsLinux();
  desk.answerTheFirstRun();
  if (moment.given) moment.given(desk);
  const auto view = OnboardingView::create({[](const auto&) { return true; }, [] {}});
  DrawnView drawn(desk.factory, view, scale, size);
  drawn.picture();
  desk.pass(0.1);
  view->advance(moment.beat);
  desk.pass(moment.beat == OnboardingBeat::brand ? moment.after - 0.1 : moment.after);
  return drawn.picture();
}

void drawComponents(PictureFolders& folders, int scale) {
  DrawnMachine desk;
  QmlSceneRegistry registry;
  registerUiScenes(registry);
  loadOnboardingModule();
  registry.add(ViewKind::aboutPanel,
               {QUrl::fromLocalFile(QStringLiteral(DORMEL_SOURCE "/tools/gallery/Components.qml")),
                [](const auto&) { return std::make_unique<ViewBridge>(); }});
  QmlCanvasFactory factory(std::make_shared<SceneLoader>(std::move(registry)));
  DrawnView drawn(factory, std::make_shared<AboutView>(), scale);
  drawn.picture();
  desk.pass(2);
  folders.save(named("components", scale), drawn.picture());
}

}  // namespace

void dormel::drawFirstRun(PictureFolders& folders) {
  ContactSheet sheet;
  for (const int scale : {1, 2}) {
    drawComponents(folders, scale);
    for (const Moment& moment : moments()) {
      const QImage picture = pictureOf(folders.language(), moment, scale, OnboardingView::SIZE);
      if (moment.onSheet && scale == 2) sheet.add(picture);
      folders.save(named(moment.name, scale), picture);
    }
  }
  for (const StrangersScreen& screen : STRANGERS_SCREENS) {
    for (const Moment& moment : moments()) {
      folders.save(QStringLiteral("first-run-%1-%2").arg(QLatin1String(moment.name), QLatin1String(screen.name)),
                   pictureOf(folders.language(), moment, screen.scale, screen.sizeOf(OnboardingView::SIZE)));
    }
  }
  folders.save(QStringLiteral("first-run"), sheet.picture());
  folders.keep(QStringLiteral("first-run"), sheet.picture());
}
