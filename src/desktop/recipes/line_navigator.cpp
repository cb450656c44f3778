#include "desktop/recipes/line_navigator.h"

#include <QHBoxLayout>
#include <QToolButton>
#include <algorithm>
#include <array>
#include <cstddef>

#include "desktop/dialogs/form_parts.h"

namespace vrx {
namespace {

struct Face {
  const char* caption;
  const char* meaning;
};

constexpr std::array<Face, 4> kFaces{{{"|<<", "First ingredient"},
                                      {"<", "Previous ingredient"},
                                      {">", "Next ingredient"},
                                      {">>|", "Last ingredient"}}};

}  // namespace

LineNavigator::LineNavigator(QWidget* parent) : QWidget(parent) {
  setObjectName(QStringLiteral("grdREC.Navigator"));
  auto* const row = new QHBoxLayout(this);
  row->setContentsMargins(0, 0, 0, 0);
  row->setSpacing(kSpacing / 2);
  AddButton(kFirst);
  AddButton(kPrevious);
  text_ = AddLabel(*this, "grdREC.NavigatorText");
  text_->setAlignment(Qt::AlignCenter);
  row->addWidget(text_);
  AddButton(kNext);
  AddButton(kLast);
  Show(0, 0);
}

void LineNavigator::AddButton(Button button) {
  const Face& face = kFaces.at(static_cast<std::size_t>(button));
  auto* const made = new QToolButton(this);
  made->setObjectName(QStringLiteral("grdREC.Navigate(%1)").arg(static_cast<int>(button)));
  made->setText(QLatin1String(face.caption));
  made->setToolTip(QLatin1String(face.meaning));
  made->setAccessibleName(QLatin1String(face.meaning));
  made->setFocusPolicy(Qt::TabFocus);
  layout()->addWidget(made);
  connect(made, &QToolButton::clicked, this, [this, button] {
    if (lines_ > 0) {
      Q_EMIT Moved(Target(button));
    }
  });
}

int LineNavigator::Target(Button button) const {
  switch (button) {
    case kFirst:
      return 1;
    case kPrevious:
      return row_ < 1 ? lines_ : std::max(1, row_ - 1);
    case kNext:
      return row_ < 1 ? lines_ : std::min(lines_, row_ + 1);
    case kLast:
      break;
  }
  return lines_;
}

void LineNavigator::Show(int row, int lines) {
  row_ = row;
  lines_ = lines;
  const QString number = row < 1 ? QStringLiteral("new") : QString::number(row);
  text_->setText(QStringLiteral("Ingredient: %1 of %2").arg(number).arg(lines));
  text_->setMinimumWidth(
      text_->fontMetrics().horizontalAdvance(QStringLiteral("Ingredient: new of 00")) + kSpacing);
}

}  // namespace vrx
