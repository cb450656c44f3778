#include "legacy/jet_file.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <system_error>

#include <nettle/arcfour.h>

#include "base/files.h"
#include "base/translation.h"

namespace vrx {

using namespace std::string_view_literals;

namespace {

constexpr std::string_view kJetMark = "\0\1\0\0Standard Jet DB\0"sv;
constexpr std::string_view kAceMark = "\0\1\0\0Standard ACE DB\0"sv;
constexpr std::string_view kPresentMark = "SQLite format 3\0"sv;
constexpr std::size_t kVersionAt = 0x14;
constexpr char kVersionJet3 = 0;
constexpr char kVersionJet4 = 1;

// Part of the first page is scrambled with RC4 and a constant key.
constexpr std::size_t kScrambledAt = 0x18;
constexpr std::size_t kScrambledSize = 128;
constexpr std::array<std::uint8_t, 4> kScrambleKey = {0xC7, 0xDA, 0x39, 0x6B};

constexpr std::size_t kPageKeyAt = 0x3E;  // 4 bytes; 0: pages are not encrypted
constexpr std::size_t kPasswordAt = 0x42;
constexpr std::size_t kPasswordSize = 40;
constexpr std::size_t kCreatedAt = 0x72;  // a date; its day number is the mask of the password

constexpr std::size_t kTextSample = 512;

std::uint64_t LittleEndian(std::string_view bytes) {
  std::uint64_t number = 0;
  for (std::size_t index = bytes.size(); index > 0; --index) {
    number = number << 8U | static_cast<unsigned char>(bytes[index - 1]);
  }
  return number;
}

// The first page up to the end of its scrambled part, unscrambled, with unchanged offsets.
std::string Unscrambled(std::string_view page) {
  std::array<std::uint8_t, kScrambledSize> part{};
  const std::string_view scrambled = page.substr(kScrambledAt, kScrambledSize);
  std::copy(scrambled.begin(), scrambled.end(), part.begin());
  arcfour_ctx cipher{};
  arcfour_set_key(&cipher, kScrambleKey.size(), kScrambleKey.data());
  arcfour_crypt(&cipher, part.size(), part.data(), part.data());
  std::string clear(page.substr(0, kScrambledAt));
  clear.append(part.begin(), part.end());
  return clear;
}

// An empty password is stored as its mask or as zeros.
bool HasPassword(std::string_view clear) {
  const auto created = std::bit_cast<double>(LittleEndian(clear.substr(kCreatedAt, 8)));
  const bool dated = std::isfinite(created) && std::abs(created) < 1e9;
  const auto day = static_cast<std::uint32_t>(dated ? static_cast<std::int64_t>(created) : 0);
  const std::string_view password = clear.substr(kPasswordAt, kPasswordSize);
  const bool nothing = std::ranges::all_of(password, [](char byte) { return byte == 0; });
  bool mask_alone = true;
  for (std::size_t at = 0; at < password.size(); at += 4) {
    mask_alone = mask_alone && LittleEndian(password.substr(at, 4)) == day;
  }
  return !nothing && !mask_alone;
}

JetFileKind ClassifyJet4(std::string_view head, std::uintmax_t size) {
  if (head.size() < kJetPageSize || size % kJetPageSize != 0) {
    return JetFileKind::kCutOff;
  }
  const std::string clear = Unscrambled(head);
  if (LittleEndian(std::string_view(clear).substr(kPageKeyAt, 4)) != 0) {
    return JetFileKind::kEncrypted;
  }
  return HasPassword(clear) ? JetFileKind::kPassword : JetFileKind::kJet4;
}

bool LooksLikeText(std::string_view bytes) {
  return std::ranges::all_of(bytes.substr(0, kTextSample), [](char byte) {
    const auto code = static_cast<unsigned char>(byte);
    return (code >= ' ' && code != 0x7F) || byte == '\t' || byte == '\r' || byte == '\n' ||
           byte == '\f';
  });
}

bool BeginsAs(std::string_view head, std::string_view mark) {
  return head.starts_with(mark.substr(0, std::min(head.size(), mark.size())));
}

struct Words {
  JetFileKind kind;
  std::string_view what;
  std::string_view remedy;
};

constexpr std::array<Words, 9> kRefusals = {{
    {JetFileKind::kEmpty, TrMark("%1 is empty"),
     TrMark("Take a copy of the database that holds its data.")},
    {JetFileKind::kText, TrMark("%1 is a text file, not a database"),
     TrMark("Choose the .RDB or .TDB file of the earlier version. A file of transactions (.QXT) is "
            "opened "
            "on the Import tab.")},
    {JetFileKind::kPresentFormat, TrMark("%1 is a database of the present format already"),
     TrMark("It needs no conversion: open it with File, Open.")},
    {JetFileKind::kJet3, TrMark("%1 is a Jet 3 database (the Access 97 file format)"),
     TrMark("Convert it to the Access 2000 file format with Access (Tools, Database Utilities, "
            "Convert "
            "Database), then convert that copy here.")},
    {JetFileKind::kAccess2007,
     TrMark("%1 is a database of the Access 2007 file format or a later one"),
     TrMark("Save it in the Access 2000 file format (.mdb) with Access, then convert that copy "
            "here.")},
    {JetFileKind::kPassword, TrMark("%1 is protected by a database password"),
     TrMark("Open it for exclusive use with Access, remove the password (Tools, Security, Unset "
            "Database "
            "Password), then convert it here.")},
    {JetFileKind::kEncrypted, TrMark("%1 is encrypted"),
     TrMark("Decrypt a copy with Access (Tools, Security, Encode/Decode Database), then convert "
            "that copy "
            "here.")},
    {JetFileKind::kCutOff, TrMark("%1 is cut off: it does not end with a whole page"),
     TrMark("Copy the file again from where it was made, or take an older backup.")},
    {JetFileKind::kOther, TrMark("%1 is no database of an earlier version"),
     TrMark("Choose the .RDB or .TDB file of the earlier version.")},
}};

}  // namespace

JetFileKind ClassifyJetFile(std::string_view head, std::uintmax_t size) {
  if (head.empty()) {
    return JetFileKind::kEmpty;
  }
  if (BeginsAs(head, kPresentMark)) {
    return JetFileKind::kPresentFormat;
  }
  if (head.starts_with(kAceMark)) {
    return JetFileKind::kAccess2007;
  }
  if (!head.starts_with(kJetMark)) {
    return LooksLikeText(head) ? JetFileKind::kText : JetFileKind::kOther;
  }
  if (head.size() <= kVersionAt) {
    return JetFileKind::kCutOff;
  }
  switch (head[kVersionAt]) {
    case kVersionJet3:
      return JetFileKind::kJet3;
    case kVersionJet4:
      return ClassifyJet4(head, size);
    default:
      return JetFileKind::kAccess2007;
  }
}

JetFileKind InspectJetFile(const std::filesystem::path& path) {
  const std::string head = ReadFileBytes(path, kJetPageSize).substr(0, kJetPageSize);
  std::error_code error;
  const std::uintmax_t size = std::filesystem::file_size(path, error);
  if (error) {
    throw FileError("cannot read " + path.string() + ": " + error.message());
  }
  return ClassifyJetFile(head, size);
}

bool IsJetFile(JetFileKind kind) {
  switch (kind) {
    case JetFileKind::kJet4:
    case JetFileKind::kJet3:
    case JetFileKind::kAccess2007:
    case JetFileKind::kPassword:
    case JetFileKind::kEncrypted:
    case JetFileKind::kCutOff:
      return true;
    default:
      return false;
  }
}

std::string JetFileRefusal(JetFileKind kind, std::string_view name) {
  const auto* const words = std::ranges::find(kRefusals, kind, &Words::kind);
  if (words == kRefusals.end()) {
    return {};
  }
  return Tr(words->what, {std::string(name)}) + ". " + Tr(words->remedy);
}

}  // namespace vrx
