// The per-user defaults store: typed values under string keys, in the domain BUNDLE_IDENTIFIER, seen at once by
// every process of the user. All calls may come from any thread.
#pragma once

#include <optional>
#include <string_view>

#include "platform/PropertyList.h"

namespace dormel {

class DefaultsStore {
 public:
  virtual ~DefaultsStore() = default;

  /// The value under `key` as last written by any process; nothing when there is none.
  [[nodiscard]] virtual std::optional<PropertyListValue> object(std::string_view key) const = 0;

  /// Puts `value` under `key`, leaving every other key as it is even when another process writes at the same
  /// moment. A write that fails (disk full, no permission) loses nothing that was stored, says so in one line
  /// on standard error, and the new value holds for this process until it can be written.
  virtual void set(std::string_view key, PropertyListValue value) = 0;

  /// Takes `key` out of the store. Failure as for `set`.
  virtual void remove(std::string_view key) = 0;

  /// Removes the whole domain.
  virtual void removeDomain() = 0;

  /// Writes what could not be written before; true when nothing is left unwritten.
  virtual bool synchronize() = 0;

  // What most callers need. A value of another type counts as absent.
  [[nodiscard]] std::optional<std::int64_t> integer(std::string_view key) const;
  [[nodiscard]] std::optional<bool> boolean(std::string_view key) const;
};

}  // namespace dormel
