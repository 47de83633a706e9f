#include "platform/linux/LinuxServices.h"

#include <sys/epoll.h>

#include <charconv>
#include <csignal>
#include <optional>
#include <utility>
#include <vector>

#include "platform/Identifiers.h"
#include "platform/RunningApplications.h"
#include "platform/common/paint/PaintedCanvases.h"
#include "platform/linux/ActiveDisplay.h"
#include "platform/linux/DesktopWording.h"
#include "platform/linux/SessionWorkspace.h"
#include "platform/linux/freedesktop/AutostartLoginItems.h"
#include "platform/linux/freedesktop/CreatedFolders.h"
#include "platform/linux/freedesktop/InstanceLockFiles.h"
#include "platform/linux/freedesktop/Logind.h"
#include "platform/linux/freedesktop/Opener.h"
#include "platform/linux/freedesktop/SettingsPages.h"
#include "platform/linux/freedesktop/ShellOverview.h"
#include "platform/linux/gnome/ExtensionSwitch.h"
#include "platform/linux/gnome/Link.h"
#include "platform/linux/paint/PainterLauncher.h"
#include "platform/linux/posix/PosixBundle.h"
#include "platform/linux/posix/PosixChildProcesses.h"
#include "platform/linux/posix/PosixClock.h"
#include "platform/linux/posix/PosixFiles.h"
#include "platform/linux/posix/PosixQueues.h"
#include "platform/linux/posix/PropertyListDefaults.h"
#include "platform/linux/posix/SessionTexts.h"
#include "platform/linux/posix/StandardDescriptors.h"
#include "platform/linux/speech/DesktopSpeech.h"
#include "platform/linux/updates/BundleUpdater.h"
#include "platform/linux/updates/HelperProcess.h"

namespace dormel {
namespace {

constexpr std::int64_t UPDATE_INTERVAL = 21'600;  // where the bundle names none

DisplayUse useOf(LaunchKind kind) {
  switch (kind) {
    case LaunchKind::command:
      return DisplayUse::ask;
    case LaunchKind::background:
      return DisplayUse::lock;
    case LaunchKind::windows:
      break;
  }
  return DisplayUse::show;
}

/// The permission as the display sees it, and the way back when there was no display at first.
class DesktopAccessibility final : public Accessibility {
 public:
  DesktopAccessibility(ActiveDisplay& display, Process& process, StandardOutput& output, LaunchKind kind)
      : display_(display), process_(process), output_(output), isStartedAgain_(kind == LaunchKind::background) {}

  [[nodiscard]] bool isProcessTrusted() const override {
    if (isStartedAgain_ && display_.hasAppeared()) {
      // Nothing of this process was built for a display. The scheduler's next start has one from the beginning.
      output_.print("A display has come up. Starting again on it.");
      process_.exit(1);
    }
    return display_.family().accessibility().isProcessTrusted();
  }

 private:
  ActiveDisplay& display_;
  Process& process_;
  StandardOutput& output_;
  const bool isStartedAgain_;
};

}  // namespace

struct LinuxServices::Parts {
  explicit Parts(LaunchKind kind)
      : kind(kind),
        files(freedesktop::noteCreatedFolder),
        process(queues, freedesktop::instanceLockFiles(),
                [this](int fd, std::function<bool()> action) { watchReadable(fd, std::move(action)); }),
        texts(bundle.path() + "/Contents/Resources/texts", output),
        children(bundle.tools()),
        defaults(files, output, BUNDLE_IDENTIFIER),
        launcher(bundle.helper("paint"), loop),
        painted(launcher),
        display(useOf(kind), freedesktop::lockMarkFile(), loop, painted, clock, [this] { return process.timeLeft(); }),
        accessibility(display, process, output, kind),
        shellOverview(loop),
        application(process,
                    [this](bool on) {
                      display.family().setLockdown(on);
                      shellOverview.keepClosed(on);
                    }),
        extension(children, bundle.path() + "/Contents/Resources/gnome-shell"),
        workspace(children, output, extension),
        loginItems(children, output),
        wording([this] { return facts(); }),
        speech(loop, children, texts),
        updateHelper(loop, bundle.helper("update"), bundle.path()),
        updater(clock, loop, defaults, updateHelper, updateOptions()) {
    if (x11::X11Platform* const x11 = display.x11()) {
      x11->setApplicationNaming([](const std::string& instance, const std::string& className) {
        const bool isSettings = freedesktop::isSettingsProgram(instance) || freedesktop::isSettingsProgram(className);
        return isSettings ? SYSTEM_SETTINGS : className;
      });
    }
    process.beforeExit([this](const Process::ExitStatus& status) { display.restoreAtExit(status() != 0); });
    display.family().setOnScreensChanged([this] { notices.post(Notice::screenParametersChanged); });
    display.family().setOnLost([this] {
      output.print("The display is gone. Exiting, to be started again.");
      process.exit(1);
    });
    notices.setOnSleepWanted([this] {
      logind = std::make_unique<freedesktop::Logind>(
          loop, [this](bool sleeping) { notices.post(sleeping ? Notice::willSleep : Notice::didWake); },
          [this](const char* line) { output.printError(line); });
    });
  }

  /// Until the process ends.
  void watchReadable(int fd, std::function<bool()> action) {
    watches.push_back(loop.watch(fd, EPOLLIN, [action = std::move(action)](std::uint32_t) { action(); }));
  }

  /// GNOME's shell is asked for some of them: not again within a moment, however many words are wanted.
  [[nodiscard]] const DesktopFacts& facts() {
    constexpr Seconds MOMENT = 1.0;
    const Seconds now = clock.uptime();
    if (factsSince && now - *factsSince < MOMENT) return knownFacts;
    factsSince = now;
    knownFacts.display = display.kind();
    knownFacts.isWayland = display.isWayland();
    knownFacts.isGnome = freedesktop::isGnome();
    knownFacts.autostartPage = loginItems.pageName();
    knownFacts.autostartFile = loginItems.file();
    using State = gnome::ExtensionState;
    const State state = gnome::isSession() ? extension.state() : State::elsewhere;
    knownFacts.extensionAdvice = gnome::advice(state);
    knownFacts.leadsToExtension =
        state == State::absent || state == State::off || state == State::allOff || state == State::allOffBare;
    knownFacts.isAllOrNothing = state == State::allOffBare;
    return knownFacts;
  }

  /// Nowhere to look without a feed and a key in the bundle, and nobody who looks in a process without an event loop. A
  /// package's files are the system's to replace.
  [[nodiscard]] updates::BundleUpdater::Options updateOptions() const {
    updates::BundleUpdater::Options options;
    options.enabled =
        kind != LaunchKind::command && !bundle.isPackaged() && bundle.info("SUFeedURL") && bundle.info("SUPublicEDKey");
    const std::string interval = bundle.info("SUScheduledCheckInterval").value_or("");
    options.interval = UPDATE_INTERVAL;
    std::from_chars(interval.data(), interval.data() + interval.size(), options.interval);
    options.version = bundle.info("CFBundleShortVersionString").value_or(DORMEL_VERSION);
    return options;
  }

  const LaunchKind kind;
  EventLoop loop;
  std::vector<EventLoop::Watch> watches;
  posix::PosixClock clock;
  posix::PosixCalendar calendar;
  posix::PosixFiles files;
  posix::PosixOutput output;
  posix::PosixRandom random;
  posix::PosixBundle bundle;
  posix::PosixQueues queues{loop};
  posix::PosixProcess process;
  posix::SessionTexts texts;
  posix::PosixChildProcesses children;
  posix::PropertyListDefaults defaults;
  paint::PainterProcessLauncher launcher;
  paint::PaintedCanvases painted;
  ActiveDisplay display;
  DesktopAccessibility accessibility;
  freedesktop::ShellOverview shellOverview;
  DesktopApplication application;
  DesktopNotices notices;
  std::unique_ptr<freedesktop::Logind> logind;
  gnome::ExtensionSwitch extension;
  SessionWorkspace workspace;
  freedesktop::AutostartLoginItems loginItems;
  DesktopWording wording;
  DesktopFacts knownFacts;
  std::optional<Seconds> factsSince;
  speech::DesktopSpeech speech;
  updates::HelperProcess updateHelper;
  updates::BundleUpdater updater;
  std::optional<Platform> services;
};

LinuxServices::LinuxServices(LaunchKind kind)
    : parts_((posix::holdStandardDescriptors(), std::make_unique<Parts>(kind))) {}

LinuxServices::~LinuxServices() = default;

Platform& LinuxServices::with(const Shown& shown) {
  Parts& p = *parts_;
  return p.services.emplace(Platform{p.clock,
                                     p.calendar,
                                     p.loop,
                                     p.queues,
                                     p.defaults,
                                     p.files,
                                     p.process,
                                     p.children,
                                     p.output,
                                     p.random,
                                     p.accessibility,
                                     p.display.family().eventTaps(),
                                     p.display.family().hardwareKeys(),
                                     p.display.family().inputIdle(),
                                     p.display.family().keyboardLayout(),
                                     p.display.family().screens(),
                                     shown.panels,
                                     p.application,
                                     p.notices,
                                     p.bundle,
                                     shown.alerts,
                                     shown.mainWindows,
                                     shown.mainMenu,
                                     p.workspace,
                                     p.loginItems,
                                     p.updater,
                                     p.display.runningApplications(),
                                     p.display.windowList(),
                                     shown.dragging,
                                     p.wording,
                                     p.texts,
                                     p.speech});
}

EventLoop& LinuxServices::loop() { return parts_->loop; }

DisplayFamily& LinuxServices::display() { return parts_->display.family(); }

x11::X11Platform* LinuxServices::x11() { return parts_->display.x11(); }

DesktopApplication& LinuxServices::application() { return parts_->application; }

posix::PosixProcess& LinuxServices::process() { return parts_->process; }

void LinuxServices::launch(ApplicationDelegate& delegate) {
  parts_->application.setDelegate(&delegate);
  parts_->extension.refreshCopy();
  // Ctrl-C in a terminal and a closed terminal are quit requests, not kills: they meet the delegate's guard.
  for (const int signal : {SIGINT, SIGHUP}) {
    parts_->process.onSignal(signal, [this] { parts_->application.terminate(); });
  }
  if (parts_->kind == LaunchKind::background) parts_->output.print(parts_->display.description());
  parts_->loop.async([&delegate] { delegate.didFinishLaunching(); });
}

}  // namespace dormel
