#include "desktop/records/field_boxes.h"

#include "widgets/fields.h"

namespace vrx {

FilteredEdit* MakeFieldBox(const RecordField& field, const char* name, QWidget* parent) {
  FilteredEdit* const box =
      MakeBox([filter = field.filter](std::string_view /*text*/, int key) { return filter(key); },
              field.limit, name, parent);
  ExplainKeys(*box, field);
  return box;
}

void ExplainKeys(FilteredEdit& box, const RecordField& field) {
  box.Explain([&field](std::string_view text, int key) { return KeyRefusal(field, text, key); },
              field.number ? FilteredEdit::Takes::kNumber : FilteredEdit::Takes::kText);
}

FilteredEdit* MakeNameBox(const RecordField& field, const char* name,
                          AutoAbbreviation& abbreviation, QWidget* parent) {
  FilteredEdit* const box = MakeFieldBox(field, name, parent);
  QObject::connect(box, &QLineEdit::textChanged, box,
                   [&abbreviation] { abbreviation.NameChanged(); });
  return box;
}

FilteredEdit* MakeDescriptionBox(const char* name, AutoAbbreviation& abbreviation,
                                 QWidget* parent) {
  FilteredEdit* const box =
      MakeBox([&abbreviation](std::string_view text,
                              int key) { return abbreviation.DescriptionKey(key, text.size()); },
              kDescriptionLimit, name, parent);
  ExplainKeys(*box, FieldOf(RecordKind::kIngredient, "Description"));
  QObject::connect(box, &FilteredEdit::Backspace, box, [&abbreviation, box] {
    abbreviation.DescriptionKey(kBackspaceKey, static_cast<std::size_t>(box->text().size()));
  });
  return box;
}

}  // namespace vrx
