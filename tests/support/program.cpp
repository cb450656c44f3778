#include "support/program.h"

#include <atomic>
#include <csignal>
#include <stdexcept>
#include <thread>

#include <fcntl.h>
#include <grp.h>
#include <gtest/gtest.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include "support/temp_folder.h"

namespace vrx::testing {
namespace {

using Clock = std::chrono::steady_clock;
constexpr std::chrono::milliseconds kPoll{10};
constexpr uid_t kNobodyId = 65534;

std::string StreamPath(const std::string& folder, const std::string& name) {
  static std::atomic<int> count = 0;
  return folder + "/" + name + std::to_string(++count) + ".txt";
}

void Redirect(int descriptor, const char* path, int flags) {
  const int file = open(path, flags, 0644);  // NOLINT(cppcoreguidelines-pro-type-vararg)
  if (file < 0 || dup2(file, descriptor) < 0) {
    _exit(126);
  }
}

void DropRights() {
  if (geteuid() == 0 &&
      (setgroups(0, nullptr) != 0 || setgid(kNobodyId) != 0 || setuid(kNobodyId) != 0)) {
    _exit(126);
  }
}

}  // namespace

Program::Program(const std::string& path, const std::vector<std::string>& args,
                 const std::string& folder, User user)
    : out_path_(StreamPath(folder, "out")), err_path_(StreamPath(folder, "err")) {
  std::vector<std::string> words = {path};
  words.insert(words.end(), args.begin(), args.end());
  std::vector<char*> argv;
  argv.reserve(words.size() + 1);
  for (std::string& word : words) {
    argv.push_back(word.data());
  }
  argv.push_back(nullptr);
  pid_ = fork();
  if (pid_ < 0) {
    throw std::runtime_error("cannot fork");
  }
  if (pid_ == 0) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    Redirect(STDIN_FILENO, "/dev/null", O_RDONLY);
    Redirect(STDOUT_FILENO, out_path_.c_str(), O_WRONLY | O_CREAT | O_TRUNC);
    Redirect(STDERR_FILENO, err_path_.c_str(), O_WRONLY | O_CREAT | O_TRUNC);
    if (user == User::kNobody) {
      DropRights();
    }
    execv(argv.front(), argv.data());
    _exit(127);
  }
}

Program::~Program() {
  if (!Ended()) {
    Signal(SIGKILL);
    waitpid(pid_, nullptr, 0);
  }
}

void Program::Signal(int number) const { kill(pid_, number); }

bool Program::Ended() {
  if (!ended_) {
    int status = 0;
    if (waitpid(pid_, &status, WNOHANG) == pid_) {
      ended_ = true;
      code_ = WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
    }
  }
  return ended_;
}

int Program::Wait(std::chrono::seconds limit) {
  const auto end = Clock::now() + limit;
  while (!Ended()) {
    if (Clock::now() > end) {
      ADD_FAILURE() << "the program hangs; so far it said: " << Out() << Err();
      Signal(SIGKILL);
    }
    std::this_thread::sleep_for(kPoll);
  }
  return code_;
}

bool Program::WaitForOutput(const std::string& text, std::chrono::seconds limit) {
  const auto end = Clock::now() + limit;
  while (!Out().starts_with(text)) {
    if (Ended() || Clock::now() > end) {
      return Out().starts_with(text);
    }
    std::this_thread::sleep_for(kPoll);
  }
  return true;
}

std::string Program::Out() const {
  return access(out_path_.c_str(), F_OK) == 0 ? ReadAll(out_path_) : "";
}

std::string Program::Err() const {
  return access(err_path_.c_str(), F_OK) == 0 ? ReadAll(err_path_) : "";
}

}  // namespace vrx::testing
