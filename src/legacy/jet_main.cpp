#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>
#include <string_view>
#include <vector>

#include "base/encoding.h"
#include "base/files.h"
#include "legacy/jet_file.h"
#include "legacy/jet_reader.h"
#include "legacy/row_stream.h"

namespace {

// Exits without cleanup, which libmdb leaves to the end of the process.
[[noreturn]] void End(int code) {
  std::fflush(nullptr);
  std::_Exit(code);
}

[[noreturn]] void Refuse(const std::string& message, int code) {
  std::fprintf(stderr, "vrx2260jet: %s\n", message.c_str());
  End(code);
}

void Write(std::string_view bytes) {
  if (std::fwrite(bytes.data(), 1, bytes.size(), stdout) != bytes.size()) {
    Refuse("the rows cannot be written", vrx::kReaderFailed);
  }
}

}  // namespace

// vrx2260jet FILE TABLE... writes the rows of a Jet file's tables to standard output as a row
// stream. The programs that convert such a file start it. FILE has one character for each byte of
// the path; see ReadLegacyRows.
int main(int argc, char** argv) {
  const std::vector<std::string> args(argv + (argc > 0 ? 1 : 0), argv + argc);
  if (args.size() < 2) {
    Refuse("usage: vrx2260jet FILE TABLE...", vrx::kReaderWrongUsage);
  }
  const std::filesystem::path path = vrx::Utf8ToWindows1252(args.front());
  try {
    const vrx::JetFileKind kind = vrx::InspectJetFile(path);
    if (kind != vrx::JetFileKind::kJet4) {
      Refuse(vrx::JetFileRefusal(kind, path.filename().string()), vrx::ReaderExitOf(kind));
    }
    vrx::RowStreamWriter rows(Write);
    vrx::ReadJetTables(path, {args.begin() + 1, args.end()}, rows);
    rows.End();
  } catch (const vrx::JetReadError& failure) {
    Refuse(failure.what(), vrx::kReaderFoundNoTables);
  } catch (const std::exception& failure) {
    Refuse(failure.what(), vrx::kReaderFailed);
  }
  End(EXIT_SUCCESS);
}
