// Observable values: a stored property that tells its owner's observers when, and only when, it really changes.
//
// Main thread only. Observers are told that something changed, not what: they read through and hold no copies.
// An observer may subscribe, unsubscribe or destroy the observed object while it is being told.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace dormel {

class ObserverList;

/// Ends the observation when it is destroyed. May outlive the observed object.
class Observation {
 public:
  Observation() = default;
  Observation(const Observation&) = delete;
  Observation& operator=(const Observation&) = delete;
  Observation(Observation&& other) noexcept : list_(std::move(other.list_)), id_(std::exchange(other.id_, 0)) {}
  Observation& operator=(Observation&& other) noexcept;
  ~Observation() { end(); }

  void end();

 private:
  friend class ObserverList;
  Observation(std::weak_ptr<ObserverList> list, std::uint64_t id) : list_(std::move(list)), id_(id) {}

  std::weak_ptr<ObserverList> list_;
  std::uint64_t id_ = 0;
};

class ObserverList : public std::enable_shared_from_this<ObserverList> {
 public:
  [[nodiscard]] Observation add(std::function<void()> observer);
  void remove(std::uint64_t id);
  void notify();

 private:
  struct Entry {
    std::uint64_t id;
    std::shared_ptr<std::function<void()>> observer;
  };
  std::vector<Entry> entries_;
  std::uint64_t lastId_ = 0;
};

/// Base of the objects that screens observe.
class Observable {
 public:
  Observable() : observers_(std::make_shared<ObserverList>()) {}
  Observable(const Observable&) = delete;
  Observable& operator=(const Observable&) = delete;
  virtual ~Observable() = default;

  /// Calls `observer` after every change of a published property until the observation ends.
  [[nodiscard]] Observation observe(std::function<void()> observer) const {
    return observers_->add(std::move(observer));
  }

 protected:
  void notifyObservers() {
    const std::shared_ptr<ObserverList> keep = observers_;  // an observer may destroy this object
    keep->notify();
  }

 private:
  template <typename T>
  friend class Published;
  std::shared_ptr<ObserverList> observers_;
};

/// One stored property of an Observable. Assigning an equal value tells nobody.
template <typename T>
class Published {
 public:
  Published(Observable* owner, T initial) : owner_(owner), value_(std::move(initial)) {}
  Published(const Published&) = delete;
  Published& operator=(const Published&) = delete;

  const T& operator*() const { return value_; }
  const T* operator->() const { return &value_; }
  operator const T&() const { return value_; }  // NOLINT(google-explicit-constructor): reads like the field it is

  Published& operator=(T next) {
    if (!(next == value_)) {
      value_ = std::move(next);
      owner_->notifyObservers();
    }
    return *this;
  }

 private:
  Observable* owner_;
  T value_;
};

}  // namespace dormel
