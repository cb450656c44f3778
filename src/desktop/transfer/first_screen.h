#pragma once

#include <QCheckBox>
#include <QLabel>
#include <QScrollArea>
#include <array>

#include "presenter/first_steps.h"

namespace vrx {

// The first screen: a button for each step with its sentence and, once it is done, a tick. It takes
// the place of the empty data window.
class FirstScreen : public QScrollArea {
  Q_OBJECT

 public:
  // The presenter outlives it.
  explicit FirstScreen(FirstSteps& steps, QWidget* parent = nullptr);

  [[nodiscard]] bool Wanted() const { return steps_.Wanted(); }

  // Updates the ticks and the check box, and the texts, which the caption pass replaces.
  void Refresh();

 Q_SIGNALS:
  void StepChosen(vrx::FirstStep step);

 private:
  QWidget* LayOut();

  FirstSteps& steps_;
  std::array<QLabel*, kFirstStepCount> ticks_{};
  std::array<QLabel*, kFirstStepCount> sentences_{};
  QCheckBox* chk_open_at_start_ = nullptr;
};

}  // namespace vrx
