#pragma once

#include <QPushButton>
#include <QWidget>
#include <array>
#include <cstddef>

#include "presenter/setup.h"
#include "widgets/fields.h"

namespace vrx {

// The tab "Insight" of `SETUP`: the limits of the answers, and their usual values.
class SetupLimitsTab : public QWidget {
  Q_OBJECT

 public:
  SetupLimitsTab();

  void Show(const SetupLimits& limits);
  [[nodiscard]] SetupLimits Typed() const;
  // Puts the keyboard into the field of a limit.
  void GoTo(std::size_t limit);

 private:
  std::array<FilteredEdit*, PrivateINI::kInsightLimits> fields_{};
  QPushButton* usual_;
};

}  // namespace vrx
