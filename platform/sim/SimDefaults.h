// The defaults store of a simulated machine: what is stored, and what this process could not write yet.
#pragma once

#include <map>
#include <string>

#include "platform/Defaults.h"
#include "platform/sim/SimJournal.h"

namespace dormel {

class StandardOutput;

class SimDefaults : public DefaultsStore {
 public:
  SimDefaults(SimJournal& journal, StandardOutput& output) : journal_(journal), output_(output) {}

  [[nodiscard]] std::optional<PropertyListValue> object(std::string_view key) const override;
  void set(std::string_view key, PropertyListValue value) override;
  void remove(std::string_view key) override;
  void removeDomain() override;
  bool synchronize() override;

  // The world's side.
  /// Another process writes (nothing: removes) a value.
  void writeFromOutside(std::string_view key, std::optional<PropertyListValue> value);
  void putInteger(std::string_view key, std::int64_t value);
  void putBoolean(std::string_view key, bool value);
  /// While false, nothing can be written.
  void setWritable(bool writable) { writable_ = writable; }
  /// What every process but this one sees.
  [[nodiscard]] std::optional<PropertyListValue> stored(std::string_view key) const;
  /// The process is gone, and with it what it could not write.
  void processEnded() { unwritten_.clear(); }

 private:
  void change(std::string_view key, std::optional<PropertyListValue> value);

  SimJournal& journal_;
  StandardOutput& output_;
  PropertyListDictionary stored_;
  std::map<std::string, std::optional<PropertyListValue>, std::less<>> unwritten_;
  bool writable_ = true;
};

}  // namespace dormel
