// Ed25519 signatures (RFC 8032) over whole files. Any thread.
#pragma once

#include <array>
#include <optional>
#include <string_view>

namespace dormel::updates {

class PublicKey {
 public:
  /// From base64; nothing when that is not exactly 32 bytes.
  [[nodiscard]] static std::optional<PublicKey> fromBase64(std::string_view text);

  /// Whether `signature`, 64 bytes in base64, was made over exactly these bytes with the private half of this key.
  [[nodiscard]] bool verifies(std::string_view bytes, std::string_view signature) const;

 private:
  std::array<unsigned char, 32> key_{};
};

}  // namespace dormel::updates
