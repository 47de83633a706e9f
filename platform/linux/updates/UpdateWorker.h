// The work of the update helper: looking for an update, verifying and keeping it, putting it in place.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "platform/linux/updates/Download.h"
#include "platform/linux/updates/Signature.h"
#include "platform/linux/updates/UpdateResult.h"
#include "platform/linux/updates/UpdateStore.h"

namespace dormel {
class Bundle;
}

namespace dormel::updates {

/// What a bundle says about its updates.
struct BundleFacts {
  std::string path;
  std::string identifier;
  BundleVersion build;
  std::string feed;
  PublicKey key;

  /// Nothing when the bundle names no feed, or no key to trust, or has no version to compare with.
  [[nodiscard]] static std::optional<BundleFacts> of(const Bundle& bundle);
};

class UpdateWorker {
 public:
  using Tell = std::function<void(const UpdateResult&)>;
  using Report = std::function<void(const std::string&)>;

  /// `tell` hears of what takes time, `report` what an operator wants to know about a failure.
  UpdateWorker(BundleFacts facts, Timeouts timeouts, Tell tell, Report report);

  /// Reads the feed; with `fetch`, fetches what is newer, verifies it and keeps it. What waits already is not fetched
  /// again, and thrown away when its maker took it back. Whatever goes wrong, the bundle and what was kept before stay
  /// as they were.
  [[nodiscard]] UpdateResult check(bool fetch);

  /// Verifies once more what waits and puts it in the bundle's place. What waits and cannot be used is thrown away.
  [[nodiscard]] UpdateResult install();

 private:
  [[nodiscard]] UpdateResult fetchAndKeep(const FeedEntry& entry, const Download& download);
  [[nodiscard]] UpdateResult putInPlace(const FeedEntry& entry);
  /// The announced bundle, unpacked into a folder of the store; otherwise the result.
  [[nodiscard]] std::optional<std::string> unpack(const FeedEntry& entry, const std::string& archive,
                                                  const std::string& folder, UpdateResult& result) const;
  [[nodiscard]] bool bundleStands() const;
  [[nodiscard]] bool isOurs() const;

  const BundleFacts facts_;
  const Timeouts timeouts_;
  const UpdateStore store_;
  const std::string applications_;
  const Tell tell_;
  const Report report_;
};

}  // namespace dormel::updates
