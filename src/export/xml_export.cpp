#include "export/xml_export.h"

#include <cstddef>
#include <cstdint>
#include <vector>

#include "base/files.h"
#include "export/export_columns.h"
#include "export/export_plan.h"
#include "export/level_walk.h"
#include "history/data_group.h"

namespace vrx {

namespace {

constexpr std::size_t kWriteAt = std::size_t{256} * 1024;

class XmlWriter : public LevelVisitor {
 public:
  XmlWriter(const ColumnDictionary& dictionary, std::span<const WalkedField> fields,
            std::string_view style_sheet, ReplacingFile& file)
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
    file_.TakePlace();
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
    if (xml_.size() >= kWriteAt) {
      Flush();
    }
  }

  void Flush() {
    file_.Write(xml_);
    xml_.clear();
  }

  ReplacingFile& file_;
  std::span<const WalkedField> fields_;
  std::vector<std::string> elements_;  // of the fields
  std::string xml_;                    // not written yet
  std::string value_;
};

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";  // U+FFFD

struct Character {
  std::size_t length = 1;  // bytes
  bool known = false;      // to XML
};

// The bytes that follow the first of a sequence, and the lowest code that needs that many.
struct Sequence {
  std::size_t length;
  std::uint32_t bits;  // of the first byte
  std::uint32_t lowest;
};

Sequence SequenceOf(unsigned char first) {
  if ((first & 0xE0U) == 0xC0U) {
    return {2, first & 0x1FU, 0x80};
  }
  if ((first & 0xF0U) == 0xE0U) {
    return {3, first & 0x0FU, 0x800};
  }
  if ((first & 0xF8U) == 0xF0U) {
    return {4, first & 0x07U, 0x10000};
  }
  return {0, 0, 0};
}

bool IsXmlCode(std::uint32_t code) {
  return (code <= 0xD7FF) || (code >= 0xE000 && code <= 0xFFFD) ||
         (code >= 0x10000 && code <= 0x10FFFF);
}

// Of a text that begins with a byte of 0x80 or above.
Character FirstCharacter(std::string_view text) {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  const Sequence sequence = SequenceOf(byte(0));
  if (sequence.length == 0 || sequence.length > text.size()) {
    return {};
  }
  std::uint32_t code = sequence.bits;
  for (std::size_t i = 1; i < sequence.length; ++i) {
    if ((byte(i) & 0xC0U) != 0x80U) {
      return {};
    }
    code = (code << 6U) | (byte(i) & 0x3FU);
  }
  if (code < sequence.lowest) {
    return {};
  }
  return {sequence.length, IsXmlCode(code)};
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
  std::size_t plain = 0;  // where the bytes begin that are not appended yet
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
    const Character character = FirstCharacter(utf8.substr(next));
    if (character.known) {
      next += character.length;
    } else {
      replace(character.length, kReplacement);
    }
  }
  xml.append(utf8, plain, next - plain);
}

}  // namespace

bool XMLExport::ExportData(int group, const std::filesystem::path& file,
                           const std::filesystem::path& transaction_database,
                           std::span<const std::string> visible_columns, std::string_view name,
                           LockWait wait) const {
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
    LevelWalk walk(transaction_database, *plan, dictionary, name, wait);
    ReplacingFile replacing(file);
    XmlWriter writer(dictionary, walk.Fields(), FindDataGroup(group)->stylesheet, replacing);
    walk.Walk(writer);
    writer.Finish();
  }
  style_sheets_.CopyStyleSheet(group, std::filesystem::absolute(file).parent_path());
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
