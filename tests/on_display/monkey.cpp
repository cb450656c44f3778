#include "on_display/monkey.h"

#include <algorithm>
#include <array>
#include <csignal>
#include <fstream>
#include <sstream>

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

#ifdef __SANITIZE_ADDRESS__
constexpr milliseconds kHang{10'000};
#else
constexpr milliseconds kHang{2000};
#endif
constexpr std::size_t kSpecified = 40;  // actions
constexpr int kMonkeyTimeout = 5000;    // ms

// They start programs of the machine.
constexpr std::array kLeftAlone = {"Users Manual", "Readme", "System Info..."};

constexpr std::array kKeys = {
    "Tab",   "Tab",   "shift+Tab", "Return", "Return",   "Escape",     "Up",     "Down",
    "Left",  "Right", "Home",      "End",    "Page_Up",  "Page_Down",  "Delete", "BackSpace",
    "space", "F2",    "F10",       "ctrl+d", "ctrl+Tab", "ctrl+Home",  "alt+f",  "alt+e",
    "alt+t", "alt+v", "alt+h",     "alt+i",  "alt+s",    "ctrl+a",     "ctrl+c", "ctrl+v",
    "plus",  "minus", "alt+Down",  "alt+F4", "ctrl+z",   "shift+Down", "Insert", "alt+u"};

constexpr std::array kTexts = {"1",   "7",     "100",  "12.5",    "999999", "2147483648", "-3",
                               "0",   "50",    "CORN", "Hay 1st", "O'Neil", "100%",       ".",
                               "1e3", "STRAW", "N",    "y",       "  ",     "0.001",      "3000"};

bool IsLeftAlone(const std::string& caption) {
  std::string plain = caption;
  std::erase(plain, '&');
  return std::find(kLeftAlone.begin(), kLeftAlone.end(), plain) != kLeftAlone.end();
}

bool IsClickable(const Widget& widget) {
  constexpr std::array kKinds = {"Button", "CheckBox", "Edit", "Combo", "List", "Box", "Window"};
  return std::any_of(kKinds.begin(), kKinds.end(), [&](const char* const kind) {
    return widget.kind.find(kind) != std::string::npos || widget.name.starts_with("cmd");
  });
}

bool HasFileDialog(const Screen& screen) { return screen.Find("fileNameEdit") != nullptr; }

// How long the main thread of the process has waited for a processor so far.
milliseconds WaitedForProcessor(pid_t process) {
  std::ifstream file("/proc/" + std::to_string(process) + "/schedstat");
  long long ran = 0;
  long long waited = 0;
  file >> ran >> waited;
  return milliseconds{waited / 1'000'000};
}

}  // namespace

Monkey::Monkey(std::uint32_t seed) : random_(seed) {
  WriteShortIni();
  MakeDatabases();
  fs::create_directories(data / "Ports");
  fs::create_symlink(ModulePath(), data / "Ports/COM2");
  module_ = StartModule({"--load", SitePath("day06.qxt"), "--baud", "0"});
  fs::current_path(data);  // a name without a folder is a file here
}

Monkey::~Monkey() {
  trouble_.reset();
  program.reset();
  fs::current_path(working_folder_);
}

int Monkey::Pick(int least, int most) {
  const auto span = static_cast<std::uint32_t>(most - least + 1);
  return least + static_cast<int>(random_() % span);
}

void Monkey::Note(const std::string& words) {
  log_.push_back(words);
  if (log_.size() > kSpecified) {
    log_.pop_front();
  }
}

std::string Monkey::Log() const {
  std::ostringstream all;
  all << "the last actions:\n";
  for (const std::string& words : log_) {
    all << "  " << words << '\n';
  }
  all << "the windows:";
  for (const std::string& title : windows.Titles()) {
    all << " \"" << title << '"';
  }
  all << "\nthe box: " << Look().BoxText() << '\n' << program->Err();
  return all.str();
}

void Monkey::Act(int actions) {
  StartProgram();
  for (int action = 0; action < actions && !HasFailure(); ++action) {
    if (trouble_left_ > 0 && --trouble_left_ == 0) {
      trouble_.reset();
      Note("the trouble is over");
    }
    const Screen screen = Look();
    Do(screen);
    Check();
  }
}

void Monkey::Do(const Screen& screen) {
  if (HasFileDialog(screen) && screen.BoxText().empty()) {
    AnswerDialog();
    return;
  }
  const int what = Pick(1, 100);
  if (what <= 50) {
    ClickSomething(screen);
  } else if (what <= 70) {
    PressSomething();
  } else if (what <= 88) {
    TypeSomething();
  } else if (what <= 94 && !trouble_) {
    MakeTrouble();
  } else {
    const Point place{.x = Pick(130, 1150), .y = Pick(180, 900)};
    Note("click at " + std::to_string(place.x) + ',' + std::to_string(place.y));
    input.Click(place);
  }
}

// A file dialog can rename and delete files anywhere, so nothing is clicked in it.
void Monkey::AnswerDialog() {
  const std::array<std::string, 12> paths = {(data / "SITE.RDB").string(),
                                             (data / "DAY1.TDB").string(),
                                             (data / "NEW.RDB").string(),
                                             (data / "NEW.TDB").string(),
                                             (data / "OUT.PDF").string(),
                                             (data / "NEW.QXT").string(),
                                             SitePath("day07.qxt"),
                                             SitePath("day09.qxt"),
                                             SitePath("SITE.RDB"),
                                             (data / "none/NEW.RDB").string(),
                                             (data / "VRX-2260.INI").string(),
                                             "/proc/version"};
  if (Chance(25)) {
    Note("Escape in the file dialog");
    Keys({"Escape"});
    return;
  }
  const std::string& path = Any(paths);
  Note("the file dialog gets " + path);
  Keys({"ctrl+a"});
  Type(path);
  Keys({"Return"});
}

std::vector<Monkey::Target> Monkey::Targets(const Screen& screen) const {
  const bool menu_open = std::any_of(screen.Widgets().begin(), screen.Widgets().end(),
                                     [](const Widget& widget) { return widget.menu_depth > 0; });
  std::vector<Target> targets;
  for (const Widget& widget : screen.Widgets()) {
    if (widget.behind_dialog || !widget.enabled || (menu_open && widget.menu_depth < 1) ||
        IsLeftAlone(widget.text)) {
      continue;
    }
    const std::string name = widget.kind + ' ' + widget.name;
    const bool is_list = widget.kind.find("List") != std::string::npos ||
                         widget.kind.find("Combo") != std::string::npos;
    for (const Item& item : widget.items) {
      if (!is_list && item.enabled && !IsLeftAlone(item.text)) {
        targets.push_back({name + " item " + item.text, item.place.Center()});
      }
    }
    if (IsClickable(widget)) {
      targets.push_back({name + " \"" + widget.text.substr(0, 20) + '"', widget.place.Center()});
    }
    for (std::size_t i = 0; i < widget.cells.size(); i += 7) {
      const Cell& cell = widget.cells[i];
      targets.push_back(
          {name + " cell " + std::to_string(cell.row) + ',' + std::to_string(cell.column),
           cell.place.Center()});
    }
  }
  return targets;
}

void Monkey::ClickSomething(const Screen& screen) {
  const std::vector<Target> targets = Targets(screen);
  if (targets.empty()) {
    Note("Escape");
    Keys({"Escape"});
    return;
  }
  const Target& target = Any(targets);
  const int times = Chance(12) ? 2 : 1;
  Note("click " + std::to_string(times) + " times on " + target.words);
  input.Click(target.place, times);
}

void Monkey::PressSomething() {
  const std::string key = Any(kKeys);
  Note("key " + key);
  Keys({key});
}

void Monkey::TypeSomething() {
  const std::string text = Any(kTexts);
  const bool ends = Chance(60);
  Note("type " + text + (ends ? " and Return" : ""));
  Type(text);
  if (ends) {
    Keys({"Return"});
  }
}

void Monkey::MakeTrouble() {
  const fs::path file = Chance(50) ? recipes : transactions;
  const int kind = Pick(1, 3);
  try {
    trouble_file_ = kind == 2 ? file : fs::path();
    if (kind == 1) {
      Note("the disk is full");
      trouble_ = FullDisk(data);
    } else if (kind == 2) {
      Note("another program holds " + file.filename().string());
      trouble_ = LockedDatabase(file);
    } else {
      Note("away is " + file.filename().string());
      trouble_ = VanishedFile(file);
    }
    trouble_left_ = Pick(2, 10);
  } catch (const std::exception& failure) {
    Note(std::string("no trouble: ") + failure.what());
  }
}

// The program may have exited: normally, with the exit code 0, and it starts again.
void Monkey::Check() {
  const bool responds = Responds();
  if (program->Ended()) {
    ASSERT_EQ(program->Wait(), 0) << Log();
    ASSERT_FALSE(fs::exists(lock)) << Log();
    trouble_.reset();
    trouble_left_ = 0;
    Note("the program was left and starts again");
    CheckDatabases();
    program = Start();
    ASSERT_TRUE(WaitFor([](const Screen& screen) { return !screen.Empty(); })) << Log();
    return;
  }
  ASSERT_TRUE(responds) << "no answer for " << kHang.count() << " ms; " << Log();
  CheckDatabases();
}

// Time in which the program waits for a processor is the machine's, not the program's.
bool Monkey::Responds() {
  constexpr milliseconds kPiece{200};
  const Clock::time_point start = Clock::now();
  const milliseconds waited_before = WaitedForProcessor(program->Id());
  for (;;) {
    const std::vector<xcb_window_t> all = windows.All();
    if (program->Ended() || all.empty() || windows.Answers(all.front(), kPiece)) {
      return true;
    }
    const milliseconds waited = WaitedForProcessor(program->Id()) - waited_before;
    if (Clock::now() - start > kHang + waited) {
      return program->Ended();
    }
  }
}

void Monkey::CheckDatabases() const {
  for (const fs::directory_entry& entry : fs::directory_iterator(data)) {
    const std::string name = entry.path().filename().string();
    const bool is_database =
        name.find(".RDB") != std::string::npos || name.find(".TDB") != std::string::npos;
    if (!is_database || name.ends_with("-journal") || entry.path() == trouble_file_) {
      continue;
    }
    try {
      SQLite::Database file(entry.path(), SQLite::OPEN_READONLY, kMonkeyTimeout);
      ASSERT_EQ(file.execAndGet("PRAGMA integrity_check").getString(), "ok") << name << Log();
    } catch (const SQLite::Exception& failure) {
      FAIL() << name << ": " << failure.what() << "; " << Log();
    }
  }
}

void Monkey::Finish() {
  if (HasFailure()) {
    return;
  }
  trouble_.reset();
  trouble_file_.clear();
  program->Signal(SIGTERM);
  EXPECT_EQ(ExitCode(), 0) << Log();
  EXPECT_FALSE(fs::exists(lock));
  CheckDatabases();
}

}  // namespace vrx::testing
