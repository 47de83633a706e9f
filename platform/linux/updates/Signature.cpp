#include "platform/linux/updates/Signature.h"

#include <sodium.h>

namespace dormel::updates {
namespace {

template <std::size_t Size>
bool decode(std::string_view text, std::array<unsigned char, Size>& bytes) {
  std::size_t length = 0;
  const char* end = nullptr;
  if (sodium_base642bin(bytes.data(), bytes.size(), text.data(), text.size(), nullptr, &length, &end,
                        sodium_base64_VARIANT_ORIGINAL) != 0) {
    return false;
  }
  return length == Size && end == text.data() + text.size();
}

}  // namespace

std::optional<PublicKey> PublicKey::fromBase64(std::string_view text) {
  static_assert(std::tuple_size_v<decltype(key_)> == crypto_sign_PUBLICKEYBYTES);
  PublicKey key;
  if (sodium_init() < 0 || !decode(text, key.key_)) return {};
  return key;
}

bool PublicKey::verifies(std::string_view bytes, std::string_view signature) const {
  std::array<unsigned char, crypto_sign_BYTES> decoded{};
  return decode(signature, decoded) &&
         crypto_sign_verify_detached(decoded.data(), reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size(),
                                     key_.data()) == 0;
}

}  // namespace dormel::updates
