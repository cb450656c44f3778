#include "measure.h"

#include <algorithm>
#include <cstddef>
#include <stdexcept>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace vrx::bench {

void RunProgram(const std::vector<std::string>& words, const std::string& output) {
  std::vector<std::string> copies = words;
  std::vector<char*> arguments;
  arguments.reserve(words.size() + 1);
  for (std::string& word : copies) {
    arguments.push_back(word.data());
  }
  arguments.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, output.c_str(),
                                   O_WRONLY | O_CREAT | O_TRUNC, 0644);
  pid_t process = 0;
  int status = 0;
  const int failed =
      posix_spawnp(&process, arguments.front(), &actions, nullptr, arguments.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  if (failed != 0 || waitpid(process, &status, 0) != process || status != 0) {
    throw std::runtime_error(words.front() + " failed; is it there?");
  }
}

double Milliseconds(const std::function<void()>& work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start)
      .count();
}

double Median(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

}  // namespace vrx::bench
