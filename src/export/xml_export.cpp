#include "export/xml_export.h"

#include <cstddef>
#include <cstdint>
#include <vector>

#include "base/encoding.h"
#include "base/files.h"
#include "export/export_columns.h"
#include "export/export_plan.h"
#include "export/level_walk.h"
#include "history/data_group.h"

namespace vrx {

namespace {

constexpr std::size_t kFlushSize = std::size_t{256} * 1024;

class XmlWriter : public LevelVisitor {
 public:
  XmlWriter(const ColumnDictionary& dictionary, std::span<const WalkedField> fields,
            std::string_view style_sheet, AtomicFile& file)
      : file_(file), fields_(fields) {
    for (const WalkedField& field : fields) {
      elements_.push_back(XmlElementName(field.name));
    }
    xml_ += R"(<?xml version="1.0" encoding="UTF-8"?><?xml-stylesheet type='text/xsl' href=')";
    xml_ += style_sheet;
    xml_ += "'?><Transactions><Columns>";
    for (const ExportedColumn& column : dictionary) {
      xml_ += "<Column>";
      AppendXmlText(column.caption, xml_);
      xml_ += "</Column>";
    }
    xml_ += "</Columns>";
  }

  void OpenGroup(const WalkedGroup& group) override {
    xml_ += '<';
    xml_ += group.level->element;
    AppendAttribute("Value", group.value, group.content);
    for (const GroupSum& sum : group.sums) {
      AppendAttribute(sum.weight->attribute, sum.value ? CellView(*sum.value) : CellView(),
                      ColumnContent::kWeight);
    }
    for (const DifferenceTotal& difference : group.differences) {
      AppendAttribute(difference.field, CellView(std::string_view(difference.text)),
                      ColumnContent::kText);
    }
    xml_ += '>';
  }

  void Record(std::span<const CellView> cells) override {
    xml_ += "<Record>";
    for (std::size_t i = 0; i < cells.size(); ++i) {
      AppendTag("<", elements_[i]);
      value_.clear();
      AppendCellText(cells[i], fields_[i].content, value_);
      AppendXmlText(value_, xml_);
      AppendTag("</", elements_[i]);
    }
    xml_ += "</Record>";
    FlushIfLong();
  }

  void CloseGroup(const WalkedGroup& group) override {
    AppendTag("</", group.level->element);
    FlushIfLong();
  }

  void Finish() {
    xml_ += "</Transactions>";
    Flush();
    file_.Commit();
  }

 private:
  void AppendTag(std::string_view bracket, std::string_view element) {
    xml_ += bracket;
    xml_ += element;
    xml_ += '>';
  }

  void AppendAttribute(std::string_view name, const CellView& value, ColumnContent content) {
    xml_ += ' ';
    xml_ += name;
    xml_ += "=\"";
    value_.clear();
    AppendCellText(value, content, value_);
    AppendXmlAttribute(value_, xml_);
    xml_ += '"';
  }

  void FlushIfLong() {
    if (xml_.size() >= kFlushSize) {
      Flush();
    }
  }

  void Flush() {
    file_.Write(xml_);
    xml_.clear();
  }

  AtomicFile& file_;
  std::span<const WalkedField> fields_;
  std::vector<std::string> elements_;  // of the fields
  std::string xml_;                    // not written yet
  std::string value_;
};

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";  // U+FFFD

bool IsXmlCharacter(char32_t character) { return character != 0xFFFE && character != 0xFFFF; }

// The number of bytes that one U+FFFD replaces: the whole sequence for a surrogate or a number
// above U+10FFFF, one byte for other malformed sequences.
std::size_t ReplacedLength(std::string_view text, const DecodedCharacter& decoded) {
  const auto lead = static_cast<unsigned char>(text.front());
  const bool well_formed = decoded.character || (lead == 0xED && decoded.length == 3) ||
                           (lead >= 0xF4 && decoded.length == 4);
  return well_formed ? decoded.length : 1;
}

std::string_view Markup(char character, bool in_attribute) {
  switch (character) {
    case '&':
      return "&amp;";
    case '<':
      return "&lt;";
    case '>':
      return "&gt;";
    case '\r':
      return "&#13;";
    case '"':
      return in_attribute ? "&quot;" : "";
    case '\n':
      return in_attribute ? "&#10;" : "";
    case '\t':
      return in_attribute ? "&#9;" : "";
    default:
      return static_cast<unsigned char>(character) < 0x20 ? kReplacement : "";
  }
}

void Append(std::string_view utf8, bool in_attribute, std::string& xml) {
  std::size_t plain = 0;  // first byte that is not appended yet
  std::size_t next = 0;
  const auto replace = [&](std::size_t length, std::string_view by) {
    xml.append(utf8, plain, next - plain).append(by);
    next += length;
    plain = next;
  };
  while (next < utf8.size()) {
    if (static_cast<unsigned char>(utf8[next]) < 0x80) {
      const std::string_view markup = Markup(utf8[next], in_attribute);
      if (markup.empty()) {
        ++next;
      } else {
        replace(1, markup);
      }
      continue;
    }
    const std::string_view rest = utf8.substr(next);
    const DecodedCharacter decoded = DecodeUtf8(rest);
    if (decoded.character && IsXmlCharacter(*decoded.character)) {
      next += decoded.length;
    } else {
      replace(ReplacedLength(rest, decoded), kReplacement);
    }
  }
  xml.append(utf8, plain, next - plain);
}

}  // namespace

bool XMLExport::ExportData(int group, const std::filesystem::path& file,
                           const std::filesystem::path& transaction_database,
                           std::span<const std::string> visible_columns, std::string_view name,
                           LockWait wait, const Period& period) const {
  style_sheets_.MakeExportFolder();
  const ExportPlan* const plan = FindExportPlan(group);
  if (plan == nullptr) {
    return false;
  }
  const ColumnDictionary dictionary =
      ExportColumn(ingredients_)
          .IntializeExportColumn(plan->column_group, visible_columns)
          .value_or(ColumnDictionary());
  {
    LevelWalk walk(transaction_database, *plan, dictionary, name, wait, period);
    AtomicFile replacing(file);
    XmlWriter writer(dictionary, walk.Fields(), FindDataGroup(group)->stylesheet, replacing);
    walk.Walk(writer);
    writer.Finish();
  }
  // A missing stylesheet was reported; the document is complete without it.
  static_cast<void>(
      style_sheets_.CopyStyleSheet(group, std::filesystem::absolute(file).parent_path()));
  return true;
}

void AppendXmlText(std::string_view utf8, std::string& xml) { Append(utf8, false, xml); }

void AppendXmlAttribute(std::string_view utf8, std::string& xml) { Append(utf8, true, xml); }

std::string XmlElementName(std::string_view field) {
  std::string name;
  for (const char character : field) {
    if (character != '%') {
      name += character == ' ' ? '_' : character;
    }
  }
  return name;
}

}  // namespace vrx
