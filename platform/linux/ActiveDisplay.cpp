#include "platform/linux/ActiveDisplay.h"

#include <chrono>

#include "platform/linux/gnome/GnomePlatform.h"
#include "platform/linux/posix/Environment.h"
#include "platform/linux/posix/PosixQueues.h"
#include "platform/linux/wayland/LockProcesses.h"
#include "platform/linux/wayland/LockRelease.h"
#include "platform/linux/wayland/WaylandPlatform.h"

namespace dormel {
namespace {

constexpr std::chrono::milliseconds RELEASE_LIMIT{2000};

DisplayOffer offerOf(const wayland::Connection& connection) {
  const wayland::Globals& globals = connection.globals();
  DisplayOffer offer;
  offer.overlay = globals.layerShell && globals.compositor && globals.subcompositor && globals.shm &&
                  globals.viewporter && globals.outputManager;
  offer.shortcutsInhibitor = globals.shortcutsInhibit != nullptr;
  offer.sessionLock = globals.sessionLock != nullptr;
  // Hyprland does so only where an option of its own says so.
  offer.allowsLockTakeover = posix::environmentVariable("HYPRLAND_INSTANCE_SIGNATURE").empty();
  return offer;
}

}  // namespace

struct ActiveDisplay::NullWindowList final : RunningApplications, WindowList {
  [[nodiscard]] std::vector<RunningApplication> withBundleIdentifier(const std::string& /*identifier*/) const override {
    return {};
  }
  [[nodiscard]] std::optional<RunningApplication> frontmost() const override { return std::nullopt; }
  [[nodiscard]] std::unique_ptr<Registration> observeActivation(Task /*handler*/) override {
    return std::make_unique<Registration>();
  }
  [[nodiscard]] std::optional<std::vector<ListedWindow>> onScreen() const override { return std::nullopt; }
};

ActiveDisplay::ActiveDisplay(DisplayUse use, const std::string& lockMark, EventLoop& loop, CanvasFactory& canvases,
                             const Clock& clock, std::function<std::optional<Seconds>()> limit)
    : lockMark_(lockMark), nullWindowList_(std::make_unique<NullWindowList>()) {
  gnome_ = gnome::GnomePlatform::connect(use, loop, canvases, clock, std::move(limit));
  if (gnome_) {
    kind_ = DisplayKind::extension;
    return;
  }
  auto connection = use != DisplayUse::ask ? wayland::Connection::open() : nullptr;
  DisplayOffer offer = connection ? offerOf(*connection) : DisplayOffer{};
  kind_ = chooseDisplay(offer);
  if (kind_ == DisplayKind::sessionLock || kind_ == DisplayKind::overlay) {
    wayland_ = std::make_unique<wayland::WaylandPlatform>(
        std::move(connection), kind_ == DisplayKind::sessionLock ? lockMark : std::string(), loop, canvases, clock);
    return;
  }
  connection.reset();
  x11_ = std::make_unique<x11::X11Platform>(loop, canvases, clock);
  offer.x11 = x11_->hasDisplay();
  kind_ = chooseDisplay(offer);
}

ActiveDisplay::~ActiveDisplay() = default;

std::string ActiveDisplay::description() const {
  return describe(kind_, posix::environmentVariable("WAYLAND_DISPLAY"), posix::environmentVariable("DISPLAY"));
}

bool ActiveDisplay::isWayland() const {
  return !posix::environmentVariable("WAYLAND_DISPLAY").empty() || (x11_ && x11_->isBridge());
}

bool ActiveDisplay::hasAppeared() const {
  gnome::Message hello;
  // Behind a bridge for X programs nothing can be locked, until the shell's extension is switched on.
  if (kind_ == DisplayKind::x11) {
    return !x11_->accessibility().isProcessTrusted() && gnome::Link::open(hello) != nullptr;
  }
  if (kind_ != DisplayKind::none) return false;
  if (gnome::Link::open(hello)) return true;
  const auto connection = wayland::Connection::open();
  DisplayOffer offer = connection ? offerOf(*connection) : DisplayOffer{};
  offer.x11 = x11::Connection::answers();
  return chooseDisplay(offer) != DisplayKind::none;
}

DisplayFamily& ActiveDisplay::family() {
  if (gnome_) return *gnome_;
  if (wayland_) return *wayland_;
  return *x11_;
}

RunningApplications& ActiveDisplay::runningApplications() {
  if (x11_) return x11_->runningApplications();
  return *nullWindowList_;
}

WindowList& ActiveDisplay::windowList() {
  if (x11_) return x11_->windowList();
  return *nullWindowList_;
}

void ActiveDisplay::restoreAtExit(bool comesBack) {
  family().restoreAtExit(comesBack);
  const auto mark = wayland::readMark(lockMark_);
  if (!mark || wayland::isAlive(mark->owner)) return;
  // Without a thread the process that watches over the lock ends it.
  posix::doWithin(RELEASE_LIMIT,
                  [path = lockMark_] { static_cast<void>(wayland::releaseAbandonedLock(path, {}, RELEASE_LIMIT)); });
}

}  // namespace dormel
