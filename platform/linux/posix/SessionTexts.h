// Texts in the language that the session's variables ask for, from the bundle's tables. A table is read when the first
// text is wanted. Main thread only.
#pragma once

#include <optional>
#include <string>

#include "platform/Process.h"
#include "platform/Texts.h"
#include "platform/common/Catalog.h"

namespace dormel::posix {

class SessionTexts final : public Texts {
 public:
  /// `folder` holds the tables, "de.mo". One that is there and cannot be used is said once on `output`, which outlives
  /// this; the texts are English then.
  SessionTexts(std::string folder, StandardOutput& output) : folder_(std::move(folder)), output_(output) {}

  [[nodiscard]] std::string translated(std::string_view english) const override;
  [[nodiscard]] std::string translated(std::string_view one, std::string_view many, int count) const override;
  [[nodiscard]] std::string language() const override;

 private:
  struct Table {
    std::string language = "en";
    std::optional<Catalog> catalog;
  };
  const Table& table() const;
  [[nodiscard]] Table read() const;

  const std::string folder_;
  StandardOutput& output_;
  mutable std::optional<Table> table_;
};

}  // namespace dormel::posix
