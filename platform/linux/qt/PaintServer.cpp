#include "platform/linux/qt/PaintServer.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/select.h>
#include <sys/socket.h>
#include <unistd.h>

#include <QGuiApplication>
#include <QLatin1String>
#include <QSocketNotifier>
#include <QThreadPool>
#include <algorithm>
#include <array>
#include <cerrno>
#include <clocale>
#include <cstdio>
#include <cstring>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/PaintedView.h"
#include "platform/common/HandlerList.h"
#include "platform/common/paint/Messages.h"
#include "platform/linux/paint/Confinement.h"
#include "platform/linux/posix/FileDescriptor.h"
#include "platform/linux/posix/PosixBundle.h"
#include "platform/linux/posix/PosixClock.h"
#include "platform/linux/qt/QmlCanvas.h"
#include "platform/linux/qt/SceneGraph.h"
#include "platform/linux/qt/SceneLoader.h"

namespace dormel::paint {
namespace {

constexpr std::uint32_t FRAMES = 2;

/// The guard is gone, or does not understand us, or nothing can be drawn, and it writes plain lines itself.
[[noreturn]] void leave(int status) { ::_exit(status); }

class PaintConnection {
 public:
  /// The first answer to the guard goes out only with the first picture: until then the guard is patient.
  void send(const Answer& answer, int descriptor = -1) {
    if (!std::exchange(hasSaidHello_, true)) send(Hello{VERSION});
    std::string bytes = encoded(answer);
    iovec part{bytes.data(), bytes.size()};
    msghdr message{};
    message.msg_iov = &part;
    message.msg_iovlen = 1;
    alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof(int))> control{};
    if (descriptor >= 0) {
      message.msg_control = control.data();
      message.msg_controllen = control.size();
      cmsghdr* c = CMSG_FIRSTHDR(&message);
      c->cmsg_level = SOL_SOCKET;
      c->cmsg_type = SCM_RIGHTS;
      c->cmsg_len = CMSG_LEN(sizeof(int));
      std::memcpy(CMSG_DATA(c), &descriptor, sizeof descriptor);
    }
    for (;;) {
      if (::sendmsg(PAINTER_DESCRIPTOR, &message, MSG_NOSIGNAL) >= 0) return;
      if (errno == EAGAIN) {
        // The guard is busy; nothing of ours is worth painting ahead of it.
        fd_set one;
        FD_ZERO(&one);
        FD_SET(PAINTER_DESCRIPTOR, &one);
        ::select(PAINTER_DESCRIPTOR + 1, nullptr, &one, nullptr, nullptr);
      } else if (errno != EINTR) {
        leave(1);
      }
    }
  }

 private:
  bool hasSaidHello_ = false;
};

/// A view that lives in the guard.
class RemoteView final : public PaintedView {
 public:
  RemoteView(ViewKind kind, std::function<void(std::uint32_t)> onAct) : kind_(kind), onAct_(std::move(onAct)) {}

  void setState(std::string state) {
    if (state == state_) return;
    state_ = std::move(state);
    handlers_.call();
  }

  [[nodiscard]] ViewKind kind() const override { return kind_; }
  [[nodiscard]] std::string encodedState() const override { return state_; }
  [[nodiscard]] std::shared_ptr<const void> observeState(Task handler) override {
    return handlers_.add(std::move(handler));
  }
  [[nodiscard]] Size fittingSize() const override { return {}; }
  void act(std::uint32_t action) override { onAct_(action); }
  [[nodiscard]] std::vector<std::string> plainLines(const CanWrite& /*canWrite*/) const override { return {}; }

 private:
  ViewKind kind_;
  std::function<void(std::uint32_t)> onAct_;
  std::string state_;
  HandlerList<> handlers_;
};

/// The frames of one canvas, which the guard maps.
class SharedFrames {
 public:
  SharedFrames(int width, int height) : width_(width), height_(height) {
    bytes_ = std::size_t{FRAMES} * static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 4;
    fd_ = posix::FileDescriptor(::memfd_create("dormel-picture", MFD_CLOEXEC | MFD_ALLOW_SEALING));
    if (!fd_.valid() || ::ftruncate(fd_.get(), static_cast<off_t>(bytes_)) != 0 ||
        ::fcntl(fd_.get(), F_ADD_SEALS, F_SEAL_SHRINK | F_SEAL_GROW | F_SEAL_SEAL) != 0) {
      leave(1);
    }
    void* data = ::mmap(nullptr, bytes_, PROT_READ | PROT_WRITE, MAP_SHARED, fd_.get(), 0);
    if (data == MAP_FAILED) leave(1);
    data_ = static_cast<std::uint32_t*>(data);
    missing_.fill({0, 0, width, height});
  }
  SharedFrames(const SharedFrames&) = delete;
  SharedFrames& operator=(const SharedFrames&) = delete;
  ~SharedFrames() { ::munmap(data_, bytes_); }

  [[nodiscard]] int descriptor() const { return fd_.get(); }

  /// Takes a picture over into a frame that is free; nothing when none is.
  std::optional<std::uint32_t> put(const Pixels& pixels, const PixelRect& changed) {
    for (PixelRect& missing : missing_) missing = united(missing, changed);
    const auto free = std::find(isAway_.begin(), isAway_.end(), false);
    if (free == isAway_.end()) return {};
    const auto frame = static_cast<std::size_t>(free - isAway_.begin());
    const PixelRect part = std::exchange(missing_.at(frame), {});
    const auto stride = static_cast<std::ptrdiff_t>(width_);
    std::uint32_t* to = data_ + static_cast<std::ptrdiff_t>(frame) * stride * height_;
    for (int y = part.y; y < part.y + part.height; ++y) {
      std::memcpy(to + y * stride + part.x, pixels.data + y * pixels.stride + part.x,
                  static_cast<std::size_t>(part.width) * sizeof(std::uint32_t));
    }
    isAway_.at(frame) = true;
    return static_cast<std::uint32_t>(frame);
  }

  void release(std::uint32_t frame) {
    if (frame < FRAMES) isAway_.at(frame) = false;
  }

 private:
  int width_;
  int height_;
  std::size_t bytes_ = 0;
  posix::FileDescriptor fd_;
  std::uint32_t* data_ = nullptr;
  std::array<bool, FRAMES> isAway_{};
  std::array<PixelRect, FRAMES> missing_{};  ///< what has changed since a frame was last put
};

class ServedCanvas {
 public:
  ServedCanvas(std::uint32_t number, ViewKind kind, const std::shared_ptr<SceneLoader>& stage,
               PaintConnection& connection)
      : number_(number),
        connection_(connection),
        view_(std::make_shared<RemoteView>(kind,
                                           [this](std::uint32_t action) {
                                             connection_.send(Act{number_, action});
                                           })),
        canvas_(stage, view_, [] { leave(1); }) {
    canvas_.setOnDrawn([this] { done(); });
  }

  void set(const Scene& scene) {
    view_->setState(scene.state);
    if (scene.revision != revision_) {
      revision_ = scene.revision;
      frames_.reset();
      canvas_.resize(scene.size, scene.scale);
      listen();
    }
    canvas_.setShowing(scene.showing);
    unanswered_ = scene.serial;
    // What the state changes is known only once the scene has heard of it, later in this turn.
    QMetaObject::invokeMethod(
        &context_,
        [this] {
          if (!canvas_.isFramePending()) done();
        },
        Qt::QueuedConnection);
  }

  void pointer(const Pointer& event) { canvas_.pointer(event.action, event.x, event.y); }

  void release(const Release& released) {
    if (released.revision != revision_ || !frames_) return;
    frames_->release(released.frame);
    if (std::exchange(isLate_, false)) listen();
  }

 private:
  /// Whole frames first.
  void listen() {
    canvas_.setOnFrame([this](const Pixels& pixels, const PixelRect& changed) { show(pixels, changed); });
  }

  void show(const Pixels& pixels, const PixelRect& changed) {
    if (!frames_) {
      frames_.emplace(pixels.width, pixels.height);
      connection_.send(Memory{number_, revision_, static_cast<std::uint32_t>(pixels.width),
                              static_cast<std::uint32_t>(pixels.height), FRAMES},
                       frames_->descriptor());
    }
    if (const auto frame = frames_->put(pixels, changed)) {
      connection_.send(Frame{number_, revision_, *frame, changed});
    } else {
      isLate_ = true;
    }
  }

  void done() {
    const std::uint32_t serial = std::exchange(unanswered_, 0);
    if (serial == 0) return;
    std::vector<Rect> areas = canvas_.pressableAreas();
    if (areas != areas_) {
      areas_ = std::move(areas);
      connection_.send(Areas{number_, areas_});
    }
    connection_.send(Done{number_, serial});
  }

  std::uint32_t number_;
  PaintConnection& connection_;
  std::shared_ptr<RemoteView> view_;
  std::uint32_t revision_ = 0;
  std::optional<SharedFrames> frames_;
  bool isLate_ = false;  ///< a picture found no frame free
  std::uint32_t unanswered_ = 0;
  std::vector<Rect> areas_;
  QObject context_;
  QmlCanvas canvas_;
};

class PaintServer {
 public:
  PaintServer(const PaintServer&) = delete;
  PaintServer& operator=(const PaintServer&) = delete;
  ~PaintServer() = default;
  explicit PaintServer(std::shared_ptr<SceneLoader> stage)
      : stage_(std::move(stage)), notifier_(PAINTER_DESCRIPTOR, QSocketNotifier::Read) {
    QObject::connect(&notifier_, &QSocketNotifier::activated, &notifier_, [this] { read(); });
  }

 private:
  void read() {
    const ssize_t got = ::recv(PAINTER_DESCRIPTOR, buffer_.data(), buffer_.size(), MSG_DONTWAIT | MSG_TRUNC);
    if (got < 0 && (errno == EAGAIN || errno == EINTR)) return;
    if (got <= 0) leave(0);
    const auto order = static_cast<std::size_t>(got) > buffer_.size()
                           ? std::nullopt
                           : decodedOrder({buffer_.data(), static_cast<std::size_t>(got)});
    if (!order) leave(1);
    std::visit([this](const auto& one) { carryOut(one); }, *order);
  }

  void carryOut(const Scene& scene) {
    auto& canvas = canvases_[scene.canvas];
    if (!canvas) canvas = std::make_unique<ServedCanvas>(scene.canvas, scene.kind, stage_, connection_);
    canvas->set(scene);
  }
  void carryOut(const Close& close) { canvases_.erase(close.canvas); }
  void carryOut(const Pointer& event) {
    if (const auto at = canvases_.find(event.canvas); at != canvases_.end()) at->second->pointer(event);
  }
  void carryOut(const Release& released) {
    if (const auto at = canvases_.find(released.canvas); at != canvases_.end()) at->second->release(released);
  }
  void carryOut(const Ping& ping) { connection_.send(Pong{ping.serial}); }

  std::shared_ptr<SceneLoader> stage_;
  PaintConnection connection_;
  std::map<std::uint32_t, std::unique_ptr<ServedCanvas>> canvases_;
  std::array<char, LONGEST_MESSAGE> buffer_{};
  QSocketNotifier notifier_;
};

/// Looking for displays, the toolkit wants to make the runtime folder and says that it may not. It need not: the
/// painter has no display, and the guard's log keeps what is worth reading.
void say(QtMsgType type, const QMessageLogContext& context, const QString& text) {
  if (text.startsWith(QLatin1String("QStandardPaths: "))) return;
  std::fprintf(stderr, "%s\n", qUtf8Printable(qFormatLogMessage(type, context, text)));
}

}  // namespace

int runPainter(QmlSceneRegistry scenes) {
  int type = 0;
  socklen_t length = sizeof type;
  if (::getsockopt(PAINTER_DESCRIPTOR, SOL_SOCKET, SO_TYPE, &type, &length) != 0 || type != SOCK_SEQPACKET) {
    std::fputs("paint: started by Dormel alone, which shows what it draws\n", stderr);
    return 2;
  }
  const posix::PosixClock clock;
  const posix::PosixBundle bundle;
  if (!confineThisProcess()) std::fputs("The painter runs unconfined: this kernel has no means for it.\n", stderr);

  qInstallMessageHandler(say);
  std::array<std::string, 3> arguments{"paint", "-platform", "offscreen"};
  std::array<char*, 4> pointers{arguments[0].data(), arguments[1].data(), arguments[2].data(), nullptr};
  int count = 3;
  // The toolkit has the rows of a shape filled by a pool of threads. For shapes as small as ours, handing them over
  // costs several times what filling them does. (Newer versions have a pool for that which nobody else can reach.)
  QThreadPool::globalInstance()->setMaxThreadCount(1);
  const QGuiApplication application(count, pointers.data());
  SceneGraph::useSoftware();
  std::setlocale(LC_NUMERIC, "C");
  DrawingServices services;
  services.uptime = [&clock] { return clock.uptime(); };
  services.printError = [](std::string_view line) {
    std::fprintf(stderr, "%.*s\n", static_cast<int>(line.size()), line.data());
  };
  services.bundlePath = [&bundle] { return bundle.path(); };
  PaintServer server(std::make_shared<SceneLoader>(std::move(scenes), std::move(services)));
  return QGuiApplication::exec();
}

}  // namespace dormel::paint
