#include "platform/linux/LinuxPlatform.h"

#include <sys/epoll.h>

#include <QGuiApplication>
#include <charconv>
#include <csignal>
#include <utility>

#include "platform/Identifiers.h"
#include "platform/RunningApplications.h"
#include "platform/common/paint/PaintedCanvases.h"
#include "platform/linux/DesktopApplication.h"
#include "platform/linux/freedesktop/AutostartLoginItems.h"
#include "platform/linux/freedesktop/CreatedFolders.h"
#include "platform/linux/freedesktop/DesktopWorkspace.h"
#include "platform/linux/freedesktop/Logind.h"
#include "platform/linux/freedesktop/SeatFiles.h"
#include "platform/linux/freedesktop/SettingsPages.h"
#include "platform/linux/freedesktop/ShellOverview.h"
#include "platform/linux/loop/EventLoop.h"
#include "platform/linux/paint/PainterLauncher.h"
#include "platform/linux/posix/PosixBundle.h"
#include "platform/linux/posix/PosixChildProcesses.h"
#include "platform/linux/posix/PosixClock.h"
#include "platform/linux/posix/PosixFiles.h"
#include "platform/linux/posix/PosixProcess.h"
#include "platform/linux/posix/PosixQueues.h"
#include "platform/linux/posix/PropertyListDefaults.h"
#include "platform/linux/posix/StandardDescriptors.h"
#include "platform/linux/qt/EventLoopCarrier.h"
#include "platform/linux/qt/QmlCanvasFactory.h"
#include "platform/linux/qt/QmlStage.h"
#include "platform/linux/qt/QtAlerts.h"
#include "platform/linux/qt/QtMainMenu.h"
#include "platform/linux/qt/QtMainWindows.h"
#include "platform/linux/qt/SceneGraph.h"
#include "platform/linux/qt/Toolkit.h"
#include "platform/linux/updates/BundleUpdater.h"
#include "platform/linux/updates/HelperProcess.h"
#include "platform/linux/x11/X11Platform.h"

namespace dormel {
namespace {

MakeSceneRenderer sceneRenderer() { return SceneGraph::isSoftware() ? makeSoftwareRenderer : makeDriverRenderer; }

constexpr std::int64_t UPDATE_INTERVAL = 21'600;  // where the bundle names none

/// The panels are the painter's to draw. The guide at the settings window belongs to this process's own windows.
class Canvases final : public CanvasFactory {
 public:
  Canvases(CanvasFactory& painted, CanvasFactory& own) : painted_(painted), own_(own) {}
  [[nodiscard]] std::unique_ptr<Canvas> make(std::shared_ptr<View> view) override {
    const ViewKind kind = view->kind();
    const bool isOwn = kind == ViewKind::assistantGuide || kind == ViewKind::assistantDragRow;
    return (isOwn ? own_ : painted_).make(std::move(view));
  }

 private:
  CanvasFactory& painted_;
  CanvasFactory& own_;
};

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

}  // namespace

struct LinuxPlatform::Parts {
  Parts(LaunchKind kind, QmlSceneRegistry scenes)
      : kind(kind),
        toolkit(kind == LaunchKind::command ? nullptr : std::make_unique<Toolkit>(kind == LaunchKind::windows)),
        carrier(toolkit ? std::make_unique<qt::EventLoopCarrier>(loop) : nullptr),
        icon(kind == LaunchKind::windows ? scenes.icon() : QIcon()),
        files(freedesktop::noteCreatedFolder),
        process(queues, freedesktop::seatFiles(),
                [this](int fd, std::function<bool()> action) { watchReadable(fd, std::move(action)); }),
        children(bundle.tools()),
        defaults(files, output, BUNDLE_IDENTIFIER),
        stage(std::make_shared<QmlStage>(std::move(scenes), sceneRenderer())),
        launcher(bundle.helper("paint"), loop),
        painted(launcher),
        ownCanvases(stage),
        canvases(painted, ownCanvases),
        x11(loop, canvases, clock),
        accessibility(x11, process, output, kind),
        shellOverview(loop),
        application(process,
                    [this](bool on) {
                      x11.setLockdown(on);
                      shellOverview.keepClosed(on);
                    }),
        workspace(children, output),
        loginItems(children, output),
        windows(std::make_shared<WindowGroup>(stage, windowHelp())),
        alerts(windows),
        mainWindows(windows),
        mainMenu(windows, otherApplications()),
        updateHelper(loop, bundle.helper("update"), bundle.path()),
        updater(clock, loop, defaults, updateHelper, updateOptions()),
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
                 loginItems,
                 updater,
                 x11.runningApplications(),
                 x11.windowList(),
                 x11.dragging()} {
    x11.setApplicationNaming([](const std::string& instance, const std::string& className) {
      const bool isSettings = freedesktop::isSettingsProgram(instance) || freedesktop::isSettingsProgram(className);
      return isSettings ? SYSTEM_SETTINGS : className;
    });
    process.beforeExit([this] { x11.lastWill(); });
    x11.setOnScreensChanged([this] { notices.post(Notice::screenParametersChanged); });
    x11.setOnServerLost([this] {
      output.print("The display is gone. Exiting, to be started again.");
      process.exit(1);
    });
    notices.setOnSleepWanted([this] {
      logind = std::make_unique<freedesktop::Logind>(
          loop, [this](bool sleeping) { notices.post(sleeping ? Notice::willSleep : Notice::didWake); },
          [this](const char* line) { output.printError(line); });
    });
  }

  /// Until the process ends, or the action says that there will be nothing any more.
  void watchReadable(int fd, std::function<bool()> action) {
    auto watch = std::make_shared<EventLoop::Watch>();
    *watch = loop.watch(fd, EPOLLIN, [watch, action = std::move(action)](std::uint32_t) {
      if (!action()) watch->reset();
    });
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

  /// Nowhere to look without a feed and a key in the bundle, and nobody who looks in a process without an event loop.
  [[nodiscard]] updates::BundleUpdater::Options updateOptions() const {
    updates::BundleUpdater::Options options;
    options.enabled = kind != LaunchKind::command && bundle.info("SUFeedURL") && bundle.info("SUPublicEDKey");
    const std::string interval = bundle.info("SUScheduledCheckInterval").value_or("");
    options.interval = UPDATE_INTERVAL;
    std::from_chars(interval.data(), interval.data() + interval.size(), options.interval);
    options.version = bundle.info("CFBundleShortVersionString").value_or(DORMEL_VERSION);
    return options;
  }

  OtherApplications otherApplications() {
    if (QGuiApplication::platformName() != QLatin1String("xcb") || !x11.managedWindows().canHideOthers()) return {};
    return {[this] { x11.managedWindows().hideOthers(); }, [this] { x11.managedWindows().showOthers(); }};
  }

  const LaunchKind kind;
  std::unique_ptr<Toolkit> toolkit;
  EventLoop loop;
  std::unique_ptr<qt::EventLoopCarrier> carrier;
  QIcon icon;
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
  paint::HelperLauncher launcher;
  paint::PaintedCanvases painted;
  QmlCanvasFactory ownCanvases;
  Canvases canvases;
  x11::X11Platform x11;
  DesktopAccessibility accessibility;
  freedesktop::ShellOverview shellOverview;
  DesktopApplication application;
  DesktopNotices notices;
  std::unique_ptr<freedesktop::Logind> logind;
  freedesktop::DesktopWorkspace workspace;
  freedesktop::AutostartLoginItems loginItems;
  std::shared_ptr<WindowGroup> windows;
  QtAlerts alerts;
  QtMainWindows mainWindows;
  QtMainMenu mainMenu;
  updates::HelperProcess updateHelper;
  updates::BundleUpdater updater;
  Platform services;
};

LinuxPlatform::LinuxPlatform(LaunchKind kind, QmlSceneRegistry scenes)
    : parts_((posix::holdStandardDescriptors(), std::make_unique<Parts>(kind, std::move(scenes)))) {}

LinuxPlatform::~LinuxPlatform() = default;

bool LinuxPlatform::hasDesktop() { return Toolkit::reachesWayland() || x11::Connection::open() != nullptr; }

Platform& LinuxPlatform::services() { return parts_->services; }

void LinuxPlatform::run(ApplicationDelegate& delegate) {
  parts_->application.setDelegate(&delegate);
  // Ctrl-C in a terminal and a closed terminal are quit requests, not kills: they meet the delegate's guard.
  for (const int signal : {SIGINT, SIGHUP}) {
    parts_->process.onSignal(signal, [this] { parts_->application.terminate(); });
  }
  if (parts_->kind == LaunchKind::windows) {
    parts_->toolkit->join(parts_->icon, {[this] { parts_->application.terminate(); },
                                         [this] { return parts_->application.mayTerminate(); },
                                         [&delegate] { delegate.didBecomeActive(); }});
  }
  parts_->loop.async([&delegate] { delegate.didFinishLaunching(); });
  QGuiApplication::exec();
  parts_->process.exit(1);  // nobody leaves the loop on purpose
}

}  // namespace dormel
