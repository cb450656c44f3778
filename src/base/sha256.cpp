#include "base/sha256.h"

#include <array>
#include <bit>
#include <cerrno>
#include <cstdint>
#include <fstream>
#include <string_view>
#include <system_error>

#include <nettle/sha2.h>

#include "base/files.h"

namespace vrx {

std::string Sha256OfFile(const std::filesystem::path& path) {
  errno = 0;
  std::ifstream in(path, std::ios::binary);
  sha256_ctx hash{};
  sha256_init(&hash);
  std::array<char, 65536> block{};
  while (in) {
    in.read(block.data(), static_cast<std::streamsize>(block.size()));
    const auto bytes = std::bit_cast<std::array<std::uint8_t, block.size()>>(block);
    sha256_update(&hash, static_cast<std::size_t>(in.gcount()), bytes.data());
  }
  if (!in.eof()) {
    const std::error_code why(errno != 0 ? errno : EIO, std::generic_category());
    throw FileError("cannot read " + path.string() + ": " + why.message());
  }
  std::array<std::uint8_t, SHA256_DIGEST_SIZE> digest{};
  sha256_digest(&hash, digest.size(), digest.data());
  constexpr std::string_view kDigits = "0123456789abcdef";
  std::string text;
  for (const std::uint8_t byte : digest) {
    text.push_back(kDigits[byte >> 4U]);
    text.push_back(kDigits[byte & 0x0FU]);
  }
  return text;
}

}  // namespace vrx
