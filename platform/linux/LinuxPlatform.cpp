#include "platform/linux/LinuxPlatform.h"

#include <QGuiApplication>
#include <QQuickWindow>
#include <algorithm>
#include <clocale>
#include <csignal>
#include <cstdlib>
#include <string>
#include <utility>

#include "platform/Identifiers.h"
#include "platform/linux/DesktopApplication.h"
#include "platform/linux/freedesktop/Logind.h"
#include "platform/linux/posix/PosixBundle.h"
#include "platform/linux/posix/PosixClock.h"
#include "platform/linux/posix/PosixFiles.h"
#include "platform/linux/posix/PosixProcess.h"
#include "platform/linux/posix/PosixQueues.h"
#include "platform/linux/posix/PropertyListDefaults.h"
#include "platform/linux/posix/StandardDescriptors.h"
#include "platform/linux/qt/QmlCanvasFactory.h"
#include "platform/linux/qt/QtRunLoop.h"
#include "platform/linux/x11/X11Platform.h"

namespace dormel {
namespace {

std::string environment(const char* name) {
  const char* value = std::getenv(name);
  return value == nullptr ? std::string() : std::string(value);
}

/// One session per user and display: two of them on one display would fight for its keyboard.
std::string sessionLockPath(const std::string& home) {
  std::string folder = environment("XDG_RUNTIME_DIR");
  if (folder.empty()) folder = home;
  std::string display = environment("DISPLAY");
  std::replace_if(
      display.begin(), display.end(), [](char c) { return c == '/' || c == ':'; }, '_');
  return folder + "/." + BUNDLE_IDENTIFIER + display + ".session";
}

std::unique_ptr<QGuiApplication> makeApplication(int& argc, char** argv) {
  // Panels are put on screen by x11/; Qt only draws. Its software scene graph needs no graphics driver, so none can
  // take the lock down, and the toolkit never talks to the display.
  ::setenv("QT_QPA_PLATFORM", "offscreen", 1);
  QQuickWindow::setSceneGraphBackend(QStringLiteral("software"));
  QGuiApplication::setQuitOnLastWindowClosed(false);
  auto application = std::make_unique<QGuiApplication>(argc, argv);
  // Qt adopts the user's locale for the whole process; the figures in our logs keep their decimal point.
  std::setlocale(LC_NUMERIC, "C");
  return application;
}

/// The permission as x11/ sees it, and the way back when there was no display at first.
class DesktopAccessibility final : public Accessibility {
 public:
  DesktopAccessibility(x11::X11Platform& x11, Process& process, StandardOutput& output)
      : x11_(x11), process_(process), output_(output) {}

  [[nodiscard]] bool isProcessTrusted() const override {
    if (!x11_.hasDisplay() && x11::Connection::open()) {
      // Nothing of this process was built for a display. The scheduler's next start has one from the beginning.
      output_.print("A display has come up. Starting again on it.");
      process_.exit(1);
    }
    return x11_.accessibility().isProcessTrusted();
  }

 private:
  x11::X11Platform& x11_;
  Process& process_;
  StandardOutput& output_;
};

}  // namespace

struct LinuxPlatform::Parts {
  Parts(int& argc, char** argv, QmlSceneRegistry scenes)
      : qt(makeApplication(argc, argv)),
        process(queues, sessionLockPath(files.homeDirectory()),
                [this](int fd, std::function<bool()> action) { loop.watchReadable(fd, std::move(action)); }),
        children(bundle.helper("launchctl")),
        defaults(files, output, BUNDLE_IDENTIFIER),
        canvases(std::move(scenes)),
        x11(canvases, clock),
        accessibility(x11, process, output),
        application(process, [this](bool on) { x11.setLockdown(on); }),
        services{clock,
                 calendar,
                 loop,
                 queues,
                 defaults,
                 files,
                 process,
                 children,
                 output,
                 random,
                 accessibility,
                 x11.eventTaps(),
                 x11.hardwareKeys(),
                 x11.inputIdle(),
                 x11.keyboardLayout(),
                 x11.screens(),
                 x11.windows(),
                 application,
                 notices,
                 bundle} {
    process.beforeExit([this] { x11.lastWill(); });
    x11.setOnScreensChanged([this] { notices.post(Notice::screenParametersChanged); });
    x11.setOnServerLost([this] {
      output.print("The display is gone. Exiting, to be started again.");
      process.exit(1);
    });
    notices.setOnSleepWanted([this] {
      logind = std::make_unique<freedesktop::Logind>(
          [this](int fd, std::function<bool()> action) { loop.watchReadable(fd, std::move(action)); },
          [this](bool sleeping) { notices.post(sleeping ? Notice::willSleep : Notice::didWake); },
          [this](const char* line) { output.printError(line); });
    });
  }

  std::unique_ptr<QGuiApplication> qt;
  qt::QtRunLoop loop;
  posix::PosixClock clock;
  posix::PosixCalendar calendar;
  posix::PosixFiles files;
  posix::PosixOutput output;
  posix::PosixRandom random;
  posix::PosixBundle bundle;
  posix::PosixQueues queues;
  posix::PosixProcess process;
  posix::PosixChildProcesses children;
  posix::PropertyListDefaults defaults;
  QmlCanvasFactory canvases;
  x11::X11Platform x11;
  DesktopAccessibility accessibility;
  DesktopApplication application;
  DesktopNotices notices;
  std::unique_ptr<freedesktop::Logind> logind;
  Platform services;
};

LinuxPlatform::LinuxPlatform(int& argc, char** argv, QmlSceneRegistry scenes)
    : parts_((posix::holdStandardDescriptors(), std::make_unique<Parts>(argc, argv, std::move(scenes)))) {}

LinuxPlatform::~LinuxPlatform() = default;

Platform& LinuxPlatform::services() { return parts_->services; }

void LinuxPlatform::run(ApplicationDelegate& delegate) {
  parts_->application.setDelegate(&delegate);
  // Ctrl-C in a terminal and a closed terminal are quit requests, not kills: they meet the delegate's guard.
  for (const int signal : {SIGINT, SIGHUP}) {
    parts_->process.onSignal(signal, [this] { parts_->application.terminate(); });
  }
  parts_->loop.async([&delegate] { delegate.didFinishLaunching(); });
  QGuiApplication::exec();
  parts_->process.exit(1);  // nobody leaves the loop on purpose
}

}  // namespace dormel
