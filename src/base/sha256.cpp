#include "base/sha256.h"

#include <cstdint>

#include <nettle/sha2.h>

namespace vrx {

static_assert(Sha256Sum::kSize == SHA256_DIGEST_SIZE);

struct Sha256Sum::State {
  sha256_ctx hash;
};

Sha256Sum::Sha256Sum() : state_(std::make_unique<State>()) { sha256_init(&state_->hash); }

Sha256Sum::~Sha256Sum() = default;
Sha256Sum::Sha256Sum(Sha256Sum&&) noexcept = default;
Sha256Sum& Sha256Sum::operator=(Sha256Sum&&) noexcept = default;

void Sha256Sum::Add(std::string_view bytes) {
  sha256_update(&state_->hash, bytes.size(), reinterpret_cast<const std::uint8_t*>(bytes.data()));
}

void Sha256Sum::Finish(char* place) {
  sha256_digest(&state_->hash, kSize, reinterpret_cast<std::uint8_t*>(place));
}

std::string Sha256Sum::Finish() {
  std::string sum(kSize, '\0');
  Finish(sum.data());
  return sum;
}

}  // namespace vrx
