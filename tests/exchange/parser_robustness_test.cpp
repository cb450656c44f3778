// For any bytes, a parse ends with an error text or with rows, and uses little memory. The tests
// have their own program because it counts its heap.

#include <algorithm>
#include <array>
#include <cstdlib>
#include <memory>
#include <new>
#include <random>
#include <set>
#include <string>
#include <string_view>

#include <gtest/gtest.h>
#include <malloc.h>

#include "exchange/parsed_text.h"
#include "exchange/transaction_texts.h"

namespace {

std::size_t live_bytes = 0;
std::size_t peak_bytes = 0;

void* Allocate(std::size_t size) {
  void* memory = std::malloc(std::max<std::size_t>(size, 1));
  if (memory == nullptr) {
    throw std::bad_alloc();
  }
  live_bytes += malloc_usable_size(memory);
  peak_bytes = std::max(peak_bytes, live_bytes);
  return memory;
}

void Release(void* memory) {
  live_bytes -= malloc_usable_size(memory);
  std::free(memory);
}

}  // namespace

void* operator new(std::size_t size) { return Allocate(size); }
void* operator new[](std::size_t size) { return Allocate(size); }
void operator delete(void* memory) noexcept { Release(memory); }
void operator delete[](void* memory) noexcept { Release(memory); }
void operator delete(void* memory, std::size_t /*size*/) noexcept { Release(memory); }
void operator delete[](void* memory, std::size_t /*size*/) noexcept { Release(memory); }

namespace vrx::testing {
namespace {

constexpr std::size_t kHeapLimit = std::size_t{64} << 20;

const std::set<std::string>& KnownErrors() {
  static const std::set<std::string> errors = {
      "Input data from KRM exceeded limit.",
      "No file-type identifier detected.",
      "No batch section identifier detected.",
      "No batch section terminator detected.",
      "No feed section identifier detected.",
      "No feed section terminator detected.",
      "No units-of-measure detected.",
      "Error computing total batches",
      "Invalid batch section detected.",
      "Invalid feed section detected.",
      "Invalid list padding detected.",
      "Invalid transaction number detected.",
      "Invalid ingredient ID detected.",
      "Invalid feed weight detected.",
      "Incomplete batch record detected.",
      "Too many ingredients in a batch detected.",
      "Too many records detected.",
      "Batch total exceeded limit.",
  };
  return errors;
}

struct Outcome {
  std::string error;
  std::size_t heap = 0;  // peak, in bytes
};

Outcome Parse(std::string_view text) {
  const std::size_t before = live_bytes;
  peak_bytes = live_bytes;
  const ParsedText parsed(text);
  Outcome outcome{parsed.error, peak_bytes - before};
  if (parsed.error.empty()) {
    EXPECT_GT(parsed.file.FileRecordCount(), 0);
    EXPECT_EQ(parsed.file.Imported().RowCount(),
              static_cast<std::size_t>(parsed.file.FileRecordCount()));
    EXPECT_EQ(parsed.Cell(1, kImportedType), "BATCH");
    EXPECT_EQ(parsed.shown.size(), 1U);
  } else {
    EXPECT_TRUE(KnownErrors().contains(parsed.error)) << parsed.error;
    EXPECT_EQ(parsed.progress.Message(), parsed.error);
    EXPECT_TRUE(parsed.shown.empty());
  }
  EXPECT_LT(outcome.heap, kHeapLimit);
  return outcome;
}

class Soup {
 public:
  explicit Soup(unsigned seed) : random_(seed) {}

  std::size_t Pick(std::size_t below) {
    return std::uniform_int_distribution<std::size_t>(0, below - 1)(random_);
  }

  std::string Bytes(std::size_t length) {
    std::string text(length, '\0');
    for (char& byte : text) {
      byte = static_cast<char>(Pick(256));
    }
    return text;
  }

  std::string Tokens(std::size_t count) {
    static constexpr std::array<std::string_view, 30> kTokens = {
        "B,",
        "B",
        ",",
        ";",
        "\r\n",
        "\r",
        "\n",
        "\r\n\r",
        "[BAT],",
        "[FED],",
        "0,",
        "0",
        "0,0;",
        "1,",
        "2,",
        "17,",
        "-1,",
        "0830,",
        "0835am,",
        "1e38,",
        "100,",
        "101,",
        "2147483647,",
        "998.5,",
        "1,3,01152009,2,",
        "{BAT/FED},",
        "L",
        "K",
        "4,0,0;0830,0,0;1,0,0;1,0,0\r\n",
        "B,1,12,2,0915,01152009,750.0,748.5\r\n"};
    std::string text;
    for (std::size_t i = 0; i < count; ++i) {
      text += kTokens[Pick(kTokens.size())];
    }
    return text;
  }

 private:
  std::mt19937 random_;
};

TEST(ParserRobustness, SurvivesAFileCutAnywhere) {
  for (std::size_t length = 0; length <= kWorkedExample.size(); ++length) {
    SCOPED_TRACE(length);
    Parse(kWorkedExample.substr(0, length));
    Parse(kWorkedExample.substr(length));
  }
}

TEST(ParserRobustness, SurvivesAByteLostAnywhere) {
  for (std::size_t place = 0; place < kWorkedExample.size(); ++place) {
    SCOPED_TRACE(place);
    Parse(std::string(kWorkedExample).erase(place, 1));
  }
}

TEST(ParserRobustness, SurvivesEveryValueOfEveryByte) {
  std::set<std::string> errors;
  for (std::size_t place = 0; place < kWorkedExample.size(); ++place) {
    SCOPED_TRACE(place);
    std::string text(kWorkedExample);
    for (int value = 0; value < 256; ++value) {
      text[place] = static_cast<char>(value);
      errors.insert(Parse(text).error);
    }
  }
  // A single changed byte reaches the later states too, not only the search for marks.
  EXPECT_TRUE(errors.contains(""));
  EXPECT_TRUE(errors.contains("Invalid list padding detected."));
  EXPECT_TRUE(errors.contains("Invalid transaction number detected."));
}

TEST(ParserRobustness, SurvivesRandomBytes) {
  Soup soup(1);
  for (int round = 0; round < 2000; ++round) {
    SCOPED_TRACE(round);
    Parse(soup.Bytes(soup.Pick(300)));
    Parse(FileOf(soup.Bytes(soup.Pick(200)), soup.Bytes(soup.Pick(200))));
  }
}

TEST(ParserRobustness, SurvivesTokensOfTheFormatInAnyOrder) {
  Soup soup(2);
  std::set<std::string> errors;
  for (int round = 0; round < 20'000; ++round) {
    SCOPED_TRACE(round);
    errors.insert(Parse(soup.Tokens(soup.Pick(60))).error);
    errors.insert(Parse(FileOf(soup.Tokens(soup.Pick(40)), soup.Tokens(soup.Pick(40)))).error);
    errors.insert(Parse(FileOf(OneIngredient{}.Record() + soup.Tokens(soup.Pick(20)) + "\r\n",
                               FeedOf("1", "5") + soup.Tokens(soup.Pick(20)) + "\r\n"))
                      .error);
  }
  EXPECT_TRUE(errors.contains(""));
  EXPECT_TRUE(errors.contains("Incomplete batch record detected."));
  EXPECT_TRUE(errors.contains("Too many records detected."));
}

TEST(ParserRobustness, SurvivesLongTextsOfFewTokens) {
  Soup soup(3);
  for (int round = 0; round < 40; ++round) {
    SCOPED_TRACE(round);
    std::string text = FileOf(soup.Tokens(4000), soup.Tokens(4000));
    text.resize(std::min<std::size_t>(text.size(), 65535));
    Parse(text);
  }
}

std::string Repeated(std::string_view part, std::size_t total) {
  std::string text;
  while (text.size() + part.size() <= total) {
    text += part;
  }
  return text;
}

// One row of data. Each "B," in its padding is counted as a batch with the whole list of times:
// (marks + 1) * times rows.
std::string BatchCountedAs(std::size_t marks, std::size_t times) {
  return "B,1,3,01152009,2,4,0," + Repeated("B,", 2 * marks) + "0;" + Repeated("0830,", 5 * times) +
         "0,0;1,0,0;1,0,0\r\n";
}

TEST(ParserRobustness, RefusesAHundredMillionCountedRowsWithLittleMemory) {
  const std::string text = FileOf(BatchCountedAs(16'200, 6'400), "");
  ASSERT_LE(text.size(), 65535U);
  const Outcome outcome = Parse(text);
  EXPECT_EQ(outcome.error, "Too many records detected.");
  EXPECT_LT(outcome.heap, std::size_t{1} << 20);
}

TEST(ParserRobustness, AcceptsAHundredThousandCountedRowsButNotOneMore) {
  const std::string batch = BatchCountedAs(999, 100);
  const Outcome most = Parse(FileOf(batch, ""));
  EXPECT_EQ(most.error, "");
  EXPECT_LT(most.heap, std::size_t{1} << 20);
  EXPECT_EQ(ParsedText(FileOf(batch, "")).file.FileRecordCount(), 100'000);
  EXPECT_EQ(Parse(FileOf(batch, FeedOf("1", "5.0"))).error, "Too many records detected.");
}

// Every feed row repeats the recipe of its batch.
TEST(ParserRobustness, StoresATextSharedByManyRowsOnce) {
  std::string batch = OneIngredient{}.Record();
  batch.replace(batch.find(",3,"), 3, "," + std::string(32'000, '3') + ",");
  const std::string text = FileOf(batch, Repeated("B,1,,,,,,\r\n", 33'000));
  ASSERT_LE(text.size(), 65535U);
  const Outcome outcome = Parse(text);
  EXPECT_EQ(outcome.error, "");
  EXPECT_LT(outcome.heap, std::size_t{4} << 20);
}

// Every "B" of the feed section is counted, but no "B" starts a record.
TEST(ParserRobustness, AcceptsAFileWithRowsThatNoRecordFills) {
  const std::string text =
      FileOf("B,1,3,01152009," + Repeated("B", 30'000) + ",4,0,0;0830,0,0;1,0,0;1,0,0\r\n",
             Repeated("B", 30'000) + "\r\n");
  ASSERT_LE(text.size(), 65535U);
  EXPECT_EQ(Parse(text).error, "");
}

// The largest number of cells that a text can fill: 32 ingredients and as many feeds as fit, each
// share with a different text of 39 digits.
TEST(ParserRobustness, KeepsTheLargestTableInLittleMemory) {
  std::array<std::string, 4> lists;
  for (int id = 1; id <= 32; ++id) {
    lists[0] += std::to_string(id) + ",";
    lists[1] += "0830,";
    lists[2] += "1,";
    lists[3] += std::to_string(id) + ",";
  }
  std::string batch = "B,1,3,01152009,2,";
  for (std::size_t list = 0; list < lists.size(); ++list) {
    batch += lists[list] + (list < 3 ? "0,0;" : "0,0\r\n");
  }
  std::string feeds;
  for (int weight = 10'000; feeds.size() < 64'400; ++weight) {
    feeds += "B,1,,,,,," + std::to_string(weight) + "e34\r\n";
  }
  const std::string text = FileOf(batch, feeds);
  ASSERT_LE(text.size(), 65535U);
  const Outcome outcome = Parse(text);
  EXPECT_EQ(outcome.error, "");
  EXPECT_GT(outcome.heap, std::size_t{10} << 20);
}

TEST(ParserRobustness, HandlesTheHighestTransactionNumbersWithLittleMemory) {
  std::string batches;
  for (int number = 0; number < 1000; ++number) {
    batches += OneIngredient{.transaction = std::to_string(2'147'483'646 - number)}.Record();
  }
  const Outcome outcome = Parse(FileOf(batches, ""));
  EXPECT_EQ(outcome.error, "");
  EXPECT_LT(outcome.heap, std::size_t{4} << 20);
}

}  // namespace
}  // namespace vrx::testing
