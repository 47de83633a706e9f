#include "platform/linux/updates/Verdict.h"

#include <algorithm>
#include <iterator>

#include "platform/linux/updates/BundleVersion.h"

namespace dormel::updates {
namespace {

using Kind = Verdict::Kind;

struct Wording {
  Kind kind;
  std::string_view word;
  std::string_view sentence;  // %n: the update with its version; %o: the program with its own
};
constexpr Wording WORDINGS[] = {
    {Kind::nothing, "nothing", ""},
    {Kind::current, "current", "%o is the newest version."},
    {Kind::available, "available", "%n is available."},
    {Kind::administrator, "administrator",
     "%n is available. Only an administrator of this computer can install it, because Dormel was installed by one."},
    {Kind::fetching, "fetching", "Downloading %n…"},
    {Kind::ready, "ready", "%n is ready and will be installed when you open Dormel again."},
    {Kind::installed, "installed", "%n is installed."},
    {Kind::unreachable, "unreachable", "The update server did not answer. Dormel will try again later."},
    {Kind::unreadable, "unreadable",
     "The update server's answer could not be understood. Dormel will try again later."},
    {Kind::notFetched, "not-fetched", "%n could not be downloaded. Nothing was changed; Dormel will try again later."},
    {Kind::notGenuine, "not-genuine",
     "The download of %n was damaged or not genuine, so it was thrown away. Nothing was changed."},
    {Kind::unsuitable, "unsuitable",
     "The download of %n was not what it should have been, so it was thrown away. Nothing was changed."},
    {Kind::notKept, "not-kept", "%n could not be saved on this disk. Nothing was changed."},
    {Kind::broken, "broken", "Dormel could not look for updates. It will try again later."},
};

std::string named(const std::string& version) { return version.empty() ? "The update" : "Dormel " + version; }

void replace(std::string& text, std::string_view mark, const std::string& by) {
  if (const auto at = text.find(mark); at != std::string::npos) text.replace(at, mark.size(), by);
}

const Wording& wordingOf(Kind kind) {
  return *std::find_if(std::begin(WORDINGS), std::end(WORDINGS), [kind](const Wording& w) { return w.kind == kind; });
}

}  // namespace

std::string write(const Verdict& verdict) {
  std::string line(wordingOf(verdict.kind).word);
  return verdict.version.empty() ? line : line + " " + verdict.version;
}

std::optional<Verdict> parseVerdict(std::string_view line) {
  const std::string_view word = line.substr(0, line.find(' '));
  const auto found =
      std::find_if(std::begin(WORDINGS), std::end(WORDINGS), [word](const Wording& w) { return w.word == word; });
  if (found == std::end(WORDINGS)) return {};
  if (word.size() == line.size()) return Verdict{found->kind};
  const auto version = BundleVersion::parse(line.substr(word.size() + 1));
  if (!version) return {};
  return Verdict{found->kind, version->text()};
}

std::string sentence(const Verdict& verdict, const std::string& own) {
  std::string text(wordingOf(verdict.kind).sentence);
  replace(text, "%n", named(verdict.version));
  replace(text, "%o", "Dormel " + own);
  return text;
}

}  // namespace dormel::updates
