// What a server says about updates, and what the helper says about what the server said.
#include "platform/linux/updates/Address.h"
#include "platform/linux/updates/Feed.h"
#include "platform/linux/updates/UpdateResult.h"
#include "tests/fuzz/FuzzInput.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace dormel::updates;
  using dormel::fuzz::require;
  const std::string_view text = dormel::fuzz::text(data, size);
  if (const auto offers = parseFeed(text)) {
    require(offers->size() <= MOST_ENTRIES, "not too many offers");
    for (const FeedEntry& offer : *offers) {
      require(isAllowedAddress(offer.address), "its address is allowed");
      require(offer.length > 0 && offer.length <= LARGEST_ARCHIVE, "its length is in bounds");
      require(offer.build <= newest(*offers)->build, "the newest is the newest");
      const auto again = parseEntry(write(offer));
      require(again && write(*again) == write(offer), "what is kept can be read");
    }
  }
  if (const auto verdict = parseResult(text)) {
    require(parseResult(write(*verdict)) == verdict, "a verdict goes through its line");
    require(sentence(*verdict, "1.0").find('%') == std::string::npos, "a sentence is whole");
  }
  if (isAllowedAddress(text) && text.starts_with("http://")) {
    require(text.substr(7).starts_with("127.") || text.substr(7).starts_with("localhost") ||
                text.substr(7).starts_with("[::1]"),
            "plain only on this machine");
  }
  return 0;
}
