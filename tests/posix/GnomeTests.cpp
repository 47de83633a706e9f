// The family of GNOME's session, with an extension at the other end that answers as the test says.
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <mutex>
#include <thread>

#include "platform/linux/gnome/ExtensionSwitch.h"
#include "platform/linux/gnome/GnomePlatform.h"
#include "platform/linux/posix/PosixClock.h"
#include "tests/posix/TemporaryHome.h"

namespace dormel::gnome {
namespace {

using namespace std::chrono_literals;

/// Listens where the shell's extension does, answers each "hello" and "hold", and keeps what it is told.
class Extension {
 public:
  explicit Extension(Message held = {{"cover", false}, {"keys", false}}) : held_(std::move(held)) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    socketPath().copy(address.sun_path, sizeof address.sun_path - 1);
    ::unlink(socketPath().c_str());
    listening_ = posix::FileDescriptor(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    EXPECT_EQ(::bind(listening_.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    EXPECT_EQ(::listen(listening_.get(), 4), 0);
    thread_ = std::thread([this] { serve(); });
  }
  Extension(const Extension&) = delete;
  Extension& operator=(const Extension&) = delete;
  ~Extension() {
    isOver_ = true;
    ::unlink(socketPath().c_str());
    thread_.join();
  }

  void say(const std::string& kind, const Message& body) { sayText(Message{{kind, body}}.dump()); }
  void sayText(const std::string& text) {
    const std::lock_guard lock(mutex_);
    const auto length = static_cast<std::uint32_t>(text.size());
    const std::string bytes = std::string(reinterpret_cast<const char*>(&length), 4) + text;
    ::send(peer_.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL);
  }
  [[nodiscard]] std::vector<Message> heard(const std::string& kind) {
    const std::lock_guard lock(mutex_);
    std::vector<Message> found;
    for (const auto& [name, body] : heard_) {
      if (name == kind) found.push_back(body);
    }
    return found;
  }
  [[nodiscard]] std::size_t count(const std::string& kind) { return heard(kind).size(); }

 private:
  void serve() {
    std::string bytes;
    while (!isOver_) {
      pollfd waits[] = {{listening_.get(), POLLIN, 0}, {peer_.valid() ? peer_.get() : -1, POLLIN, 0}};
      if (::poll(waits, 2, 10) <= 0) continue;
      if (waits[0].revents != 0) {
        const std::lock_guard lock(mutex_);
        peer_ = posix::FileDescriptor(::accept(listening_.get(), nullptr, nullptr));
        bytes.clear();
      } else {
        char part[65536];
        const ssize_t count = ::recv(peer_.get(), part, sizeof part, 0);
        if (count <= 0) {
          const std::lock_guard lock(mutex_);
          peer_ = {};
          continue;
        }
        bytes.append(part, static_cast<std::size_t>(count));
        take(bytes);
      }
    }
  }
  void take(std::string& bytes) {
    std::uint32_t length = 0;
    while (bytes.size() >= 4 && (std::memcpy(&length, bytes.data(), 4), bytes.size() >= 4 + length)) {
      const Message message = Message::parse(bytes.substr(4, length));
      const std::string& kind = message.begin().key();
      const std::size_t size = 4 + length + (kind == "pool" ? 1 : 0);  // a descriptor comes with one more byte
      if (bytes.size() < size) return;
      bytes.erase(0, size);
      {
        const std::lock_guard lock(mutex_);
        heard_.emplace_back(kind, message.begin().value());
      }
      if (kind == "hello") {
        say("hello", {{"protocol", PROTOCOL},
                      {"monitors", {{{"at", {0, 0, 800, 600}}, {"scale", 1}, {"primary", true}}}},
                      {"layout", "de"},
                      {"held", held_}});
      } else if (kind == "hold") {
        say("held", {{"cover", message["hold"]["cover"]}, {"keys", message["hold"]["keys"]}});
      }
    }
  }

  const Message held_;
  posix::FileDescriptor listening_;
  posix::FileDescriptor peer_;
  std::mutex mutex_;
  std::vector<std::pair<std::string, Message>> heard_;
  std::atomic<bool> isOver_ = false;
  std::thread thread_;
};

struct OneView : View {
  [[nodiscard]] ViewKind kind() const override { return ViewKind::blockerOverlay; }
};

class OneCanvas : public Canvas {
 public:
  [[nodiscard]] Size fittingSize() const override { return {8, 8}; }
  void resize(const Size& /*size*/, double /*scale*/) override {}
  void setOnFrame(std::function<void(const Pixels&, const PixelRect&)> onFrame) override {
    onFrame_ = std::move(onFrame);
  }
  void setShowing(bool showing) override {
    if (showing) paint(1);
  }
  bool pointer(PointerAction /*action*/, double /*x*/, double /*y*/) override { return false; }
  void paint(std::uint32_t colour) {
    pixels_.fill(colour);
    if (onFrame_) onFrame_({pixels_.data(), 8, 8, 8}, {0, 0, 8, 8});
  }

 private:
  std::array<std::uint32_t, 64> pixels_{};
  std::function<void(const Pixels&, const PixelRect&)> onFrame_;
};

struct Canvases : CanvasFactory {
  [[nodiscard]] std::unique_ptr<Canvas> make(std::shared_ptr<View> /*view*/) override {
    auto canvas = std::make_unique<OneCanvas>();
    newest = canvas.get();
    return canvas;
  }
  OneCanvas* newest = nullptr;
};

class GnomeFamily : public ::testing::Test {
 public:
  GnomeFamily() {
    ::setenv("XDG_RUNTIME_DIR", home_.path().c_str(), 1);
    extension_ = std::make_unique<Extension>();
  }
  GnomeFamily(const GnomeFamily&) = delete;
  GnomeFamily& operator=(const GnomeFamily&) = delete;
  ~GnomeFamily() override { ::unsetenv("XDG_RUNTIME_DIR"); }

 protected:
  void connect() {
    family_ = GnomePlatform::connect(DisplayUse::lock, loop_, canvases_, clock_, [] { return Seconds{3600}; });
    ASSERT_TRUE(family_);
    family_->setOnLost([this] { ++losses_; });
    tap_ = family_->eventTaps().create([this](const KeyEvent& event) {
      keys_.push_back(event);
      return TapVerdict::swallow;
    });
    source_ = tap_->makeRunLoopSource();
  }
  /// A blocker as a lock has it, which reaches its strength after a fade.
  void lock(Seconds fade) {
    family_->setLockdown(true);
    tap_->enable(true);
    WindowStyle style;
    style.background = WindowBackground::black;
    style.canBecomeKey = true;
    blocker_ = family_->windows().makeWindow(style, {0, 0, 800, 600});
    blocker_->setContent(std::make_shared<OneView>());
    blocker_->setAlpha(0);
    blocker_->orderFrontRegardless();
    family_->windows().animateAlpha({blocker_}, 1, fade, TimingCurve::easeIn, {});
  }
  bool until(const std::function<bool()>& seen, std::chrono::milliseconds within = 3000ms) {
    const auto end = std::chrono::steady_clock::now() + within;
    while (!seen() && std::chrono::steady_clock::now() < end) {
      loop_.dispatchPending();
      std::this_thread::sleep_for(2ms);
    }
    return seen();
  }
  bool isCovered() {
    const auto holds = extension_->heard("hold");
    return !holds.empty() && holds.back()["cover"] == true && holds.back()["absence"] > 0;
  }

  TemporaryHome home_;
  EventLoop loop_;
  posix::PosixClock clock_;
  Canvases canvases_;
  std::unique_ptr<Extension> extension_;
  std::unique_ptr<GnomePlatform> family_;
  std::vector<KeyEvent> keys_;
  std::unique_ptr<EventTap> tap_;
  std::unique_ptr<RunLoopSource> source_;
  std::shared_ptr<Window> blocker_;
  int losses_ = 0;
};

TEST_F(GnomeFamily, LocksOverAFadeAndLetsGo) {
  connect();
  lock(0.1);
  ASSERT_TRUE(until([&] { return extension_->count("hold") > 0; }));
  EXPECT_EQ(extension_->heard("hold")[0]["cover"], false) << "black before the fade";
  EXPECT_TRUE(until([&] { return tap_->isEnabled(); }));
  EXPECT_TRUE(until([&] { return isCovered(); }));
  const auto now = std::chrono::duration<double>(clock_.now().time_since_epoch()).count();
  EXPECT_NEAR(extension_->heard("hold").back()["until"].get<double>(), now + 3600, 5);
  extension_->say("key", {{"code", 30}, {"down", true}, {"time", 1}});
  EXPECT_TRUE(until([&] { return keys_.size() == 1 && keys_[0].type == EventType::keyDown && keys_[0].keyCode == 0; }));
  extension_->say("held", {{"cover", true}, {"keys", false}, {"lockScreen", true}});
  EXPECT_TRUE(until([&] { return keys_.size() == 3; })) << "let go, and the tap is told";
  EXPECT_FALSE(tap_->isEnabled());
  family_->setLockdown(false);
  tap_->enable(false);
  blocker_->orderOut();
  EXPECT_TRUE(until([&] { return extension_->count("release") == 1; }));
}

TEST_F(GnomeFamily, NeverUncoversWhatAnEarlierRunCovered) {
  extension_.reset();
  extension_ = std::make_unique<Extension>(Message{{"cover", true}, {"keys", true}});
  connect();
  EXPECT_FALSE(until([&] { return extension_->count("hold") > 0; }, 100ms));
  lock(0.1);
  EXPECT_FALSE(until([&] { return extension_->count("hold") > 0 && !isCovered(); }, 300ms));
  EXPECT_TRUE(isCovered());
}

TEST_F(GnomeFamily, SaysEverythingAnewToAShellThatComesBack) {
  connect();
  lock(0);
  EXPECT_TRUE(until([&] { return isCovered() && tap_->isEnabled() && extension_->count("frame") == 1; }));
  extension_.reset();
  EXPECT_TRUE(until([&] { return !tap_->isEnabled() && !family_->accessibility().isProcessTrusted(); }));
  EXPECT_EQ(keys_.size(), 1U) << "the tap is told";
  extension_ = std::make_unique<Extension>();
  EXPECT_TRUE(until([&] { return isCovered() && tap_->isEnabled() && extension_->count("frame") == 1; }));
  EXPECT_EQ(extension_->count("panel"), 1U);
  EXPECT_EQ(extension_->count("pool"), 1U);
  EXPECT_EQ(losses_, 0);
}

TEST_F(GnomeFamily, TheLastWillLeavesALockToTheNextRunOnly) {
  connect();
  lock(0);
  EXPECT_TRUE(until([&] { return isCovered(); }));
  std::thread([&] { family_->restoreAtExit(true); }).join();
  EXPECT_FALSE(until([&] { return extension_->count("release") > 0; }, 100ms));
  std::thread([&] { family_->restoreAtExit(false); }).join();
  EXPECT_TRUE(until([&] { return extension_->count("release") == 1; }));
}

TEST_F(GnomeFamily, OneFrameIsUnderWayAndTheNextIsTheNewest) {
  connect();
  lock(0);
  ASSERT_TRUE(until([&] { return extension_->count("frame") == 1; }));
  for (std::uint32_t colour = 2; colour < 6; ++colour) canvases_.newest->paint(colour);
  EXPECT_FALSE(until([&] { return extension_->count("frame") > 1; }, 200ms));
  const Message first = extension_->heard("frame")[0];
  extension_->say("frame", {{"serial", first["serial"]}, {"shown", true}});
  ASSERT_TRUE(until([&] { return extension_->count("frame") == 2; }));
  const Message second = extension_->heard("frame")[1];
  EXPECT_EQ(second["serial"].get<int>(), first["serial"].get<int>() + 4);
  EXPECT_NE(second["offset"], first["offset"]) << "written over while it was being read";
}

TEST_F(GnomeFamily, NonsenseEndsTheConnectionOnly) {
  connect();
  lock(0);
  for (const char* lie : {R"({"frame":{"serial":"x"}})", R"({"pointer":5})", "[]", "{", "{}", R"({"refused":[]})"}) {
    SCOPED_TRACE(lie);
    EXPECT_TRUE(until([&] { return tap_->isEnabled(); }));
    const std::size_t greetings = extension_->count("hello");
    extension_->sayText(lie);
    EXPECT_TRUE(until([&] { return extension_->count("hello") > greetings && tap_->isEnabled(); }));
  }
  EXPECT_EQ(losses_, 0);
}

TEST(GnomeExtension, StateOf) {
  using enum ExtensionState;
  const struct {
    ExtensionFacts facts;
    ExtensionState state;
  } cases[] = {
      {{0, true, true, 1, 7, 7}, elsewhere},     {{43, true, true, {}, 0, 7}, tooOld},
      {{44, false, true, {}, 0, 0}, tooOld},     {{45, false, true, 2, 7, 7}, allOff},
      {{45, false, false, 2, 7, 7}, allOffBare}, {{48, true, false, 2, 7, 7}, off},
      {{48, true, true, {}, 0, 0}, absent},      {{48, true, true, {}, 0, 7}, afterLogin},
      {{48, true, true, 2, 7, 7}, off},          {{48, true, true, 6, 7, 7}, off},
      {{48, true, true, 3, 7, 7}, failed},       {{50, true, true, 4, 7, 7}, failed},
      {{48, true, true, 1, 7, 7}, on},           {{48, true, true, 8, 7, 0}, on},
      {{48, true, true, 1, 7, 8}, onOlder},
  };
  for (const auto& [facts, state] : cases) {
    EXPECT_EQ(stateOf(facts), state) << facts.shellVersion << " " << facts.state.value_or(-1);
  }
}

TEST(GnomeExtension, ListedIn) {
  EXPECT_EQ(listedIn("@as []\n", "a@b"), "['a@b']");
  EXPECT_EQ(listedIn("['x@y']\n", "a@b"), "['x@y', 'a@b']");
  EXPECT_EQ(listedIn("['a@b', 'x@y']", "a@b"), "['a@b', 'x@y']");
  EXPECT_EQ(listedIn("", "a@b"), std::nullopt);
  for (const auto& [list, without] : {std::pair("['a@b']\n", "[]"),
                                      {"['a@b', 'x@y']", "['x@y']"},
                                      {"['x@y', 'a@b']\n", "['x@y']"},
                                      {"['x@y', 'a@b', 'z@z']", "['x@y', 'z@z']"}}) {
    EXPECT_EQ(unlistedIn(list, "a@b"), without);
  }
  EXPECT_EQ(unlistedIn("@as []\n", "a@b"), std::nullopt);
}

}  // namespace
}  // namespace dormel::gnome
