#pragma once

#include <QProcess>
#include <QStringList>
#include <filesystem>
#include <string>

#include <gtest/gtest.h>

#include "support/environment.h"
#include "support/temp_folder.h"

namespace vrx::testing {

// A desktop of its own: folders for data and settings, and programs in a path.
class DesktopFolders {
 public:
  DesktopFolders() {
    std::filesystem::create_directories(folder / "data/applications");
    std::filesystem::create_directories(folder / "config");
    std::filesystem::create_directories(folder / "bin");
    // The kinds of files are the machine's.
    std::filesystem::create_directory_symlink("/usr/share/mime", folder / "data/mime");
  }

  // A program that keeps what it was started with, word by word, in the folder's file `name`.
  std::filesystem::path MakeProgram(const std::string& name) const {
    const std::string kept = (folder / name).string();
    auto path =
        folder.Write("bin/" + name,
                     "#!/bin/sh\nPATH=/usr/bin:/bin\n{ pwd; for word; do echo \"<$word>\"; done; "
                     "grep SigBlk /proc/self/status; } >'" +
                         kept +
                         ".new'\n"
                         "mv '" +
                         kept + ".new' '" + kept + "'\n");
    std::filesystem::permissions(path, std::filesystem::perms::owner_all);
    return path;
  }

  void MakeEntry(const std::string& name, const std::string& lines) const {
    folder.Write("data/applications/" + name, "[Desktop Entry]\nType=Application\n" + lines);
  }
  // A program with an entry that starts it with a file.
  std::filesystem::path MakeOpener(const std::string& name, const std::string& more = "") const {
    MakeEntry(name + ".desktop", "Exec=" + name + " %f\n" + more);
    return MakeProgram(name);
  }
  void Cache(const std::string& lines) const {
    folder.Write("data/applications/mimeinfo.cache", "[MIME Cache]\n" + lines);
  }
  void Prefer(const std::string& groups) const { folder.Write("config/mimeapps.list", groups); }

  // What document_opener_process prints, line by line: its first line is the code. A process for
  // each call, because GIO reads the folders once.
  QStringList Ask(const QString& what, const std::string& document = "Readme.TXT",
                  const std::string& below = "") const {
    QProcess process;
    process.start(DOCUMENT_OPENER_PROCESS,
                  {what, QString::fromStdString(folder.Path().string() + below),
                   QString::fromStdString(document)});
    EXPECT_TRUE(process.waitForFinished());
    EXPECT_EQ(process.exitCode(), 0);
    EXPECT_EQ(process.readAllStandardError().toStdString(), "");
    QStringList lines = QString::fromUtf8(process.readAllStandardOutput()).split(u'\n');
    lines.removeLast();  // below the last line end
    return lines;
  }

  TempFolder folder;

 private:
  Environment data_home_{"XDG_DATA_HOME", (folder / "data").string()};
  Environment data_dirs_{"XDG_DATA_DIRS", (folder / "none").string()};
  Environment config_home_{"XDG_CONFIG_HOME", (folder / "config").string()};
  Environment config_dirs_{"XDG_CONFIG_DIRS", (folder / "none").string()};
  Environment desktop_{"XDG_CURRENT_DESKTOP", "GNOME"};
  Environment path_{"PATH", (folder / "bin").string() + ":/usr/bin:/bin"};
};

}  // namespace vrx::testing
