#pragma once

#include <memory>
#include <string>
#include <string_view>

namespace vrx {

// SHA-256 of bytes that come in parts.
class Sha256Sum {
 public:
  static constexpr std::size_t kSize = 32;

  Sha256Sum();
  ~Sha256Sum();
  Sha256Sum(Sha256Sum&&) noexcept;
  Sha256Sum& operator=(Sha256Sum&&) noexcept;

  void Add(std::string_view bytes);

  // Writes the kSize bytes of the sum to `place` and begins anew.
  void Finish(char* place);
  // The same as bytes, not as text.
  [[nodiscard]] std::string Finish();

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace vrx
