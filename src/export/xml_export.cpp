#include "export/xml_export.h"

#include <cstddef>
#include <vector>

#include "base/replacing_file.h"
#include "export/cell_text.h"
#include "export/export_columns.h"
#include "export/export_plan.h"
#include "export/level_walk.h"
#include "export/xml_text.h"
#include "history/data_group.h"

namespace vrx {
namespace {

constexpr std::size_t kHeldBack = std::size_t{256} * 1024;

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
    if (xml_.size() >= kHeldBack) {
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

}  // namespace vrx
