#include "platform/linux/updates/HelperProcess.h"

#include <poll.h>
#include <sys/epoll.h>

#include <cerrno>
#include <chrono>
#include <utility>

#include "platform/linux/updates/BundleExchange.h"

namespace dormel::updates {
namespace {

// Unpacking takes a second; a disk that takes a minute for it must not keep the window from its user for ever.
constexpr std::chrono::milliseconds INSTALL_LIMIT{60'000};

std::optional<UpdateResult> nextResult(posix::PipedProcess& process) {
  const auto line = process.nextLine();
  if (!line) return {};
  return parseResult(*line).value_or(UpdateResult{});
}

}  // namespace

HelperProcess::HelperProcess(EventLoop& loop, std::string program, const std::string& bundle)
    : loop_(loop), program_(std::move(program)), bundle_(bundle), store_(bundle) {}

HelperProcess::~HelperProcess() = default;

void HelperProcess::check(bool fetch, std::function<void(const UpdateResult&)> onResult, Task onEnd) {
  cancel();
  onResult_ = std::move(onResult);
  onEnd_ = std::move(onEnd);
  process_ = posix::PipedProcess::start(
      program_, fetch ? std::vector<std::string>{"check", "--fetch"} : std::vector<std::string>{"check"});
  if (process_) {
    output_ = loop_.watch(process_->descriptor(), EPOLLIN, [this](std::uint32_t) { hear(); });
  } else {
    failure_ = Timer::once(loop_, 0, [this] { end(); });
  }
}

void HelperProcess::hear() {
  const posix::PipedProcess* heard = process_.get();
  const bool isOver = !process_->read();
  while (process_.get() == heard) {  // who is told may cancel it
    const auto result = nextResult(*process_);
    if (!result) break;
    const auto tell = onResult_;
    tell(*result);
  }
  if (isOver && process_.get() == heard) end();
}

void HelperProcess::end() {
  const Task onEnd = std::exchange(onEnd_, {});
  cancel();
  if (onEnd) onEnd();
}

void HelperProcess::cancel() {
  failure_.invalidate();
  output_.reset();
  process_.reset();
  onResult_ = {};
  onEnd_ = {};
}

std::optional<std::string> HelperProcess::waiting() const {
  const auto entry = store_.staged();
  return entry ? std::optional(entry->version.text()) : std::nullopt;
}

UpdateResult HelperProcess::install() {
  if (!store_.exists()) return {UpdateResult::Kind::nothing};
  UpdateResult result;
  if (const auto process = posix::PipedProcess::start(program_, {"install"})) {
    const auto end = std::chrono::steady_clock::now() + INSTALL_LIMIT;
    while (process->read()) {
      const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
      pollfd output{process->descriptor(), POLLIN, 0};
      if (left.count() <= 0 || (::poll(&output, 1, static_cast<int>(left.count())) < 0 && errno != EINTR)) break;
    }
    while (const auto next = nextResult(*process)) result = *next;
  }
  // It may have been ended at the worst of moments.
  repairExchange(bundle_, store_.folder() + "/old");
  return result;
}

void HelperProcess::clear() {
  // Not in the middle of what another process's helper keeps.
  const FolderLock lock(bundle_.substr(0, bundle_.rfind('/')));
  store_.clear();
}

}  // namespace dormel::updates
