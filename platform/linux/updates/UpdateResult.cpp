#include "platform/linux/updates/UpdateResult.h"

#include <algorithm>
#include <iterator>

#include "platform/Texts.h"
#include "platform/linux/updates/BundleVersion.h"

namespace dormel::updates {
namespace {

using Kind = UpdateResult::Kind;

struct Wording {
  Kind kind;
  std::string_view word;
  std::string_view sentence;  // %1: the update with its version; %2: the program with its own
};
constexpr Wording WORDINGS[] = {
    {Kind::nothing, "nothing", ""},
    {Kind::current, "current", translatable("%2 is the newest version.")},
    {Kind::available, "available", translatable("%1 is available.")},
    {Kind::administrator, "administrator",
     translatable("%1 is available. Only an administrator of this computer can install it, because Dormel was "
                  "installed by one.")},
    {Kind::fetching, "fetching", translatable("Downloading %1…")},
    {Kind::ready, "ready", translatable("%1 is ready and will be installed when you open Dormel again.")},
    {Kind::installed, "installed", translatable("%1 is installed.")},
    {Kind::unreachable, "unreachable", translatable("The update server did not answer. Dormel will try again later.")},
    {Kind::unreadable, "unreadable",
     translatable("The update server's answer could not be understood. Dormel will try again later.")},
    {Kind::notFetched, "not-fetched",
     translatable("%1 could not be downloaded. Nothing was changed; Dormel will try again later.")},
    {Kind::notGenuine, "not-genuine",
     translatable("The download of %1 was damaged or not genuine, so it was thrown away. Nothing was changed.")},
    {Kind::unsuitable, "unsuitable",
     translatable("The download of %1 was not what it should have been, so it was thrown away. Nothing was changed.")},
    {Kind::notKept, "not-kept", translatable("%1 could not be saved on this disk. Nothing was changed.")},
    {Kind::broken, "broken", translatable("Dormel could not look for updates. It will try again later.")},
};

std::string named(const std::string& version) {
  return version.empty() ? translate("The update") : "Dormel " + version;
}

const Wording& wordingOf(Kind kind) {
  return *std::find_if(std::begin(WORDINGS), std::end(WORDINGS), [kind](const Wording& w) { return w.kind == kind; });
}

}  // namespace

std::string write(const UpdateResult& result) {
  std::string line(wordingOf(result.kind).word);
  return result.version.empty() ? line : line + " " + result.version;
}

std::optional<UpdateResult> parseResult(std::string_view line) {
  const std::string_view word = line.substr(0, line.find(' '));
  const auto found =
      std::find_if(std::begin(WORDINGS), std::end(WORDINGS), [word](const Wording& w) { return w.word == word; });
  if (found == std::end(WORDINGS)) return {};
  if (word.size() == line.size()) return UpdateResult{found->kind};
  const auto version = BundleVersion::parse(line.substr(word.size() + 1));
  if (!version) return {};
  return UpdateResult{found->kind, version->text()};
}

std::string sentence(const UpdateResult& result, const std::string& own) {
  const std::string_view sentence = wordingOf(result.kind).sentence;
  return sentence.empty() ? std::string() : translate(sentence, {named(result.version), "Dormel " + own});
}

}  // namespace dormel::updates
