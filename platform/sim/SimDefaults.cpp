#include "platform/sim/SimDefaults.h"

#include <utility>

#include "platform/Process.h"

namespace dormel {
namespace {

std::string shown(const std::optional<PropertyListValue>& value) {
  if (!value) return "(none)";
  if (const auto* flag = value->as<bool>()) return *flag ? "true" : "false";
  if (const auto* number = value->as<std::int64_t>()) return std::to_string(*number);
  if (const auto* text = value->as<std::string>()) return *text;
  return "(other)";
}

void assign(PropertyListDictionary& store, std::string_view key, std::optional<PropertyListValue> value) {
  const auto at = store.find(key);
  if (!value) {
    if (at != store.end()) store.erase(at);
  } else if (at != store.end()) {
    at->second = std::move(*value);
  } else {
    store.emplace(key, std::move(*value));
  }
}

}  // namespace

std::optional<PropertyListValue> SimDefaults::object(std::string_view key) const {
  if (!unwritten_.empty()) {
    if (const auto mine = unwritten_.find(key); mine != unwritten_.end()) return mine->second;
  }
  return stored(key);
}

void SimDefaults::set(std::string_view key, PropertyListValue value) { change(key, std::move(value)); }

void SimDefaults::remove(std::string_view key) { change(key, std::nullopt); }

void SimDefaults::change(std::string_view key, std::optional<PropertyListValue> value) {
  if (!writable_) {
    output_.printError("Settings could not be written: No space left on device");
    unwritten_.insert_or_assign(std::string(key), std::move(value));
    return;
  }
  synchronize();
  journal_.note("default ", key, " = ", shown(value));
  assign(stored_, key, std::move(value));
}

void SimDefaults::removeDomain() {
  unwritten_.clear();
  if (!writable_) {
    output_.printError("Settings could not be removed: No space left on device");
    for (const auto& [key, value] : stored_) unwritten_.emplace(key, std::nullopt);
    return;
  }
  journal_.note("defaults removed");
  stored_.clear();
}

bool SimDefaults::synchronize() {
  if (!writable_) return unwritten_.empty();
  for (auto& [key, value] : unwritten_) assign(stored_, key, std::move(value));
  unwritten_.clear();
  return true;
}

void SimDefaults::writeFromOutside(std::string_view key, std::optional<PropertyListValue> value) {
  assign(stored_, key, std::move(value));
}

void SimDefaults::putInteger(std::string_view key, std::int64_t value) { stored_[std::string(key)].value = value; }

void SimDefaults::putBoolean(std::string_view key, bool value) { stored_[std::string(key)].value = value; }

std::optional<PropertyListValue> SimDefaults::stored(std::string_view key) const {
  const auto at = stored_.find(key);
  return at == stored_.end() ? std::nullopt : std::optional(at->second);
}

}  // namespace dormel
