#include <fstream>
#include <string>

#include "on_display/monkey.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;

class Full : public Trouble {
 public:
  explicit Full(const fs::path& folder) : filler_(folder / "FILLER") {
    constexpr std::size_t kPiece = 4096;
    const std::string piece(kPiece, '\0');
    std::ofstream out(filler_, std::ios::binary);
    while (out.write(piece.data(), static_cast<std::streamsize>(piece.size())).flush()) {
    }
  }
  ~Full() override {
    std::error_code ignored;
    fs::remove(filler_, ignored);
  }
  Full(const Full&) = delete;
  Full& operator=(const Full&) = delete;

 private:
  fs::path filler_;
};

class Locked : public Trouble {
 public:
  explicit Locked(const fs::path& file) : holder_(file, SQLite::OPEN_READWRITE, kPatience) {
    holder_.exec("BEGIN EXCLUSIVE");
  }
  ~Locked() override {
    try {
      holder_.exec("ROLLBACK");
    } catch (const SQLite::Exception&) {  // closing ends the transaction too
    }
  }
  Locked(const Locked&) = delete;
  Locked& operator=(const Locked&) = delete;

 private:
  static constexpr int kPatience = 2000;  // ms

  SQLite::Database holder_;
};

class Vanished : public Trouble {
 public:
  explicit Vanished(const fs::path& file) : file_(file), other_(file.string() + ".away") {
    fs::rename(file_, other_);
  }
  ~Vanished() override {
    std::error_code ignored;
    if (!fs::exists(file_)) {
      fs::rename(other_, file_, ignored);
    }
  }
  Vanished(const Vanished&) = delete;
  Vanished& operator=(const Vanished&) = delete;

 private:
  fs::path file_;
  fs::path other_;
};

}  // namespace

std::unique_ptr<Trouble> FullDisk(const fs::path& folder) { return std::make_unique<Full>(folder); }

std::unique_ptr<Trouble> LockedDatabase(const fs::path& file) {
  return std::make_unique<Locked>(file);
}

std::unique_ptr<Trouble> VanishedFile(const fs::path& file) {
  return std::make_unique<Vanished>(file);
}

}  // namespace vrx::testing
