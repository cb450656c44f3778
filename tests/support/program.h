#pragma once

#include <chrono>
#include <string>
#include <vector>

#include <sys/types.h>

namespace vrx::testing {

// A program of the build in a process of its own; killed with the object, or with the process that
// made it, if it still runs. Its output goes through files, so it never waits for a reader.
class Program {
 public:
  enum class User { kOwn, kNobody };  // kNobody only differs for a superuser

  // `path` is a program; streams are kept below `folder`, which must exist.
  Program(const std::string& path, const std::vector<std::string>& args, const std::string& folder,
          User user = User::kOwn);
  ~Program();
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;

  pid_t Id() const { return pid_; }

  void Signal(int number) const;

  bool Ended();

  // The exit code, or minus the signal that ended it. A program that outlasts the limit is killed,
  // and the test fails.
  int Wait(std::chrono::seconds limit = std::chrono::seconds{60});

  // Waits until the output begins with the text; false when it ended without, or the limit passed.
  bool WaitForOutput(const std::string& text,
                     std::chrono::seconds limit = std::chrono::seconds{10});

  std::string Out() const;
  std::string Err() const;

 private:
  std::string out_path_;
  std::string err_path_;
  pid_t pid_ = -1;
  bool ended_ = false;
  int code_ = 0;
};

struct Result {
  int code = 0;
  std::string out;
  std::string err;
};

}  // namespace vrx::testing
