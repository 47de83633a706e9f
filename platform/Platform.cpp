#include "platform/Platform.h"

#include <cassert>
#include <cstdlib>
#include <utility>

#include "platform/Defaults.h"
#include "platform/Process.h"
#include "platform/RunLoop.h"

namespace dormel {
namespace {

Platform* inForce = nullptr;
std::uint64_t generation = 0;
std::uint64_t lastGeneration = 0;
PlatformScope* currentScope = nullptr;

}  // namespace

Platform& platform() {
  assert(inForce != nullptr);
  if (inForce == nullptr) std::abort();
  return *inForce;
}

std::uint64_t platformGeneration() { return generation; }

PlatformScope::PlatformScope(Platform& services)
    : previous_(std::exchange(inForce, &services)),
      previousGeneration_(std::exchange(generation, ++lastGeneration)),
      previousScope_(std::exchange(currentScope, this)) {}

void atPlatformEnd(std::function<void()> task) {
  assert(currentScope != nullptr);
  if (currentScope != nullptr) currentScope->endings_.push_back(std::move(task));
}

PlatformScope::~PlatformScope() {
  for (const auto& ending : std::exchange(endings_, {})) ending();
  currentScope = previousScope_;
  inForce = previous_;
  generation = previousGeneration_;
}

void Process::exit(int status) {
  exit([status] { return status; });
  std::abort();  // unreachable; the compiler does not know it of a virtual call
}

Timer::Timer(Timer&& other) noexcept : loop_(other.loop_), id_(std::exchange(other.id_, TimerId::none)) {}

Timer& Timer::operator=(Timer&& other) noexcept {
  if (this != &other) {
    invalidate();
    loop_ = other.loop_;
    id_ = std::exchange(other.id_, TimerId::none);
  }
  return *this;
}

Timer Timer::repeating(Seconds interval, Task tick, Seconds accuracy) {
  return repeating(platform().runLoop, interval, std::move(tick), accuracy);
}

Timer Timer::repeating(RunLoop& loop, Seconds interval, Task tick, Seconds accuracy) {
  return {loop, loop.schedule(interval, true, std::move(tick), accuracy)};
}

Timer Timer::once(Seconds delay, Task tick) { return once(platform().runLoop, delay, std::move(tick)); }

Timer Timer::once(RunLoop& loop, Seconds delay, Task tick) {
  return {loop, loop.schedule(delay, false, std::move(tick))};
}

void Timer::invalidate() {
  if (id_ != TimerId::none) loop_->cancel(std::exchange(id_, TimerId::none));
}

std::optional<std::int64_t> DefaultsStore::integer(std::string_view key) const {
  const auto value = object(key);
  if (!value) return {};
  const auto* number = value->as<std::int64_t>();
  return number == nullptr ? std::nullopt : std::optional(*number);
}

std::optional<bool> DefaultsStore::boolean(std::string_view key) const {
  const auto value = object(key);
  if (!value) return {};
  const auto* flag = value->as<bool>();
  return flag == nullptr ? std::nullopt : std::optional(*flag);
}

}  // namespace dormel
