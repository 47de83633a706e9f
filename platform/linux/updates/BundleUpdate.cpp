#include "platform/linux/updates/BundleUpdate.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <system_error>
#include <utility>

#include "platform/Windows.h"
#include "platform/linux/freedesktop/AppBundle.h"
#include "platform/linux/freedesktop/Tree.h"
#include "platform/linux/updates/Address.h"
#include "platform/linux/updates/Archive.h"
#include "platform/linux/updates/BundleExchange.h"

namespace dormel::updates {
namespace {

namespace fs = std::filesystem;
using Kind = Verdict::Kind;

/// What is wrong with an unpacked bundle; nothing when it is the announced one. The signature covers the archive and
/// not the list: an old archive that is offered as a new one is found out here.
std::optional<std::string> faultOf(const std::string& bundle, const Offer& offer, const std::string& identifier) {
  const auto says = [&](const char* key) { return freedesktop::bundleInfo(bundle, key).value_or(""); };
  if (says("CFBundleIdentifier") != identifier) return "another program: " + says("CFBundleIdentifier");
  if (says("CFBundleVersion") != offer.build.text() || says("CFBundleShortVersionString") != offer.version.text()) {
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

BundleUpdate::BundleUpdate(BundleFacts facts, Patience patience, Tell tell, Complain complain)
    : facts_(std::move(facts)),
      patience_(patience),
      store_(facts_.path),
      applications_(facts_.path.substr(0, facts_.path.rfind('/'))),
      tell_(std::move(tell)),
      complain_(std::move(complain)) {}

Verdict BundleUpdate::check(bool fetch) {
  const Transfer transfer("Dormel/" + facts_.build.text(), patience_);
  const Fetched feed = transfer.fetch(facts_.feed, LARGEST_FEED, patience_.document);
  if (feed.kind == Fetched::Kind::failed) complain_(feed.trouble);
  if (feed.kind == Fetched::Kind::failed) return {Kind::unreachable};
  const auto offers = feed.kind == Fetched::Kind::whole ? parseFeed(feed.bytes) : std::nullopt;
  if (!offers) {
    complain_(facts_.feed + ": this is no list of updates");
    return {Kind::unreadable};
  }
  const Offer* offer = newest(*offers);
  if (const auto waits = store_.staged()) {
    const bool stands = std::any_of(offers->begin(), offers->end(), [&](const Offer& other) {
      return other.build == waits->build && other.signature == waits->signature;
    });
    if (stands && waits->build >= offer->build) return {Kind::ready, waits->version.text()};
    if (!stands) {
      // Its maker took it back. It must not be put in place either when the one that follows it cannot be fetched.
      const FolderLock lock(applications_);
      store_.clear();
    }
  }
  if (offer == nullptr || offer->build <= facts_.build) return {Kind::current};
  if (!isOurs()) return {Kind::administrator, offer->version.text()};
  if (!fetch) return {Kind::available, offer->version.text()};
  return fetchAndKeep(*offer, transfer);
}

Verdict BundleUpdate::fetchAndKeep(const Offer& offer, const Transfer& transfer) {
  const std::string& version = offer.version.text();
  tell_({Kind::fetching, version});
  const Fetched archive = transfer.fetch(offer.address, offer.length, patience_.archive);
  if (archive.kind != Fetched::Kind::whole || archive.bytes.size() != offer.length) {
    complain_(archive.kind == Fetched::Kind::whole ? offer.address + ": shorter than announced" : archive.trouble);
    return {Kind::notFetched, version};
  }
  if (!facts_.key.verifies(archive.bytes, offer.signature)) {
    complain_(offer.address + ": the signature is wrong");
    return {Kind::notGenuine, version};
  }
  const FolderLock lock(applications_);
  if (!bundleStands())
    return {Kind::nothing};  // uninstalled meanwhile: nobody would ever take away what is kept for it
  if (const auto waits = store_.staged(); waits && waits->build >= offer.build) {
    return {Kind::ready, waits->version.text()};  // another process of ours was quicker
  }
  // Unpacked once to see that it can be, and that it is what it says.
  Verdict verdict{Kind::ready, version};
  const bool waited = store_.staged().has_value();
  if (const auto trial = unpack(offer, archive.bytes, "trial", verdict)) {
    if (const auto failure = store_.keep(offer, archive.bytes)) {
      complain_(store_.folder() + ": " + failure->message);
      verdict.kind = Kind::notKept;
    }
  }
  store_.removeFolder("trial");
  if (verdict.kind != Kind::ready && !waited) store_.clear();
  return verdict;
}

Verdict BundleUpdate::install() {
  if (!store_.exists()) return {Kind::nothing};
  const FolderLock lock(applications_);
  const auto offer = store_.staged();
  // One that is not newer was put in place before, and what was left of it is swept away.
  Verdict verdict = offer && offer->build > facts_.build ? putInPlace(*offer) : Verdict{Kind::nothing};
  if (verdict.kind == Kind::administrator || verdict.kind == Kind::notKept) {
    store_.removeFolder("new");  // the update itself may be luckier another time
  } else {
    store_.clear();
  }
  return verdict;
}

Verdict BundleUpdate::putInPlace(const Offer& offer) {
  Verdict verdict{Kind::administrator, offer.version.text()};
  if (!isOurs()) return verdict;
  const auto archive = store_.archive(offer);
  if (!archive || !facts_.key.verifies(*archive, offer.signature)) {
    complain_(store_.folder() + ": the archive is not what was kept");
    verdict.kind = Kind::notGenuine;
    return verdict;
  }
  const auto fresh = unpack(offer, *archive, "new", verdict);
  if (!fresh) return verdict;
  if (const auto failure = exchangeBundles(*fresh, facts_.path, store_.folder() + "/old")) {
    complain_(facts_.path + ": " + failure->message);
    verdict.kind = Kind::notKept;
    return verdict;
  }
  verdict.kind = Kind::installed;
  return verdict;
}

std::optional<std::string> BundleUpdate::unpack(const Offer& offer, const std::string& archive,
                                                const std::string& folder, Verdict& verdict) const {
  const auto place = store_.makeFolder(folder);
  const Unpacked unpacked = place ? unpackBundle(archive, *place) : Unpacked{{}, "no folder for it", true};
  std::string trouble = unpacked.trouble;
  if (unpacked.bundle) {
    const auto fault = faultOf(*unpacked.bundle, offer, facts_.identifier);
    if (!fault) return unpacked.bundle;
    trouble = *fault;
  }
  complain_(offer.address + ": " + trouble);
  verdict.kind = unpacked.disk ? Kind::notKept : Kind::unsuitable;
  return {};
}

bool BundleUpdate::bundleStands() const { return ::access(facts_.path.c_str(), F_OK) == 0 || errno != ENOENT; }

bool BundleUpdate::isOurs() const {
  return ::access(applications_.c_str(), W_OK | X_OK) == 0 && freedesktop::isTreeDeletable(facts_.path);
}

}  // namespace dormel::updates
