#include "core/Observable.h"

#include <algorithm>

namespace dormel {

Observation& Observation::operator=(Observation&& other) noexcept {
  if (this != &other) {
    end();
    list_ = std::move(other.list_);
    id_ = std::exchange(other.id_, 0);
  }
  return *this;
}

void Observation::end() {
  if (id_ == 0) return;
  if (const auto list = list_.lock()) list->remove(id_);
  id_ = 0;
}

Observation ObserverList::add(std::function<void()> observer) {
  const std::uint64_t id = ++lastId_;
  entries_.push_back({id, std::make_shared<std::function<void()>>(std::move(observer))});
  return {weak_from_this(), id};
}

void ObserverList::remove(std::uint64_t id) {
  std::erase_if(entries_, [id](const Entry& entry) { return entry.id == id; });
}

void ObserverList::notify() {
  if (entries_.empty()) return;
  const std::vector<Entry> now = entries_;
  for (const Entry& entry : now) {
    const bool still = std::any_of(entries_.begin(), entries_.end(), [&](const Entry& e) { return e.id == entry.id; });
    if (still) (*entry.observer)();
  }
}

}  // namespace dormel
