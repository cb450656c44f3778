#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <random>
#include <string>
#include <string_view>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "legacy/conversion_fixture.h"
#include "legacy/jet_file.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::UnorderedElementsAre;

// VRX_DAMAGED_COPIES sets another number.
int DamagedCopies() {
  int count = 200;
  if (const char* const wanted = std::getenv("VRX_DAMAGED_COPIES"); wanted != nullptr) {
    const std::string_view text = wanted;
    std::from_chars(text.data(), text.data() + text.size(), count);
  }
  return count;
}

class Damage {
 public:
  explicit Damage(unsigned seed) : random_(seed) {}

  std::string Of(std::string bytes) {
    switch (Below(4)) {
      case 0:
        FlipBits(bytes);
        break;
      case 1:
        SwapPages(bytes);
        break;
      case 2:
        bytes.resize(Below(2) == 0 ? Below(bytes.size()) : PageAt(bytes));
        break;
      default:
        ScratchAPage(bytes);
    }
    return bytes;
  }

 private:
  std::size_t Below(std::size_t limit) { return random_() % limit; }
  std::size_t PageAt(const std::string& bytes) {
    return Below(bytes.size() / kJetPageSize) * kJetPageSize;
  }

  void FlipBits(std::string& bytes) {
    for (std::size_t flips = 1 + Below(64); flips > 0; --flips) {
      char& byte = bytes[Below(bytes.size())];
      byte = static_cast<char>(static_cast<unsigned char>(byte) ^ (1U << Below(8)));
    }
  }
  void SwapPages(std::string& bytes) {
    const std::size_t first = PageAt(bytes);
    const std::size_t second = PageAt(bytes);
    std::swap_ranges(bytes.begin() + static_cast<std::ptrdiff_t>(first),
                     bytes.begin() + static_cast<std::ptrdiff_t>(first + kJetPageSize),
                     bytes.begin() + static_cast<std::ptrdiff_t>(second));
  }
  // Half of the damage hits definitions, maps and the catalog.
  void ScratchAPage(std::string& bytes) {
    const std::size_t page = Below(2) == 0 ? Below(16) * kJetPageSize : PageAt(bytes);
    for (std::size_t scratches = 1 + Below(40); scratches > 0; --scratches) {
      bytes[page + Below(kJetPageSize)] = static_cast<char>(random_());
    }
  }

  std::mt19937 random_;
};

TEST(DamagedFile, EndsInAReportOrAClearRefusal) {
  const std::string recipe = BytesOf(fs::path(LEGACY_DATA) / "LEGACYR.RDB");
  const std::string transaction = BytesOf(fs::path(LEGACY_DATA) / "LEGACYX.TDB");
  int refused = 0;
  const int copies = DamagedCopies();
  for (int copy = 0; copy < copies; ++copy) {
    SCOPED_TRACE(copy);
    ConversionFixture site;
    Damage damage(static_cast<unsigned>(copy));
    const std::string damaged = damage.Of(copy % 2 == 0 ? recipe : transaction);
    WriteBytes(site.old_path, damaged);
    try {
      const ConversionReport report = site.Convert(site.old_path);
      for (const ConvertedTable& table : report.tables) {
        EXPECT_EQ(table.read, table.stored + table.refused) << table.name;
        EXPECT_LE(table.repaired, table.stored) << table.name;
      }
      EXPECT_THAT(site.Files(), UnorderedElementsAre("NEW.RDB", "OLD.RDB"));
      EXPECT_EQ(site.Rows("PRAGMA integrity_check")[0][0], "ok");
    } catch (const Error& refusal) {
      ++refused;
      EXPECT_THAT(refusal.what(), ::testing::HasSubstr("OLD.RDB"));
      EXPECT_THAT(site.Files(), ElementsAre("OLD.RDB"));
    }
    ASSERT_EQ(BytesOf(site.old_path), damaged);
  }
  // Damage that is never or always noticed would prove nothing.
  EXPECT_GT(refused, 0);
  EXPECT_LT(refused, copies);
  RecordProperty("refused", refused);
}

}  // namespace
}  // namespace vrx::testing
