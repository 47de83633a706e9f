#include "platform/linux/LinuxPlatform.h"

#include <QEvent>
#include <QGuiApplication>
#include <QQuickWindow>
#include <QSessionManager>
#include <clocale>
#include <csignal>
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

#include "platform/Identifiers.h"
#include "platform/linux/DesktopApplication.h"
#include "platform/linux/freedesktop/AutostartLoginItems.h"
#include "platform/linux/freedesktop/CreatedFolders.h"
#include "platform/linux/freedesktop/DesktopWorkspace.h"
#include "platform/linux/freedesktop/Logind.h"
#include "platform/linux/freedesktop/SeatFiles.h"
#include "platform/linux/posix/PosixBundle.h"
#include "platform/linux/posix/PosixChildProcesses.h"
#include "platform/linux/posix/PosixClock.h"
#include "platform/linux/posix/PosixFiles.h"
#include "platform/linux/posix/PosixProcess.h"
#include "platform/linux/posix/PosixQueues.h"
#include "platform/linux/posix/PropertyListDefaults.h"
#include "platform/linux/posix/StandardDescriptors.h"
#include "platform/linux/qt/QmlCanvasFactory.h"
#include "platform/linux/qt/QmlStage.h"
#include "platform/linux/qt/QtAlerts.h"
#include "platform/linux/qt/QtMainMenu.h"
#include "platform/linux/qt/QtMainWindows.h"
#include "platform/linux/qt/QtRunLoop.h"
#include "platform/linux/x11/X11Platform.h"

namespace dormel {
namespace {

/// The arguments are ours, not the toolkit's: it gets its own.
struct ToolkitArguments {
  explicit ToolkitArguments(LaunchKind kind) {
    // As the window manager knows us: the name of the desktop entry.
    add("Dormel");
    add("-name");
    add(BUNDLE_IDENTIFIER);
    if (kind == LaunchKind::background) {
      // Panels are put on screen by x11/; Qt only draws, and never talks to the display.
      add("-platform");
      add("offscreen");
    }
    for (std::string& text : texts_) pointers_.push_back(text.data());
    count_ = static_cast<int>(pointers_.size());
    pointers_.push_back(nullptr);
  }

  int& count() { return count_; }
  char** values() { return pointers_.data(); }

 private:
  void add(const char* text) { texts_.emplace_back(text); }

  std::vector<std::string> texts_;
  std::vector<char*> pointers_;
  int count_ = 0;
};

std::unique_ptr<QGuiApplication> makeApplication(ToolkitArguments& arguments) {
  // The software scene graph needs no graphics driver, so none can take the lock down.
  QQuickWindow::setSceneGraphBackend(QStringLiteral("software"));
  QGuiApplication::setApplicationName(QStringLiteral("Dormel"));
  QGuiApplication::setDesktopFileName(QLatin1String(BUNDLE_IDENTIFIER));
  QGuiApplication::setQuitOnLastWindowClosed(false);
  auto application = std::make_unique<QGuiApplication>(arguments.count(), arguments.values());
  // Qt adopts the user's locale for the whole process; the figures in our logs keep their decimal point.
  std::setlocale(LC_NUMERIC, "C");
  return application;
}

/// The permission as x11/ sees it, and the way back when there was no display at first.
class DesktopAccessibility final : public Accessibility {
 public:
  DesktopAccessibility(x11::X11Platform& x11, Process& process, StandardOutput& output, LaunchKind kind)
      : x11_(x11), process_(process), output_(output), isStartedAgain_(kind == LaunchKind::background) {}

  [[nodiscard]] bool isProcessTrusted() const override {
    if (isStartedAgain_ && !x11_.hasDisplay() && x11::Connection::open()) {
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
  const bool isStartedAgain_;
};

/// Turns the toolkit's own idea of quitting (the session manager's last word) into a quit request.
class QuitRequests final : public QObject {
 public:
  explicit QuitRequests(Task onQuit) : onQuit_(std::move(onQuit)) {}

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override {
    if (event->type() != QEvent::Quit || watched != QCoreApplication::instance()) return false;
    onQuit_();
    return true;
  }

 private:
  Task onQuit_;
};

}  // namespace

struct LinuxPlatform::Parts {
  Parts(LaunchKind kind, QmlSceneRegistry scenes)
      : kind(kind),
        arguments(kind),
        qt(kind == LaunchKind::command ? nullptr : makeApplication(arguments)),
        icon(kind == LaunchKind::windows ? scenes.icon() : QIcon()),
        files(freedesktop::noteCreatedFolder),
        process(queues, freedesktop::seatFiles(),
                [this](int fd, std::function<bool()> action) { loop.watchReadable(fd, std::move(action)); }),
        children(bundle.tools()),
        defaults(files, output, BUNDLE_IDENTIFIER),
        stage(std::make_shared<QmlStage>(std::move(scenes))),
        canvases(stage),
        x11(canvases, clock),
        accessibility(x11, process, output, kind),
        application(process, [this](bool on) { x11.setLockdown(on); }),
        workspace(children, output),
        loginItems(children, output),
        windows(std::make_shared<WindowGroup>(stage, windowHelp())),
        alerts(windows),
        mainWindows(windows),
        mainMenu(windows, otherApplications()),
        quitRequests([this] { application.terminate(); }),
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
                 bundle,
                 alerts,
                 mainWindows,
                 mainMenu,
                 workspace,
                 loginItems} {
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
    if (kind == LaunchKind::windows) joinDesktop();
  }

  void joinDesktop() {
    QGuiApplication::setWindowIcon(icon);
    qt->installEventFilter(&quitRequests);
    // The scheduler is what starts us: a session that is restored must not open the window.
    QObject::connect(
        qt.get(), &QGuiApplication::saveStateRequest, qt.get(),
        [](QSessionManager& manager) { manager.setRestartHint(QSessionManager::RestartNever); }, Qt::DirectConnection);
    QObject::connect(
        qt.get(), &QGuiApplication::commitDataRequest, qt.get(),
        [this](QSessionManager& manager) {
          if (!application.mayTerminate()) manager.cancel();
        },
        Qt::DirectConnection);
  }

  WindowHelp windowHelp() {
    WindowHelp help;
    help.isSwallowed = [this](unsigned key) { return x11.isKeyDownSwallowed(key); };
    if (QGuiApplication::platformName() == QLatin1String("xcb")) {
      help.activate = [this](WId window) { x11.managedWindows().activate(static_cast<std::uint32_t>(window)); };
      help.canBlend = [this] { return x11.isCompositing(); };
    } else {
      help.canBlend = [] { return true; };
    }
    return help;
  }

  OtherApplications otherApplications() {
    if (QGuiApplication::platformName() != QLatin1String("xcb") || !x11.managedWindows().canHideOthers()) return {};
    return {[this] { x11.managedWindows().hideOthers(); }, [this] { x11.managedWindows().showOthers(); }};
  }

  const LaunchKind kind;
  ToolkitArguments arguments;
  std::unique_ptr<QGuiApplication> qt;
  QIcon icon;
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
  std::shared_ptr<QmlStage> stage;
  QmlCanvasFactory canvases;
  x11::X11Platform x11;
  DesktopAccessibility accessibility;
  DesktopApplication application;
  DesktopNotices notices;
  std::unique_ptr<freedesktop::Logind> logind;
  freedesktop::DesktopWorkspace workspace;
  freedesktop::AutostartLoginItems loginItems;
  std::shared_ptr<WindowGroup> windows;
  QtAlerts alerts;
  QtMainWindows mainWindows;
  QtMainMenu mainMenu;
  QuitRequests quitRequests;
  Platform services;
};

LinuxPlatform::LinuxPlatform(LaunchKind kind, QmlSceneRegistry scenes)
    : parts_((posix::holdStandardDescriptors(), std::make_unique<Parts>(kind, std::move(scenes)))) {}

LinuxPlatform::~LinuxPlatform() = default;

bool LinuxPlatform::hasDesktop() {
  const char* wayland = std::getenv("WAYLAND_DISPLAY");
  return (wayland != nullptr && *wayland != '\0') || x11::Connection::open() != nullptr;
}

Platform& LinuxPlatform::services() { return parts_->services; }

void LinuxPlatform::run(ApplicationDelegate& delegate) {
  parts_->application.setDelegate(&delegate);
  // Ctrl-C in a terminal and a closed terminal are quit requests, not kills: they meet the delegate's guard.
  for (const int signal : {SIGINT, SIGHUP}) {
    parts_->process.onSignal(signal, [this] { parts_->application.terminate(); });
  }
  if (parts_->kind == LaunchKind::windows) {
    QObject::connect(parts_->qt.get(), &QGuiApplication::applicationStateChanged, parts_->qt.get(),
                     [this, &delegate](Qt::ApplicationState state) {
                       if (state != Qt::ApplicationActive) return;
                       // In a turn of its own: what comes of it may be the end of the window that has the focus.
                       parts_->loop.async([&delegate] { delegate.didBecomeActive(); });
                     });
  }
  parts_->loop.async([&delegate] { delegate.didFinishLaunching(); });
  QGuiApplication::exec();
  parts_->process.exit(1);  // nobody leaves the loop on purpose
}

}  // namespace dormel
