#include "platform/linux/qt/QtRunLoop.h"

#include <QCoreApplication>
#include <QEvent>
#include <QSocketNotifier>
#include <QTimer>
#include <chrono>
#include <cmath>
#include <utility>

namespace dormel::qt {
namespace {

const QEvent::Type POSTED = static_cast<QEvent::Type>(QEvent::registerEventType());
constexpr Seconds COARSE_FROM = 1.0;

std::chrono::milliseconds milliseconds(Seconds seconds) {
  return std::chrono::milliseconds(std::llround(seconds * 1000));
}

Qt::TimerType precision(Seconds interval) { return interval >= COARSE_FROM ? Qt::CoarseTimer : Qt::PreciseTimer; }

}  // namespace

QtRunLoop::QtRunLoop() = default;

QtRunLoop::~QtRunLoop() = default;

void QtRunLoop::async(Task task) {
  bool first = false;
  {
    const std::lock_guard lock(mutex_);
    first = posted_.empty();
    posted_.push_back(std::move(task));
  }
  if (first) QCoreApplication::postEvent(this, new QEvent(POSTED));
}

bool QtRunLoop::event(QEvent* event) {
  if (event->type() != POSTED) return QObject::event(event);
  runPosted();
  return true;
}

void QtRunLoop::runPosted() {
  std::vector<Task> now;
  {
    const std::lock_guard lock(mutex_);
    now.swap(posted_);
  }
  for (const Task& task : now) task();
}

void QtRunLoop::asyncAfter(Seconds delay, Task task) {
  QTimer::singleShot(milliseconds(delay), Qt::PreciseTimer, this, std::move(task));
}

TimerId QtRunLoop::schedule(Seconds interval, bool repeats, Task task) {
  const std::uint64_t id = ++lastId_;
  auto timer = std::make_unique<QTimer>();
  timer->setTimerType(precision(interval));
  timer->setSingleShot(!repeats);
  connect(timer.get(), &QTimer::timeout, this, [task = std::move(task)] {
    const Task running = task;  // the tick may cancel its own timer
    running();
  });
  timer->start(milliseconds(interval));
  timers_.emplace(id, std::move(timer));
  return static_cast<TimerId>(id);
}

void QtRunLoop::cancel(TimerId id) {
  const auto found = timers_.find(static_cast<std::uint64_t>(id));
  if (found == timers_.end()) return;
  QTimer* timer = found->second.release();
  timers_.erase(found);
  timer->stop();
  timer->deleteLater();  // it may be the one that is ticking
}

void QtRunLoop::watchReadable(int fd, std::function<bool()> action) {
  auto* notifier = new QSocketNotifier(fd, QSocketNotifier::Read, this);
  connect(notifier, &QSocketNotifier::activated, this, [notifier, action = std::move(action)] {
    if (action()) return;
    notifier->setEnabled(false);  // a descriptor at its end stays readable for ever
    notifier->deleteLater();
  });
}

}  // namespace dormel::qt
