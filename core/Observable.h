// Observable values: a stored property that tells its owner's observers when, and only when, it really changes.
//
// Main thread only. Observers are told that something changed, not what: they read through and hold no copies.
// An observer may subscribe, unsubscribe or destroy the observed object while it is being told.
#pragma once

#include <functional>
#include <memory>
#include <utility>

#include "platform/common/HandlerList.h"

namespace dormel {

/// Ends the observation when it is destroyed. May outlive the observed object.
using Observation = std::unique_ptr<Registration>;

/// Base of the objects that screens observe.
class Observable {
 public:
  Observable() = default;
  Observable(const Observable&) = delete;
  Observable& operator=(const Observable&) = delete;
  virtual ~Observable() = default;

  /// Calls `observer` after every change of a published property until the observation ends.
  [[nodiscard]] Observation observe(std::function<void()> observer) const {
    return observers_.add(std::move(observer));
  }

 protected:
  void notifyObservers() { observers_.call(); }

 private:
  template <typename T>
  friend class Published;
  mutable HandlerList<> observers_;
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

  /// For what does not count when two values are compared: nobody is told of it.
  T& unobserved() { return value_; }

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
