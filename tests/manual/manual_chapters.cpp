#include "manual/manual_chapters.h"

#include <QTextFrame>
#include <QTextLayout>
#include <QTextTable>
#include <algorithm>
#include <filesystem>
#include <utility>

#include "support/temp_folder.h"

namespace vrx::testing {

using manual::BlockKind;
using manual::Chapter;

std::vector<Chapter> ManualChapters() {
  std::vector<std::filesystem::path> files;
  for (const auto& entry : std::filesystem::directory_iterator(VRX_SOURCE_DIR "/docs/manual")) {
    files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  std::vector<Chapter> chapters;
  chapters.reserve(files.size());
  for (const std::filesystem::path& file : files) {
    chapters.push_back(manual::ParseChapter(file.filename().string(), ReadAll(file)));
  }
  return chapters;
}

Spans SpansOf(const QTextBlock& block) {
  if (manual::KindOf(block) == BlockKind::kFigure) {
    const QString caption = manual::FigureIn(block).property(QTextFormat::ImageAltText).toString();
    return {{.text = caption.toStdString(), .target = {}}};
  }
  Spans spans;
  int quotes = 0;
  bool quoting = false;
  for (const QTextLayout::FormatRange& part : block.textFormats()) {
    Span span{.style = manual::StyleOf(block, part.format),
              .text = {},
              .target = part.format.anchorHref().toStdString()};
    const auto end_span = [&] {
      if (!span.text.empty()) {
        span.quote = quoting ? quotes : 0;
        spans.push_back(span);
        span.text.clear();
      }
    };
    for (const QChar character : block.text().mid(part.start, part.length)) {
      if (character == u'\u201c' || character == u'\u201d') {
        end_span();
        quoting = character == u'\u201c';
        quotes += quoting ? 1 : 0;
      } else if (character == QChar::LineSeparator) {
        end_span();
        spans.push_back({.text = {}, .target = {}});
      } else {
        span.text += QString(character).toStdString();
      }
    }
    end_span();
  }
  return spans;
}

std::vector<Spans> TextsOf(const Chapter& chapter) {
  std::vector<Spans> texts;
  for (QTextBlock block = chapter.document->begin(); block.isValid(); block = block.next()) {
    if (manual::KindOf(block) != BlockKind::kCode) {
      texts.push_back(SpansOf(block));
    }
  }
  return texts;
}

std::vector<QTextBlock> BlocksOf(const Chapter& chapter, BlockKind kind) {
  std::vector<QTextBlock> blocks;
  for (QTextBlock block = chapter.document->begin(); block.isValid(); block = block.next()) {
    if (manual::KindOf(block) == kind) {
      blocks.push_back(block);
    }
  }
  return blocks;
}

std::vector<Rows> TablesOf(const Chapter& chapter) {
  std::vector<Rows> tables;
  for (QTextFrame* const frame : chapter.document->rootFrame()->childFrames()) {
    const auto& table = dynamic_cast<const QTextTable&>(*frame);
    Rows& rows = tables.emplace_back();
    for (int row = 0; row < table.rows(); ++row) {
      rows.emplace_back();
      for (int column = 0; column < table.columns(); ++column) {
        rows.back().push_back(SpansOf(table.cellAt(row, column).firstCursorPosition().block()));
      }
    }
  }
  return tables;
}

}  // namespace vrx::testing
