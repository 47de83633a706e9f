#include "platform/linux/updates/UpdateWorker.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <system_error>
#include <utility>

#include "platform/Bundle.h"
#include "platform/linux/freedesktop/AppBundle.h"
#include "platform/linux/freedesktop/Tree.h"
#include "platform/linux/updates/Address.h"
#include "platform/linux/updates/Archive.h"
#include "platform/linux/updates/BundleExchange.h"

namespace dormel::updates {
namespace {

namespace fs = std::filesystem;
using Kind = UpdateResult::Kind;

/// What is wrong with an unpacked bundle; nothing when it is the announced one. The signature covers the archive and
/// not the list: an old archive that is offered as a new one is found out here.
std::optional<std::string> faultOf(const std::string& bundle, const FeedEntry& entry, const std::string& identifier) {
  const auto says = [&](const char* key) { return freedesktop::bundleInfo(bundle, key).value_or(""); };
  if (says("CFBundleIdentifier") != identifier) return "another program: " + says("CFBundleIdentifier");
  if (says("CFBundleVersion") != entry.build.text() || says("CFBundleShortVersionString") != entry.version.text()) {
    return "another version: " + says("CFBundleShortVersionString") + " (" + says("CFBundleVersion") + ")";
  }
  const std::string program = freedesktop::bundleExecutable(bundle);
  std::error_code error;
  if (!fs::is_regular_file(program, error) || ::access(program.c_str(), X_OK) != 0) return "no program in it";
  return {};
}

}  // namespace

std::optional<BundleFacts> BundleFacts::of(const Bundle& bundle) {
  const auto feed = bundle.info("SUFeedURL");
  const auto key = PublicKey::fromBase64(bundle.info("SUPublicEDKey").value_or(""));
  auto build = BundleVersion::parse(bundle.info("CFBundleVersion").value_or(""));
  if (!feed || !isAllowedAddress(*feed) || !key || !build) return {};
  return BundleFacts{bundle.path(), bundle.info("CFBundleIdentifier").value_or(""), std::move(*build), *feed, *key};
}

UpdateWorker::UpdateWorker(BundleFacts facts, Timeouts timeouts, Tell tell, Report report)
    : facts_(std::move(facts)),
      timeouts_(timeouts),
      store_(facts_.path),
      applications_(facts_.path.substr(0, facts_.path.rfind('/'))),
      tell_(std::move(tell)),
      report_(std::move(report)) {}

UpdateResult UpdateWorker::check(bool fetch) {
  const Download download("Dormel/" + facts_.build.text(), timeouts_);
  const Fetched feed = download.fetch(facts_.feed, LARGEST_FEED, timeouts_.document);
  if (feed.kind == Fetched::Kind::failed) report_(feed.trouble);
  if (feed.kind == Fetched::Kind::failed) return {Kind::unreachable};
  const auto entries = feed.kind == Fetched::Kind::whole ? parseFeed(feed.bytes) : std::nullopt;
  if (!entries) {
    report_(facts_.feed + ": this is no list of updates");
    return {Kind::unreadable};
  }
  const FeedEntry* entry = newest(*entries);
  if (const auto waits = store_.staged()) {
    const bool stands = std::any_of(entries->begin(), entries->end(), [&](const FeedEntry& other) {
      return other.build == waits->build && other.signature == waits->signature;
    });
    if (stands && waits->build >= entry->build) return {Kind::ready, waits->version.text()};
    if (!stands) {
      // Its maker took it back. It must not be put in place either when the one that follows it cannot be fetched.
      const FolderLock lock(applications_);
      store_.clear();
    }
  }
  if (entry == nullptr || entry->build <= facts_.build) return {Kind::current};
  if (!isOurs()) return {Kind::administrator, entry->version.text()};
  if (!fetch) return {Kind::available, entry->version.text()};
  return fetchAndKeep(*entry, download);
}

UpdateResult UpdateWorker::fetchAndKeep(const FeedEntry& entry, const Download& download) {
  const std::string& version = entry.version.text();
  tell_({Kind::fetching, version});
  const Fetched archive = download.fetch(entry.address, entry.length, timeouts_.archive);
  if (archive.kind != Fetched::Kind::whole || archive.bytes.size() != entry.length) {
    report_(archive.kind == Fetched::Kind::whole ? entry.address + ": shorter than announced" : archive.trouble);
    return {Kind::notFetched, version};
  }
  if (!facts_.key.verifies(archive.bytes, entry.signature)) {
    report_(entry.address + ": the signature is wrong");
    return {Kind::notGenuine, version};
  }
  const FolderLock lock(applications_);
  if (!bundleStands())
    return {Kind::nothing};  // uninstalled meanwhile: nobody would ever take away what is kept for it
  if (const auto waits = store_.staged(); waits && waits->build >= entry.build) {
    return {Kind::ready, waits->version.text()};  // another process of ours was quicker
  }
  // Unpacked once to see that it can be, and that it is what it says.
  UpdateResult result{Kind::ready, version};
  const bool waited = store_.staged().has_value();
  if (const auto trial = unpack(entry, archive.bytes, "trial", result)) {
    if (const auto failure = store_.keep(entry, archive.bytes)) {
      report_(store_.folder() + ": " + failure->message);
      result.kind = Kind::notKept;
    }
  }
  store_.removeFolder("trial");
  if (result.kind != Kind::ready && !waited) store_.clear();
  return result;
}

UpdateResult UpdateWorker::install() {
  if (!store_.exists()) return {Kind::nothing};
  const FolderLock lock(applications_);
  const auto entry = store_.staged();
  // One that is not newer was put in place before, and what was left of it is swept away.
  UpdateResult result = entry && entry->build > facts_.build ? putInPlace(*entry) : UpdateResult{Kind::nothing};
  if (result.kind == Kind::administrator || result.kind == Kind::notKept) {
    store_.removeFolder("new");  // the update itself may be luckier another time
  } else {
    store_.clear();
  }
  return result;
}

UpdateResult UpdateWorker::putInPlace(const FeedEntry& entry) {
  UpdateResult result{Kind::administrator, entry.version.text()};
  if (!isOurs()) return result;
  const auto archive = store_.archive(entry);
  if (!archive || !facts_.key.verifies(*archive, entry.signature)) {
    report_(store_.folder() + ": the archive is not what was kept");
    result.kind = Kind::notGenuine;
    return result;
  }
  const auto fresh = unpack(entry, *archive, "new", result);
  if (!fresh) return result;
  if (const auto failure = exchangeBundles(*fresh, facts_.path, store_.folder() + "/old")) {
    report_(facts_.path + ": " + failure->message);
    result.kind = Kind::notKept;
    return result;
  }
  result.kind = Kind::installed;
  return result;
}

std::optional<std::string> UpdateWorker::unpack(const FeedEntry& entry, const std::string& archive,
                                                const std::string& folder, UpdateResult& result) const {
  const auto place = store_.makeFolder(folder);
  const Unpacked unpacked = place ? unpackBundle(archive, *place) : Unpacked{{}, "no folder for it", true};
  std::string trouble = unpacked.trouble;
  if (unpacked.bundle) {
    const auto fault = faultOf(*unpacked.bundle, entry, facts_.identifier);
    if (!fault) return unpacked.bundle;
    trouble = *fault;
  }
  report_(entry.address + ": " + trouble);
  result.kind = unpacked.disk ? Kind::notKept : Kind::unsuitable;
  return {};
}

bool UpdateWorker::bundleStands() const { return ::access(facts_.path.c_str(), F_OK) == 0 || errno != ENOENT; }

bool UpdateWorker::isOurs() const {
  return ::access(applications_.c_str(), W_OK | X_OK) == 0 && freedesktop::isTreeDeletable(facts_.path);
}

}  // namespace dormel::updates
