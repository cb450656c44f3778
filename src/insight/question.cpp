#include "insight/question.h"

namespace vrx {

std::string_view NounOf(NameKind kind) {
  switch (kind) {
    case NameKind::kRecipe:
      return "recipe";
    case NameKind::kIngredient:
      return "ingredient";
    case NameKind::kOperator:
      return "operator";
    case NameKind::kPen:
      break;
  }
  return "pen";
}

const std::optional<std::string>& Question::Name(NameKind kind) const {
  switch (kind) {
    case NameKind::kRecipe:
      return recipe;
    case NameKind::kIngredient:
      return ingredient;
    case NameKind::kOperator:
      return operator_id;
    case NameKind::kPen:
      break;
  }
  return pen;
}

void CheckPeriod(const Question& question) {
  if (question.from && question.to && *question.to < *question.from) {
    throw QuestionError("The period ends on " + StoredText(*question.to) +
                        ", before it begins on " + StoredText(*question.from) + ".");
  }
}

}  // namespace vrx
