#include "platform/linux/posix/SessionTexts.h"

#include <fstream>
#include <iterator>

#include "platform/linux/posix/Environment.h"

namespace dormel::posix {
namespace {}  // namespace

SessionTexts::Table SessionTexts::read() const {
  const LanguageVariables variables{environmentVariable("LANGUAGE"), environmentVariable("LC_ALL"),
                                    environmentVariable("LC_MESSAGES"), environmentVariable("LANG")};
  for (const std::string& language : wantedLanguages(variables)) {
    const std::string path = folder_ + "/" + language + ".mo";
    std::ifstream file(path, std::ios::binary);
    if (!file) continue;  // nobody has translated it yet
    const std::string bytes{std::istreambuf_iterator<char>(file), {}};
    if (auto catalog = file.bad() ? std::nullopt : Catalog::parse(bytes)) return {language, std::move(catalog)};
    output_.printError("Dormel: the texts in " + path + " cannot be read. They are shown in English.");
    break;
  }
  return {};
}

const SessionTexts::Table& SessionTexts::table() const {
  if (!table_) table_ = read();
  return *table_;
}

std::string SessionTexts::translated(std::string_view english) const {
  const auto& catalog = table().catalog;
  const std::string* const found = catalog ? catalog->find(english) : nullptr;
  return found != nullptr ? *found : std::string(english);
}

std::string SessionTexts::translated(std::string_view one, std::string_view many, int count) const {
  const auto& catalog = table().catalog;
  const std::string* const found = catalog ? catalog->find(one, many, count) : nullptr;
  return found != nullptr ? *found : std::string(count == 1 ? one : many);
}

std::string SessionTexts::language() const { return table().language; }

}  // namespace dormel::posix
