// Texts of the simulated machine: English as the sources have it, a language's own table, or English with every text
// between marks, which shows what was never looked up.
#pragma once

#include "platform/Texts.h"
#include "platform/common/Catalog.h"

namespace dormel {

class SimTexts : public Texts {
 public:
  [[nodiscard]] std::string translated(std::string_view english) const override {
    const std::string* found = catalog_ ? catalog_->find(english) : nullptr;
    return marked(found != nullptr ? *found : std::string(english));
  }
  [[nodiscard]] std::string translated(std::string_view one, std::string_view many, int count) const override {
    const std::string* found = catalog_ ? catalog_->find(one, many, count) : nullptr;
    return marked(found != nullptr ? *found : std::string(count == 1 ? one : many));
  }
  [[nodiscard]] std::string language() const override { return language_; }

  void setLanguage(std::string language, Catalog catalog) {
    language_ = std::move(language);
    catalog_ = std::move(catalog);
  }
  /// Every text that is looked up stands between "‹" and "›" from now on.
  void setMarked(bool on) { isMarked_ = on; }

 private:
  [[nodiscard]] std::string marked(const std::string& text) const { return isMarked_ ? "‹" + text + "›" : text; }

  std::string language_ = "en";
  std::optional<Catalog> catalog_;
  bool isMarked_ = false;
};

}  // namespace dormel
