#include "platform/common/paint/Painter.h"

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

#include "platform/Platform.h"
#include "platform/Process.h"

namespace dormel::paint {
namespace {

constexpr std::array<Seconds, 7> PAUSES{0, 0.25, 0.5, 1, 2, 4, 5};
constexpr Seconds FIRST_ANSWER = 10;
constexpr Seconds PATIENCE = 1;
constexpr Seconds MOST_PATIENCE = 8;
constexpr Seconds HEALTHY_AFTER = 2;
constexpr Seconds PING_INTERVAL = 0.5;
/// What came while this process itself stood still has to be read first.
constexpr Seconds SECOND_LOOK = 0.1;
/// A painter that nobody needs is kept that long.
constexpr Seconds IDLE_LIMIT = 10;
/// What a timer may come early by.
constexpr Seconds ROUNDING = 1e-4;
/// After these, every hundredth failure is said.
constexpr int COMPLAINTS = 3;

Seconds uptime() { return platform().clock.uptime(); }

}  // namespace

std::uint32_t Painter::join(Client& client) {
  clients_.emplace(++lastClient_, &client);
  idleTimer_.invalidate();
  return lastClient_;
}

void Painter::leave(std::uint32_t client) {
  clients_.erase(client);
  if (process_) send(Close{client});
  // What the client will not be told any more is still owed: else one that stands still would have all its time again
  // with every canvas that goes.
  std::vector<std::uint32_t> owed;
  for (auto& [serial, order] : unanswered_) {
    if (order.client != client) continue;
    order.client = 0;
    owed.push_back(serial);
  }
  for (const std::uint32_t serial : owed) {
    if (hasAnswered_) {
      send(Ping{serial});
    } else {
      unanswered_.erase(serial);  // it loads yet, and that has a limit of its own
    }
  }
  reconsiderMoving();
  if (!clients_.empty()) return;
  startTimer_.invalidate();
  idleTimer_ = Timer::once(IDLE_LIMIT, [weak = weak_from_this()] {
    if (const auto self = weak.lock()) self->stop();
  });
}

void Painter::need() {
  if (process_ || startTimer_) return;
  start();
}

void Painter::start() {
  startTimer_.invalidate();
  hasAnswered_ = false;
  shownSince_.reset();
  startedAt_ = uptime();
  const auto weak = weak_from_this();
  process_ = launcher_.start({[weak](std::string_view bytes, const std::shared_ptr<const PictureMemory>& memory) {
                                if (const auto self = weak.lock()) self->hear(bytes, memory);
                              },
                              [weak] {
                                if (const auto self = weak.lock()) self->fail("has ended");
                              }});
  if (!process_) {
    fail("cannot be started");
    return;
  }
  const auto present = clients_;
  for (const auto& [number, client] : present) {
    if (clients_.contains(number)) client->started();
  }
  reconsiderMoving();
}

void Painter::stop() {
  process_.reset();
  unanswered_.clear();
  overdueTimer_.invalidate();
  pingTimer_.invalidate();
  isMoving_ = false;
}

void Painter::fail(const std::string& reason) {
  if (shownSince_ && uptime() - *shownSince_ >= HEALTHY_AFTER) {
    failures_ = 0;
    patience_ = PATIENCE;
  }
  stop();
  if (clients_.empty()) return;  // until somebody needs one
  ++failures_;
  if (++complaints_ <= COMPLAINTS || complaints_ % 100 == 0) {
    platform().output.printError("The painter " + reason + ", starting it again.");
  }
  const std::size_t step = std::min(static_cast<std::size_t>(failures_ - 1), PAUSES.size() - 1);
  startTimer_ = Timer::once(PAUSES.at(step), [weak = weak_from_this()] {
    if (const auto self = weak.lock()) self->start();
  });
  const auto present = clients_;
  for (const auto& [number, client] : present) {
    if (clients_.contains(number)) client->gone();
  }
}

void Painter::send(const Order& order) {
  if (process_) process_->send(encoded(order));
}

std::uint32_t Painter::newSerial(std::uint32_t client) {
  unanswered_.emplace(++lastSerial_, Unanswered{uptime(), client});
  if (!overdueTimer_) watch();
  return lastSerial_;
}

Seconds Painter::due() const {
  // Serials are given in the order of time.
  return hasAnswered_ ? unanswered_.begin()->second.sentAt + patience_ : startedAt_ + FIRST_ANSWER;
}

void Painter::watch() {
  overdueTimer_.invalidate();
  if (unanswered_.empty()) return;
  overdueTimer_ = Timer::once(std::max(0.0, due() - uptime()), [weak = weak_from_this()] {
    if (const auto self = weak.lock()) self->checkOverdue(false);
  });
}

void Painter::checkOverdue(bool isSecondLook) {
  if (unanswered_.empty() || uptime() + ROUNDING < due()) {
    watch();
  } else if (isSecondLook) {
    patience_ = std::min(patience_ * 2, MOST_PATIENCE);
    fail("does not answer");
  } else {
    overdueTimer_ = Timer::once(SECOND_LOOK, [weak = weak_from_this()] {
      if (const auto self = weak.lock()) self->checkOverdue(true);
    });
  }
}

void Painter::hear(std::string_view bytes, const std::shared_ptr<const PictureMemory>& memory) {
  const auto answer = decodedAnswer(bytes);
  if (!answer || !take(*answer, memory)) fail("answers what cannot be");
}

bool Painter::take(const Answer& answer, const std::shared_ptr<const PictureMemory>& memory) {
  if (const auto* hello = std::get_if<Hello>(&answer)) {
    if (std::exchange(hasAnswered_, true)) return false;
    watch();  // with less patience
    return hello->version == VERSION;
  }
  if (!hasAnswered_) return false;
  if (const auto* pong = std::get_if<Pong>(&answer)) return answered(pong->serial);
  const auto canvas = std::visit(
      [](const auto& a) -> std::uint32_t {
        if constexpr (requires { a.canvas; }) return a.canvas;
        return 0;
      },
      answer);
  if (canvas == 0 || canvas > lastClient_) return false;
  const auto client = clients_.find(canvas);
  if (client == clients_.end()) return true;  // it has left meanwhile
  if (const auto* done = std::get_if<Done>(&answer)) answered(done->serial);
  return client->second->hear(answer, memory);
}

bool Painter::answered(std::uint32_t serial) {
  const bool wasOwed = unanswered_.erase(serial) == 1;
  if (unanswered_.empty()) overdueTimer_.invalidate();  // nothing to wake up for
  return wasOwed;
}

void Painter::pictureShown() {
  if (!shownSince_) shownSince_ = uptime();
}

void Painter::reconsiderMoving() {
  const bool moves = process_ && std::any_of(clients_.begin(), clients_.end(),
                                             [](const auto& entry) { return entry.second->isMoving(); });
  if (moves == std::exchange(isMoving_, moves)) return;
  pingTimer_.invalidate();
  if (!moves) return;
  ping();
}

void Painter::ping() {
  pingTimer_ = Timer::once(PING_INTERVAL, [weak = weak_from_this()] {
    const auto self = weak.lock();
    if (!self) return;
    // One is enough: what is not answered in time ends the process.
    if (self->unanswered_.empty()) self->send(Ping{self->newSerial(0)});
    self->ping();
  });
}

}  // namespace dormel::paint
