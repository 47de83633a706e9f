#include "tools/nights/NightRun.h"

#include <algorithm>
#include <array>
#include <memory>
#include <utility>

#include "app/AppDelegate.h"
#include "app/CommandLine.h"
#include "app/EntryPoint.h"
#include "core/AppSupport.h"
#include "core/Config.h"
#include "platform/common/paint/PaintedCanvases.h"
#include "platform/sim/SimPainter.h"

namespace dormel::nights {
namespace {

constexpr int ZONE = 60;  // minutes east, until the clocks change

Seconds seconds(std::int64_t milliseconds) { return static_cast<Seconds>(milliseconds) / 1000; }

SimMachine::Options options(const RandomNight& night) {
  return {night.seed, momentText(night.begin - std::chrono::minutes(ZONE)), false};
}

class Player {
 public:
  explicit Player(const RandomNight& night) : night_(night), machine_(options(night)) {}
  Player(const Player&) = delete;
  Player& operator=(const Player&) = delete;
  ~Player() {
    // What the process shows is drawn by the painter, which goes before the machine does.
    if (machine_.timeline.processRuns()) machine_.timeline.killProcess(0);
  }

  Outcome play(bool withJournal) {
    Outcome outcome;
    machine_.setJournalEnabled(false);
    std::optional<NightWatch> watch;
    try {
      furnish();
      machine_.setJournalEnabled(withJournal);
      watch.emplace(machine_, [this] { return epoch(); });
      watch_ = &*watch;
      begin();
      for (const Happening& happening : night_.happenings) {
        advanceTo(happening.at);
        if (watch->fault()) break;
        if (withJournal) machine_.journal.note("--- ", happening.text(), "   (", meaning(happening.kind), ")");
        happen(happening);
        watch->look();
      }
      advanceTo(night_.length);
      watch->look();
      watch->checkHistory();
    } catch (const std::exception& exception) {
      if (watch) watch->fail(Rule::sound, exception.what());
      outcome.fault = Fault{Rule::sound, exception.what()};
    }
    if (watch) outcome.fault = watch->fault();
    watch_ = nullptr;
    outcome.journal = machine_.journal.lines();
    return outcome;
  }

 private:
  // The machine before the night.

  void furnish() {
    if (night_.changeAfter) {
      const auto at = night_.begin + std::chrono::seconds(*night_.changeAfter / 1000 / 3600 * 3600);
      const auto hour = std::chrono::floor<std::chrono::hours>(at) - std::chrono::minutes(ZONE);
      machine_.calendar.addTransition(momentText(hour), SimCalendar::Offset(ZONE + night_.change));
    }
    SimDefaults& defaults = machine_.defaults;
    defaults.putInteger(defaultsKey::blockStartHour, night_.startHour);
    defaults.putInteger(defaultsKey::blockEndHour, night_.endHour);
    if (night_.clock24) defaults.putBoolean(defaultsKey::use24HourClock, *night_.clock24);
    if (night_.debugLog) defaults.putBoolean(defaultsKey::debugLoggingEnabled, true);
    machine_.files.put("/Applications/Dormel.app/Contents/Linux/Dormel", "program", 0755);
    machine_.bundle.setPath("/Applications/Dormel.app");
    machine_.compositor.setDesktop(night_.desktop);
    if (isGnome()) machine_.shell.setInForce();
    machine_.accessibility.setTrusted(night_.trusted || isWayland());
    machine_.keyboard.setSidesReported(night_.sidesReported);
    if (night_.screens == 0) machine_.screens.pull("DP-1");
    for (int place = 1; place < night_.screens; ++place) plug(place, 1280 + 320 * place, 1024);
    setProgram(true);
    putRecords();
    // The user sets it up; what the scheduler starts at once comes when time begins.
    machine_.launch({"--setup"});
    defaults.putBoolean(defaultsKey::blockingEnabled, night_.enabled);
    defaults.putBoolean(defaultsKey::onboardingComplete, night_.onboarded);
    if (night_.hasUnlockLog) machine_.files.put(Config::unlockLogPath(), "an older line\n");
    if (night_.idleSeconds) {
      machine_.timeline.jumpUptime(static_cast<Seconds>(*night_.idleSeconds) + 1);
      machine_.keyboard.touch(InputKind::mouseMoved);
      machine_.timeline.jumpUptime(static_cast<Seconds>(*night_.idleSeconds));
    }
  }

  void putRecords() {
    if (night_.records == Records::none) return;
    std::string json;
    if (night_.records == Records::malformed) {
      json = "[{\"night\":";
    } else {
      const auto today = std::chrono::floor<std::chrono::days>(night_.begin);
      for (const int days : {92, 91, 90, 89, 40, 2, 1}) {
        if (night_.records == Records::few && days > 80) continue;
        const std::string day = momentText(today - std::chrono::days(days)).substr(0, 10);
        json += (json.empty() ? "[" : ",") + ("{\"night\":\"" + day) + "\",\"firedAt\":\"" + day +
                "T21:00:00.000Z\",\"idleSeconds\":" + std::to_string(days) + "}";
      }
      json += "]";
    }
    machine_.files.put(AppSupport::url("nights.json"), json, 0600);
    machine_.files.chmod(AppSupport::directory(), 0700);
  }

  void setProgram(bool isThere) {
    if (!isThere) return machine_.setProgram({});
    machine_.setProgram([this](const std::vector<std::string>& arguments) { return program(arguments); });
  }

  /// What main does.
  std::shared_ptr<void> program(const std::vector<std::string>& arguments) {
    canvases_ = std::make_unique<paint::PaintedCanvases>(painter_);
    machine_.windows.setCanvases(canvases_.get());
    cliArgs = {*machine_.bundle.executablePath()};
    cliArgs.insert(cliArgs.end(), arguments.begin(), arguments.end());
    if (watch_ != nullptr) {
      const bool scheduled = std::find(arguments.begin(), arguments.end(), "--scheduled") != arguments.end();
      isRestarted_ = scheduled && !byHand_;
      watch_->processStarts(scheduled, isRestarted_);
    }
    EntryPoint::runOneShotCommand();
    auto delegate = EntryPoint::startApplication();
    delegate_ = delegate;
    machine_.application.setDelegate(delegate.get());
    delegate->didFinishLaunching();
    return delegate;
  }

  void begin() {
    origin_ = machine_.timeline.uptime();
    machine_.settle();
    if (night_.opened) machine_.launch({});
    machine_.settle();
    watch_->look();
  }

  void advanceTo(std::int64_t milliseconds) {
    const Seconds left = seconds(milliseconds) - (machine_.timeline.uptime() - origin_);
    if (left > 0) machine_.advance(left);
  }

  std::optional<int> epoch() const {
    const auto delegate = delegate_.lock();
    if (!delegate || !delegate->screenManager()) return {};
    return delegate->screenManager()->overlayEpoch();
  }

  // The user's hands.

  void press(KeyCode keyCode) {
    if (machine_.keyboard.isDown(keyCode)) return;
    down_.push_back(keyCode);
    watch_->keyChanges(keyCode, true, machine_.keyboard.isHeard());
    machine_.keyboard.press(keyCode);
  }
  void release(KeyCode keyCode, bool unheard = false) {
    if (!machine_.keyboard.isDown(keyCode)) return;
    std::erase(down_, keyCode);
    watch_->keyChanges(keyCode, false, !unheard && machine_.keyboard.isHeard());
    if (unheard) {
      machine_.keyboard.releaseUnheard(keyCode);
    } else {
      machine_.keyboard.release(keyCode);
    }
  }
  /// One of the keys that are down; nothing when none is.
  std::optional<KeyCode> held(std::int64_t which) const {
    if (down_.empty()) return {};
    return down_[static_cast<std::size_t>(which) % down_.size()];
  }

  /// All five keys, one after the other in any order; then they go up, some perhaps unheard, or one of them stays.
  void hold(std::int64_t duration, std::int64_t spacing, std::int64_t manner) {
    std::vector<KeyCode> codes;
    for (const KeyIndicator& key : watch_->shownKeys()) codes.push_back(key.keyCode);
    Dice dice(static_cast<std::uint64_t>(manner));
    for (std::size_t i = 0; i + 1 < codes.size(); ++i) {
      const auto last = static_cast<std::int64_t>(codes.size()) - 1;
      std::swap(codes[i], codes[static_cast<std::size_t>(dice.between(static_cast<std::int64_t>(i), last))]);
    }
    const std::int64_t whole = spacing * std::max<std::int64_t>(0, static_cast<std::int64_t>(codes.size()) - 1);
    const int unheard = manner % 8 == 1 ? 2 : 0;
    for (std::size_t i = 0; i < codes.size(); ++i) {
      const KeyCode code = codes[i];
      const auto turn = static_cast<std::int64_t>(i);
      machine_.after(seconds(spacing * turn), [this, code] { press(code); });
      if (manner % 16 == 2 && i == 0) continue;
      machine_.after(seconds(whole + duration + turn), [this, code, lost = turn < unheard] { release(code, lost); });
    }
  }

  // The world.

  static std::string connector(std::int64_t place) { return "DP-" + std::to_string(place + 1); }

  void plug(std::int64_t place, std::int64_t width, std::int64_t height) {
    machine_.screens.place(connector(place),
                           {static_cast<int>(place) * 5000, 0, static_cast<int>(width), static_cast<int>(height)});
  }
  void resize(std::int64_t place, std::int64_t width, std::int64_t height) {
    for (const Screen& screen : machine_.screens.all()) {
      if (screen.name == connector(place)) plug(place, width, height);
    }
  }

  [[nodiscard]] bool isGnome() const { return night_.desktop == SimCompositor::Desktop::shell; }
  [[nodiscard]] bool isWayland() const { return night_.desktop != SimCompositor::Desktop::x11; }

  /// On Wayland the permission is there for as long as the compositor is.
  void permit(bool trusted) {
    if (isWayland()) return;
    machine_.accessibility.setTrusted(trusted);
    watch_->look();
  }

  void change(const Happening& h) {
    SimDefaults& defaults = machine_.defaults;
    if (h.kind == Kind::hours) {
      defaults.putInteger(defaultsKey::blockStartHour, h.n[0]);
      defaults.putInteger(defaultsKey::blockEndHour, h.n[1]);
    } else {
      constexpr std::array<const char*, 4> FLAGS{defaultsKey::blockingEnabled, defaultsKey::onboardingComplete,
                                                 defaultsKey::use24HourClock, defaultsKey::debugLoggingEnabled};
      defaults.putBoolean(FLAGS.at(static_cast<std::size_t>(h.n[0])), h.n[1] != 0);
    }
    watch_->clockOrSettingsChanged();
  }

  /// Has it happen now and, when the last of its kind is over, no longer.
  void forAWhile(int& running, std::int64_t milliseconds, std::function<void(bool)> happens) {
    ++running;
    happens(true);
    machine_.after(seconds(milliseconds), [&running, happens = std::move(happens)] {
      if (--running == 0) happens(false);
    });
  }

  void diskTrouble(std::int64_t milliseconds, bool unreadable) {
    watch_->diskTrouble(1, unreadable);
    machine_.after(seconds(milliseconds), [this] { watch_->diskTrouble(-1, false); });
  }

  void folderMode(const Happening& h) {
    const std::string folder = h.n[0] == 0 ? Config::logDirectory() : AppSupport::directory();
    machine_.files.putDirectory(folder, 0700);
    machine_.files.chmod(folder, h.n[1] == 0 ? 0 : 0555);
    diskTrouble(h.n[2], true);
    machine_.after(seconds(h.n[2]), [this, folder] { machine_.files.chmod(folder, 0700); });
  }

  void denyKeyboard(int change) {
    denied_ += change;
    watch_->grabDenied(denied_ > 0);
  }

  /// Killed, and nobody can start it again for so long: only what watches over the lock is left.
  void disappear(std::int64_t milliseconds) {
    if (!machine_.timeline.processRuns()) return;
    watch_->deathExpected();
    watch_->programGone();
    setProgram(false);
    machine_.process.kill();
    machine_.after(seconds(milliseconds), [this] {
      setProgram(true);
      byHand_ = true;
      machine_.launch({"--scheduled"});
      byHand_ = false;
    });
  }

  void restartCompositor() {
    if (!isWayland()) return;
    constexpr int CONNECTION_LOST = 70;
    watch_->deathExpected();
    watch_->compositorEnds();
    if (!isGnome()) machine_.compositor.restart();
    machine_.timeline.killProcess(CONNECTION_LOST);
    machine_.shell.restart();
  }

  void keepKeysElsewhere(bool elsewhere) {
    if (isGnome()) return machine_.shell.setKeysElsewhere(elsewhere);
    machine_.compositor.keepFocus(elsewhere);
  }

  /// Without the keyboard for so long, which is whose fault it is not.
  void forAWhileDenied(int& running, std::int64_t milliseconds, std::function<void(bool)> happens) {
    forAWhile(running, milliseconds, [this, &running, happens = std::move(happens)](bool on) {
      if (!on || running == 1) denyKeyboard(on ? 1 : -1);
      happens(on);
    });
  }

  void painterFails(const Happening& h) {
    if (h.n[0] == 0) painter_.die();
    if (h.n[0] == 1) painter_.hang();
    if (h.n[0] == 2) painter_.lie(static_cast<SimPainter::Lie>(h.n[1]));
  }

  void noPainter(const Happening& h) {
    constexpr std::array<SimPainter::Mood, 4> MOODS{SimPainter::Mood::dies, SimPainter::Mood::hangs,
                                                    SimPainter::Mood::absent, SimPainter::Mood::babbles};
    forAWhile(paintless_, h.n[0], [this, mood = MOODS.at(static_cast<std::size_t>(h.n[1]))](bool on) {
      painter_.setMood(on ? mood : SimPainter::Mood::paints);
      if (on) painter_.die();
    });
  }

  void happen(const Happening& h) {
    SimKeyboard& keyboard = machine_.keyboard;
    switch (h.kind) {
      case Kind::hold:
        hold(h.n[0], h.n[1], h.n[2]);
        break;
      case Kind::fumble:
        if (const auto key = held(h.n[1])) {
          release(*key, h.n[2] == 1);
          machine_.after(seconds(h.n[0]), [this, code = *key] { press(code); });
        }
        break;
      case Kind::key:
        press(static_cast<KeyCode>(h.n[0]));
        machine_.after(seconds(h.n[1]), [this, code = static_cast<KeyCode>(h.n[0])] { release(code); });
        break;
      case Kind::drop:
        if (const auto key = held(h.n[0])) release(*key, true);
        break;
      case Kind::letGo:
        while (const auto key = held(0)) release(*key);
        break;
      case Kind::repeat:
        if (const auto key = held(h.n[0])) {
          for (std::int64_t i = 0; i < h.n[1]; ++i) {
            machine_.after(seconds(30 * i), [this, code = *key, tapToo = h.n[2] != 0] {
              if (machine_.keyboard.isDown(code)) machine_.keyboard.repeat(code, tapToo);
            });
          }
        }
        break;
      case Kind::touch:
        keyboard.touch(InputKind::mouseMoved);
        break;
      case Kind::plug:
        plug(h.n[0], h.n[1], h.n[2]);
        break;
      case Kind::pull:
        machine_.screens.pull(connector(h.n[0]));
        break;
      case Kind::resize:
        resize(h.n[0], h.n[1], h.n[2]);
        break;
      case Kind::shift:
        machine_.screens.shift(static_cast<int>(h.n[0]), static_cast<int>(h.n[1]));
        break;
      case Kind::scale:
        machine_.screens.setScale(static_cast<double>(h.n[0]) / 4, h.n[1] != 0);
        break;
      case Kind::notice:
        machine_.screens.noticeOnly();
        break;
      case Kind::focus:
        machine_.windows.stealFocus();
        break;
      case Kind::quit:
        if (!machine_.timeline.processRuns()) break;
        watch_->quitRequest();
        machine_.timeline.addMain(0, 0, [this] { machine_.application.terminate(); });
        break;
      case Kind::launch:
        byHand_ = true;
        machine_.launch({"--scheduled"});
        byHand_ = false;
        break;
      case Kind::sleep:
        watch_->sleeps();
        watch_->clockOrSettingsChanged();
        machine_.sleep(seconds(h.n[0]));
        break;
      case Kind::clock:
        watch_->clockOrSettingsChanged();
        machine_.jumpWallClock(seconds(h.n[0]));
        break;
      case Kind::stall:
        watch_->mainStalls(seconds(h.n[0]));
        machine_.stallMain(seconds(h.n[0]));
        break;
      case Kind::permission:
        permit(h.n[0] != 0);
        if (h.n[1] != 0) machine_.after(seconds(h.n[1]), [this, to = h.n[0] == 0] { permit(to); });
        break;
      case Kind::deny:
        forAWhileDenied(denials_, h.n[0], [this](bool on) { keepKeysElsewhere(on); });
        break;
      case Kind::steal:
        watch_->tapDisabled();
        machine_.compositor.stealFocus();
        machine_.shell.stealKeys();
        break;
      case Kind::otherLock:
        forAWhileDenied(otherLocks_, h.n[0], [this](bool on) { machine_.compositor.lockForAnother(on); });
        break;
      case Kind::extension:
        forAWhileDenied(extensionless_, h.n[0], [this](bool isOff) {
          if (isOff) watch_->compositorEnds();
          machine_.shell.setEnabled(!isOff);
        });
        break;
      case Kind::socket:
        forAWhileDenied(socketless_, h.n[0], [this](bool isShut) { machine_.shell.setListening(!isShut); });
        break;
      case Kind::lockScreen:
        forAWhileDenied(lockScreens_, h.n[0], [this](bool isUp) { machine_.shell.setLockScreen(isUp); });
        break;
      case Kind::compositor:
        restartCompositor();
        break;
      case Kind::gone:
        disappear(h.n[0]);
        break;
      case Kind::both:
        // Only the scheduler is left to see to it.
        if (machine_.timeline.processRuns() && isRestarted_) machine_.compositor.killWatchers();
        watch_->deathExpected();
        machine_.process.kill();
        break;
      case Kind::runtime:
        watch_->marksMayBeMissing();
        forAWhile(markless_, h.n[0], [this](bool on) { machine_.compositor.setMarkWritable(!on); });
        break;
      case Kind::loseTap:
        watch_->tapDisabled();
        keyboard.loseTap();
        break;
      case Kind::noTaps:
        forAWhile(tapless_, h.n[0], [this](bool on) { machine_.keyboard.setTapsImpossible(on); });
        break;
      case Kind::terminate:
        watch_->terminationSignal();
        machine_.process.terminate();
        break;
      case Kind::kill:
        watch_->deathExpected();
        machine_.process.kill();
        break;
      case Kind::crash:
        watch_->deathExpected();
        machine_.timeline.killProcess(static_cast<int>(128 + h.n[0]));
        break;
      case Kind::full:
        diskTrouble(h.n[1], false);
        forAWhile(full_, h.n[1], [this, bytes = static_cast<std::size_t>(h.n[0])](bool on) {
          machine_.files.setFreeBytes(on ? std::optional(bytes) : std::nullopt);
        });
        break;
      case Kind::folder:
        folderMode(h);
        break;
      case Kind::hang:
        forAWhile(hanging_, h.n[0], [this](bool on) {
          watch_->queuesHang(on);
          machine_.timeline.setSerialQueuesHang(on);
        });
        break;
      case Kind::painter:
        painterFails(h);
        break;
      case Kind::noPainter:
        noPainter(h);
        break;
      case Kind::settings:
        forAWhile(unwritable_, h.n[0], [this](bool on) { machine_.defaults.setWritable(!on); });
        break;
      case Kind::hours:
      case Kind::flag:
        change(h);
        break;
      case Kind::test:
        rehearse([](AppDelegate& delegate) { delegate.testNow(); });
        break;
      case Kind::demo:
        rehearse([](AppDelegate& delegate) { static_cast<void>(delegate.runDemo([] {})); });
        break;
    }
  }

  /// As a click in the opened program's window does it.
  void rehearse(std::function<void(AppDelegate&)> start) {
    machine_.timeline.addMain(0, 0, [weak = delegate_, start = std::move(start)] {
      const auto delegate = weak.lock();
      if (delegate && delegate->mode() == AppDelegate::Mode::window) start(*delegate);
    });
  }

  const RandomNight& night_;
  SimMachine machine_;
  SimPainter painter_{machine_.timeline};
  std::unique_ptr<paint::PaintedCanvases> canvases_;  // of the process that runs
  NightWatch* watch_ = nullptr;
  std::weak_ptr<AppDelegate> delegate_;
  std::vector<KeyCode> down_;
  Seconds origin_ = 0;  // the uptime at which the night begins
  bool byHand_ = false;
  bool isRestarted_ = false;  // the scheduler started the present process, and would again
  int paintless_ = 0;
  int denied_ = 0;
  int denials_ = 0;
  int otherLocks_ = 0;
  int extensionless_ = 0;
  int socketless_ = 0;
  int lockScreens_ = 0;
  int markless_ = 0;
  int tapless_ = 0;
  int full_ = 0;
  int hanging_ = 0;
  int unwritable_ = 0;
};

}  // namespace

Outcome play(const RandomNight& night, bool withJournal) {
  // The machine goes last: what the program made refers to it.
  Player player(night);
  return player.play(withJournal);
}

}  // namespace dormel::nights
