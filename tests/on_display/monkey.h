#pragma once

#include <cstdint>
#include <deque>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include <SQLiteCpp/Database.h>

#include "on_display/on_display.h"
#include "on_display/small_disk.h"

namespace vrx::testing {

// A temporary fault of a file of the program: its disk is full, another program locks it, or it has
// another name.
class Trouble {
 public:
  virtual ~Trouble() = default;
};

std::unique_ptr<Trouble> FullDisk(const std::filesystem::path& folder);
std::unique_ptr<Trouble> LockedDatabase(const std::filesystem::path& file);
std::unique_ptr<Trouble> VanishedFile(const std::filesystem::path& file);

// Performs random actions: the same ones for the same seed, as far as the program is equally fast.
// An action may exit the program, which is then restarted.
class Monkey : public OnDisplay {
 protected:
  explicit Monkey(std::uint32_t seed);
  ~Monkey() override;

  // Stops at the first finding, which fails the test and prints the last actions.
  void Act(int actions);

  // Ends all faults of files and ends the program with a signal.
  void Finish();

 private:
  struct Target {
    std::string words;
    Point place;
  };

  int Pick(int least, int most);
  bool Chance(int percent) { return Pick(1, 100) <= percent; }
  template <typename List>
  const auto& Any(const List& list) {
    return list[static_cast<std::size_t>(Pick(0, static_cast<int>(list.size()) - 1))];
  }

  void Do(const Screen& screen);
  void AnswerDialog();
  void ClickSomething(const Screen& screen);
  void PressSomething();
  void TypeSomething();
  void MakeTrouble();
  void Note(const std::string& words);

  std::vector<Target> Targets(const Screen& screen) const;
  void Check();
  bool Responds();
  void CheckDatabases() const;
  std::string Log() const;

  SmallDisk disk_{data};
  std::mt19937 random_;
  std::deque<std::string> log_;
  std::unique_ptr<Program> module_;
  std::unique_ptr<Trouble> trouble_;
  int trouble_left_ = 0;
  std::filesystem::path trouble_file_;
  std::filesystem::path working_folder_ = std::filesystem::current_path();
};

}  // namespace vrx::testing
