#pragma once

#include <filesystem>
#include <fstream>
#include <string>

namespace vrx {

// A text file written line by line in its place: a failure leaves what was written until then.
// Throws FileError, which names the file and says why.
class LineFile {
 public:
  // Deletes an existing file and makes it anew.
  explicit LineFile(const std::filesystem::path& path);

  // Writes what is still held back; a failure of that goes untold.
  ~LineFile();

  LineFile(const LineFile&) = delete;
  LineFile& operator=(const LineFile&) = delete;

  // The text of the line that comes next, for the caller to append to.
  std::string& Line() { return held_; }

  // Ends the line with CR LF.
  void EndLine();

  void Close();

 private:
  void Flush();

  std::filesystem::path path_;
  std::ofstream out_;
  std::string held_;
};

}  // namespace vrx
