#include "platform/linux/updates/Download.h"

#include <curl/curl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <memory>
#include <utility>

#include "platform/linux/updates/Address.h"

namespace dormel::updates {
namespace {

constexpr int MOST_REDIRECTS = 5;

struct CloseHandle {
  void operator()(CURL* handle) const { curl_easy_cleanup(handle); }
};

struct Body {
  std::string bytes;
  std::size_t largest;
  bool overflowed = false;
};

/// The certificates that this system trusts, where the library does not find them by itself: one that travels inside
/// the bundle looks where the system keeps them that it was built on. Null for nothing better.
const char* certificates() {
  const auto isThere = [](const char* file) { return file != nullptr && ::access(file, R_OK) == 0; };
  if (isThere(curl_version_info(CURLVERSION_NOW)->cainfo)) return nullptr;
  constexpr std::array PLACES{"/etc/ssl/certs/ca-certificates.crt",  // Debian, Arch
                              "/etc/pki/tls/certs/ca-bundle.crt",    // Fedora
                              "/etc/ssl/ca-bundle.pem",              // openSUSE
                              "/etc/ssl/cert.pem"};                  // Alpine
  const auto* const place = std::find_if(PLACES.begin(), PLACES.end(), isThere);
  return place == PLACES.end() ? nullptr : *place;
}

/// What the library calls for each piece of the body; anything but `count` ends the transfer.
std::size_t receive(const char* data, std::size_t /*one*/, std::size_t count, void* target) {
  Body& body = *static_cast<Body*>(target);
  if (count > body.largest - body.bytes.size()) {
    body.overflowed = true;
    return 0;
  }
  body.bytes.append(data, count);
  return count;
}

}  // namespace

Download::Download(std::string agent, Timeouts timeouts) : agent_(std::move(agent)), timeouts_(timeouts) {
  curl_global_init(CURL_GLOBAL_DEFAULT);
}

Download::~Download() { curl_global_cleanup(); }

Fetched Download::fetch(const std::string& address, std::size_t largest, long seconds) const {
  if (!isAllowedAddress(address)) return {Fetched::Kind::failed, {}, "an address that is not allowed: " + address};
  const std::unique_ptr<CURL, CloseHandle> handle(curl_easy_init());
  if (!handle) return {Fetched::Kind::failed, {}, "no memory"};
  std::array<char, CURL_ERROR_SIZE> complaint{};
  Body body{{}, largest};
  const auto set = [&](CURLoption option, auto value) { curl_easy_setopt(handle.get(), option, value); };
  set(CURLOPT_ERRORBUFFER, complaint.data());
  set(CURLOPT_WRITEFUNCTION, receive);
  set(CURLOPT_WRITEDATA, &body);
  set(CURLOPT_USERAGENT, agent_.c_str());
  if (const char* file = certificates()) set(CURLOPT_CAINFO, file);
  set(CURLOPT_PROTOCOLS_STR, "http,https");
  set(CURLOPT_NOSIGNAL, 1L);
  set(CURLOPT_CONNECTTIMEOUT, timeouts_.idle);
  set(CURLOPT_LOW_SPEED_LIMIT, 1L);
  set(CURLOPT_LOW_SPEED_TIME, timeouts_.idle);

  const auto begun = std::chrono::steady_clock::now();
  std::string at = address;
  for (int redirects = 0; redirects <= MOST_REDIRECTS; ++redirects) {
    body.bytes.clear();
    set(CURLOPT_URL, at.c_str());
    const std::chrono::duration<double> spent = std::chrono::steady_clock::now() - begun;
    set(CURLOPT_TIMEOUT, std::max(1L, seconds - static_cast<long>(spent.count())));
    complaint[0] = 0;
    const CURLcode result = curl_easy_perform(handle.get());
    long status = 0;
    const char* next = nullptr;
    curl_easy_getinfo(handle.get(), CURLINFO_RESPONSE_CODE, &status);
    curl_easy_getinfo(handle.get(), CURLINFO_REDIRECT_URL, &next);
    if (body.overflowed) return {Fetched::Kind::tooLarge, {}, at + ": too large"};
    if (result != CURLE_OK) {
      const char* reason = complaint[0] != 0 ? complaint.data() : curl_easy_strerror(result);
      return {Fetched::Kind::failed, {}, (at + ": ").append(reason)};
    }
    if (next == nullptr) {
      if (status != 200) return {Fetched::Kind::failed, {}, at + ": HTTP status " + std::to_string(status)};
      return {Fetched::Kind::whole, std::move(body.bytes)};
    }
    const std::string target = next;  // the library's text goes with the next transfer
    if (!isAllowedRedirect(at, target)) return {Fetched::Kind::failed, {}, (at + ": sends us to ").append(target)};
    at = target;
  }
  return {Fetched::Kind::failed, {}, address + ": too many redirects"};
}

}  // namespace dormel::updates
