// Run by scripts/pictures: leaves figures of the manual as small pictures, in files of their names.
//
//   grab_figures PROGRAM_DIRECTORY FOLDER FIGURE...

#include <QApplication>
#include <algorithm>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "base/error.h"
#include "make_manual/figures.h"
#include "make_manual/offscreen_session.h"

namespace {

using namespace vrx::manual;

constexpr int kFirstFigure = 3;

// The colours that a picture has most, few enough for a byte a pixel.
QList<QRgb> Palette(const QImage& picture) {
  constexpr std::size_t kMost = 256;
  std::map<QRgb, int> pixels;
  for (int y = 0; y < picture.height(); ++y) {
    for (int x = 0; x < picture.width(); ++x) {
      ++pixels[picture.pixel(x, y)];
    }
  }
  std::vector<std::pair<int, QRgb>> frequent;
  frequent.reserve(pixels.size());
  for (const auto& [colour, count] : pixels) {
    frequent.emplace_back(count, colour);
  }
  std::sort(frequent.rbegin(), frequent.rend());
  frequent.resize(std::min(frequent.size(), kMost));
  QList<QRgb> palette;
  for (const auto& [count, colour] : frequent) {
    palette.push_back(colour);
  }
  return palette;
}

void Leave(const QImage& picture, const std::filesystem::path& file) {
  const QImage small =
      picture.convertToFormat(QImage::Format_Indexed8, Palette(picture), Qt::ThresholdDither);
  constexpr int kSmallest = 0;  // the quality that packs most
  if (!small.save(QString::fromStdString(file.string()), "PNG", kSmallest)) {
    throw vrx::Error("cannot write " + file.string());
  }
}

void GrabFigures(const std::filesystem::path& program_directory,
                 const std::filesystem::path& folder, const std::vector<std::string>& names) {
  const std::filesystem::path target = std::filesystem::absolute(folder);
  std::filesystem::create_directories(target);
  for (const std::string& name : names) {
    const auto figures = Figures();
    const auto figure = std::find_if(figures.begin(), figures.end(),
                                     [&](const Figure& each) { return each.name == name; });
    if (figure == figures.end()) {
      throw vrx::Error("there is no figure \"" + name + "\"");
    }
    SampleProgram program(program_directory);
    Leave(figure->grab(program), target / (name + ".png"));
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc <= kFirstFigure) {
    std::fputs("usage: grab_figures PROGRAM_DIRECTORY FOLDER FIGURE...\n", stderr);
    return 2;
  }
  const OffscreenSession studio(1);
  const QApplication application(argc, argv);
  OffscreenSession::SetLook();
  try {
    GrabFigures(argv[1], argv[2], {argv + kFirstFigure, argv + argc});
    return 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "grab_figures: %s\n", error.what());
    return 1;
  }
}
