#include <QColor>
#include <QFont>
#include <QFontMetricsF>
#include <QPainter>
#include <QPen>
#include <QRectF>
#include <QString>
#include <QStringList>
#include <QTextLayout>
#include <algorithm>
#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <utility>

#include "base/error.h"
#include "base/translation.h"
#include "report/period_page.h"

namespace vrx {
namespace {

// Lengths are units of a picture, 1/96 inch.
constexpr double kUnitsPerInch = 96;
constexpr double kPictureHeight = 250;
constexpr double kGap = 6;
constexpr double kHeadGap = 18;  // above a heading
constexpr int kTitleLetter = 22;
constexpr int kHeadingLetter = 16;
constexpr int kTextLetter = 12;
constexpr int kTableLetter = 11;
constexpr int kSmallLetter = 10;
constexpr double kLeastColumn = 60;   // to which a column of texts may shrink
constexpr qsizetype kMostLines = 20;  // of a cell; a row must find room on a sheet

constexpr QRgb kText = 0xFF1A1A1A;
constexpr QRgb kQuiet = 0xFF595959;
constexpr QRgb kLine = 0xFFD9D9D9;

QString Shown(const std::string& text) { return QString::fromStdString(text); }

QFont FontOfSheet(int letter, bool bold = false) {
  QFont font(Look().family);
  font.setHintingPreference(QFont::PreferNoHinting);
  font.setPixelSize(letter);
  font.setBold(bold);
  return font;
}

QStringList LinesOfText(const QString& text, const QFont& font, double width) {
  QTextLayout layout(text, font);
  QTextOption option;
  option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
  layout.setTextOption(option);
  layout.beginLayout();
  QStringList lines;
  for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
    line.setLineWidth(width);
    lines.append(text.mid(line.textStart(), line.textLength()).trimmed());
  }
  layout.endLayout();
  return lines;
}

// Something that is not cut, `above` below the piece before it on the same sheet.
struct Piece {
  double height = 0;
  double above = 0;
  bool with_next = false;  // on the same sheet
  std::function<void(QPainter&, double top)> draw = {};
  std::shared_ptr<const Piece> again = {};  // goes first on a sheet that begins with this one
};

struct Words {
  QString text;
  QFont font;
  QRgb color;
};

void DrawWords(QPainter& painter, const QRectF& box, Qt::Alignment side, const Words& words) {
  painter.setFont(words.font);
  painter.setPen(QColor::fromRgb(words.color));
  painter.drawText(box, static_cast<int>(side) | Qt::TextSingleLine | Qt::TextDontClip, words.text);
}

// Lays out one table: as wide as the sheet, and smaller if its numbers need that.
class SheetTable {
 public:
  SheetTable(const AnswerTable& table, double width) : table_(table), width_(width) {
    MeasureColumns();
  }

  [[nodiscard]] std::vector<Piece> Pieces() const {
    std::vector<QString> captions;
    for (const AnswerColumn& column : table_.columns) {
      captions.push_back(Shown(std::string(column.caption)));
    }
    const auto head = std::make_shared<Piece>(RowPiece(captions, true, kQuiet));
    std::vector<Piece> pieces{*head};
    pieces[0].above = kGap;
    pieces[0].with_next = true;
    for (const std::vector<AnswerCell>& row : table_.rows) {
      pieces.push_back(RowPiece(TextsOf(row), false, kLine));
      pieces.back().again = head;
    }
    if (!table_.total.empty()) {
      pieces.back().with_next = true;
      pieces.push_back(RowPiece(TextsOf(table_.total), true, kLine));
      pieces.back().again = head;
    }
    return pieces;
  }

 private:
  static constexpr double kPadding = 4;   // at both sides of a cell
  static constexpr double kRowGap = 2;    // above and below the texts of a row
  static constexpr double kTextGap = 10;  // between numbers at the right and texts at the left

  // What the column has at its left in addition to the padding.
  [[nodiscard]] double GapBefore(std::size_t column) const {
    const bool after_number = column > 0 && IsNumber(table_.columns[column - 1].kind);
    return after_number && !IsNumber(table_.columns[column].kind) ? kTextGap : 0;
  }
  // Of the texts.
  [[nodiscard]] double WidthOf(std::size_t column) const {
    return widths_[column] - 2 * kPadding - GapBefore(column);
  }

  [[nodiscard]] std::vector<QString> TextsOf(const std::vector<AnswerCell>& row) const {
    std::vector<QString> texts;
    for (std::size_t i = 0; i < row.size(); ++i) {
      texts.push_back(Shown(ShownText(table_.columns.at(i), row[i])));
    }
    return texts;
  }

  void Widen(const std::vector<AnswerCell>& row, const QFontMetricsF& metrics) {
    const std::vector<QString> texts = TextsOf(row);
    for (std::size_t i = 0; i < texts.size(); ++i) {
      widths_[i] =
          std::max(widths_[i], metrics.horizontalAdvance(texts[i]) + 2 * kPadding + GapBefore(i));
    }
  }

  void MeasureColumns() {
    const QFontMetricsF plain(FontOfSheet(kTableLetter));
    const QFontMetricsF bold(FontOfSheet(kTableLetter, true));
    for (const AnswerColumn& column : table_.columns) {
      double widest = 0;
      for (const QString& word : Shown(std::string(column.caption)).split(' ')) {
        widest = std::max(widest, bold.horizontalAdvance(word));
      }
      widths_.push_back(widest + 2 * kPadding + GapBefore(widths_.size()));
    }
    for (const std::vector<AnswerCell>& row : table_.rows) {
      Widen(row, plain);
    }
    Widen(table_.total, bold);
    ShrinkTexts();
    double sum = 0;
    for (const double width : widths_) {
      sum += width;
    }
    scale_ = std::min(1.0, width_ / sum);
    const double room = width_ / scale_ - sum;
    for (double& width : widths_) {
      width += room / static_cast<double>(widths_.size());
    }
  }

  // Takes what is too much from the widest column of texts.
  void ShrinkTexts() {
    double excess = -width_;
    std::optional<std::size_t> widest;
    for (std::size_t i = 0; i < widths_.size(); ++i) {
      excess += widths_[i];
      if (!IsNumber(table_.columns[i].kind) && (!widest || widths_[i] > widths_[*widest])) {
        widest = i;
      }
    }
    if (excess > 0 && widest) {
      widths_[*widest] = std::max(kLeastColumn, widths_[*widest] - excess);
    }
  }

  [[nodiscard]] Piece RowPiece(const std::vector<QString>& texts, bool bold, QRgb rule) const {
    const QFont font = FontOfSheet(kTableLetter, bold);
    std::vector<QStringList> cells;
    qsizetype most = 1;
    for (std::size_t i = 0; i < texts.size(); ++i) {
      QStringList lines = LinesOfText(texts[i], font, WidthOf(i));
      if (lines.size() > kMostLines) {
        lines.resize(kMostLines);
        lines.back() += QChar(0x2026);
      }
      most = std::max(most, lines.size());
      cells.push_back(std::move(lines));
    }
    const double line = QFontMetricsF(font).height();
    const double height = (static_cast<double>(most) * line + 2 * kRowGap) * scale_;
    return {.height = height,
            .draw = [this, cells = std::move(cells), font, line, height, rule](QPainter& painter,
                                                                               double top) {
              painter.setPen(QPen(QColor::fromRgb(rule), 1));
              painter.drawLine(QPointF(0, top + height), QPointF(width_, top + height));
              painter.save();
              painter.translate(0, top);
              painter.scale(scale_, scale_);
              DrawCells(painter, cells, font, line);
              painter.restore();
            }};
  }

  void DrawCells(QPainter& painter, const std::vector<QStringList>& cells, const QFont& font,
                 double line) const {
    double left = 0;
    for (std::size_t i = 0; i < cells.size(); ++i) {
      const Qt::Alignment side = IsNumber(table_.columns[i].kind) ? Qt::AlignRight : Qt::AlignLeft;
      QRectF box(left + kPadding + GapBefore(i), kRowGap, WidthOf(i), line);
      for (const QString& text : cells[i]) {
        DrawWords(painter, box, side, {text, font, kText});
        box.translate(0, line);
      }
      left += widths_[i];
    }
  }

  const AnswerTable& table_;
  double width_;
  double scale_ = 1;
  std::vector<double> widths_;
};

// The page as a list of pieces from top to bottom.
class SheetPieces {
 public:
  explicit SheetPieces(double width) : width_(width) {}

  std::vector<Piece> Of(const PeriodPage& page) {
    AddText(page.title, FontOfSheet(kTitleLetter, true), kText, 0, true);
    QStringList facts;
    for (const std::string& fact : page.facts) {
      facts.append(Shown(fact));
    }
    AddText(facts.join(QStringLiteral(" \u00B7 ")).toStdString(), FontOfSheet(kSmallLetter), kQuiet,
            0);
    for (const std::string& note : page.notes) {
      AddText(note, FontOfSheet(kTextLetter), kText, kGap);
    }
    AddFigures(page.figures);
    for (const PageSection& section : page.sections) {
      AddSection(section);
    }
    return std::move(pieces_);
  }

 private:
  void AddText(const std::string& text, const QFont& font, QRgb color, double above,
               bool with_next = false) {
    const double height = QFontMetricsF(font).height();
    for (const QString& line : LinesOfText(Shown(text), font, width_)) {
      pieces_.push_back(
          {.height = height,
           .above = above,
           .with_next = with_next,
           .draw = [this, line, font, color, height](QPainter& painter, double top) {
             DrawWords(painter, {0, top, width_, height}, Qt::AlignLeft, {line, font, color});
           }});
      above = 0;
    }
  }

  void AddFigures(const std::vector<PageFigure>& figures) {
    constexpr std::size_t kInARow = 4;
    const QFont caption = FontOfSheet(kSmallLetter);
    const QFont value = FontOfSheet(kTextLetter + 2, true);
    const double small = QFontMetricsF(caption).height();
    const double large = QFontMetricsF(value).height();
    for (std::size_t first = 0; first < figures.size(); first += kInARow) {
      const auto begin = figures.begin() + static_cast<std::ptrdiff_t>(first);
      const auto count = std::min(kInARow, figures.size() - first);
      pieces_.push_back({.height = small + large,
                         .above = kGap * 2,
                         .draw = [row = std::vector<PageFigure>(
                                      begin, begin + static_cast<std::ptrdiff_t>(count)),
                                  caption, value, small, large,
                                  cell = width_ / kInARow](QPainter& painter, double top) {
                           double left = 0;
                           for (const PageFigure& figure : row) {
                             const double width = cell - kGap;
                             DrawWords(painter, {left, top, width, small}, Qt::AlignLeft,
                                       {Shown(figure.caption), caption, kQuiet});
                             const QString text = QFontMetricsF(value).elidedText(
                                 Shown(figure.text), Qt::ElideRight, width);
                             DrawWords(painter, {left, top + small, width, large}, Qt::AlignLeft,
                                       {text, value, kText});
                             left += cell;
                           }
                         }});
    }
  }

  void AddSection(const PageSection& section) {
    AddText(section.heading, FontOfSheet(kHeadingLetter, true), kText, kHeadGap, true);
    AddText(section.how, FontOfSheet(kSmallLetter), kQuiet, 0, true);
    for (const PageChart& chart : section.charts) {
      AddPicture(PictureOf(chart, {width_, kPictureHeight}, Look()));
    }
    for (const AnswerTable& table : section.tables) {
      tables_.push_back(std::make_unique<SheetTable>(table, width_));
      std::ranges::move(tables_.back()->Pieces(), std::back_inserter(pieces_));
    }
    for (const std::string& sentence : section.sentences) {
      AddText(sentence, FontOfSheet(kSmallLetter), kText, kGap);
    }
  }

  void AddPicture(Picture picture) {
    const double height = picture.size.height();
    pieces_.push_back({.height = height,
                       .above = kGap,
                       .draw = [picture = std::move(picture)](QPainter& painter, double top) {
                         painter.save();
                         painter.translate(0, top);
                         Paint(painter, picture, Look());
                         painter.restore();
                       }});
  }

  double width_;
  std::vector<Piece> pieces_;
  std::vector<std::unique_ptr<SheetTable>> tables_;  // which the pieces draw with
};

struct Placed {
  const Piece* piece;
  double top;
};
using Sheets = std::vector<std::vector<Placed>>;

// The height from piece `i` to the first one that may end a sheet.
double TogetherHeight(const std::vector<Piece>& pieces, std::size_t i) {
  double height = pieces[i].height;
  while (pieces[i].with_next && i + 1 < pieces.size()) {
    ++i;
    height += pieces[i].above + pieces[i].height;
  }
  return height;
}

Sheets PlacedPieces(const std::vector<Piece>& pieces, double height) {
  Sheets sheets(1);
  double bottom = 0;  // of the sheet's last piece
  for (std::size_t i = 0; i < pieces.size(); ++i) {
    const Piece& piece = pieces[i];
    double top = sheets.back().empty() ? 0 : bottom + piece.above;
    const bool follows = i > 0 && pieces[i - 1].with_next;
    if (!sheets.back().empty() && !follows && top + TogetherHeight(pieces, i) > height) {
      sheets.emplace_back();
      top = 0;
      if (piece.again) {
        sheets.back().push_back({piece.again.get(), 0});
        top = piece.again->height;
      }
    }
    sheets.back().push_back({&piece, top});
    bottom = top + piece.height;
  }
  return sheets;
}

}  // namespace

int PrintPeriodPage(const PeriodPage& page, PrintTarget& paper) {
  QPagedPaintDevice& device = paper.Device();
  const double scale = device.logicalDpiX() / kUnitsPerInch;
  const double width = device.width() / scale;
  const double height = device.height() / scale;
  const QFont small = FontOfSheet(kSmallLetter);
  const double foot = QFontMetricsF(small).height();
  SheetPieces maker(width);
  const std::vector<Piece> pieces = maker.Of(page);
  const Sheets sheets = PlacedPieces(pieces, height - 2 * foot);
  {
    QPainter painter;
    if (!painter.begin(&device)) {
      throw Error(Tr("the printer accepts no document"));
    }
    painter.scale(scale, scale);
    for (std::size_t i = 0; i < sheets.size(); ++i) {
      if (i > 0 && !device.newPage()) {
        throw Error(Tr("the printer accepts no further page"));
      }
      for (const Placed& placed : sheets[i]) {
        placed.piece->draw(painter, placed.top);
      }
      const QRectF box(0, height - foot, width, foot);
      DrawWords(painter, box, Qt::AlignLeft, {Shown(page.title), small, kQuiet});
      DrawWords(painter, box, Qt::AlignRight,
                {QStringLiteral("Page %1 of %2").arg(i + 1).arg(sheets.size()), small, kQuiet});
    }
    if (!painter.end()) {
      throw Error(Tr("the printer does not accept the end of the document"));
    }
  }
  paper.Finish();
  return static_cast<int>(sheets.size());
}

}  // namespace vrx
