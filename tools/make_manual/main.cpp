// Run by the build: makes the user's manual from its chapters, with pictures of the program's own
// windows.
//
//   make_manual CHAPTERS_FOLDER PROGRAM_DIRECTORY TARGET PAGES_FOLDER

#include <QApplication>
#include <QHashFunctions>
#include <algorithm>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "base/error.h"
#include "base/files.h"
#include "desktop/app/captions.h"
#include "desktop/dialogs/about_and_splash.h"
#include "make_manual/chapter_pages.h"
#include "make_manual/figures.h"
#include "make_manual/manual_pdf.h"
#include "make_manual/manual_style.h"
#include "make_manual/manual_text.h"
#include "make_manual/offscreen_session.h"
#include "widgets/qt_text.h"

namespace {

namespace fs = std::filesystem;
using namespace vrx::manual;

constexpr std::size_t kLargestChapter = 1U << 20U;
constexpr int kTitleCaption = 1063;
constexpr int kCopyrightCaption = 1030;

// In the order of the names, which begin with a number.
std::vector<Chapter> ReadChapters(const fs::path& folder) {
  std::vector<fs::path> files;
  for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
    if (entry.path().extension() == ".md") {
      files.push_back(entry.path());
    }
  }
  std::sort(files.begin(), files.end());
  std::vector<Chapter> chapters;
  QString all;
  for (const fs::path& file : files) {
    const std::string text = vrx::ReadFileBytes(file, kLargestChapter);
    all += QString::fromStdString(text);
    chapters.push_back(ParseChapter(file.filename().string(), text));
  }
  if (chapters.empty()) {
    throw vrx::Error("there is no chapter in " + folder.string());
  }
  RequireFonts(all);
  return chapters;
}

// Only the figures that the chapters show; setting them finds the ones that do not exist.
Pictures GrabFigures(const std::vector<Chapter>& chapters, const fs::path& program_directory) {
  std::set<QString> wanted;
  for (const Chapter& chapter : chapters) {
    for (QTextBlock block = chapter.document->begin(); block.isValid(); block = block.next()) {
      wanted.insert(FigureIn(block).name());
    }
  }
  SampleProgram program(program_directory);
  Pictures pictures;
  for (const Figure& figure : Figures()) {
    const QString name = "screen:" + vrx::ToQString(figure.name);
    if (wanted.contains(name)) {
      pictures.emplace(name, figure.grab(program));
    }
  }
  return pictures;
}

void MakeManual(const fs::path& source, const fs::path& program_directory, const fs::path& target,
                const fs::path& pages) {
  const std::vector<Chapter> chapters = ReadChapters(source);
  const auto caption = [](int id) { return vrx::ToQString(vrx::CaptionText(id).value()); };
  const Pictures pictures = GrabFigures(chapters, program_directory);
  const QByteArray pdf = WriteManual(chapters, pictures,
                                     {.product = caption(kTitleCaption),
                                      .version = vrx::VersionText(),
                                      .copyright = caption(kCopyrightCaption),
                                      .logo = vrx::kLogoPath});
  WriteChapterPages(chapters, pictures, pages);
  vrx::WriteFileBytes(target, {pdf.constData(), static_cast<std::size_t>(pdf.size())});
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 5) {
    std::fputs("usage: make_manual CHAPTERS_FOLDER PROGRAM_DIRECTORY TARGET PAGES_FOLDER\n",
               stderr);
    return 2;
  }
  const OffscreenSession studio(2);
  QHashSeed::setDeterministicGlobalSeed();  // the PDF lists its fonts by a hash
  const QApplication application(argc, argv);
  OffscreenSession::SetLook();
  try {
    MakeManual(argv[1], argv[2], argv[3], argv[4]);
    return 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "make_manual: %s\n", error.what());
    return 1;
  }
}
