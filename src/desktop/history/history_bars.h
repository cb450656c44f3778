#pragma once

#include <QByteArray>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QWidget>
#include <array>

#include "platform/calendar.h"
#include "presenter/find.h"
#include "presenter/history.h"
#include "widgets/calendar_popup.h"
#include "widgets/fields.h"

namespace vrx {

// The record navigator of the history grid: "Transaction:", the editable number of the current row,
// "of" the number of rows.
class HistoryNavigator : public QWidget {
  Q_OBJECT

 public:
  explicit HistoryNavigator(QWidget* parent = nullptr);

  // From 0; -1 for none.
  void ShowRow(int row);
  void ShowCount(int rows);

 Q_SIGNALS:
  // The operator selects an existing row, from 0.
  void RowChosen(int row);

 private:
  void Move(int button);
  void GoToTyped();
  void ShowState();

  std::array<QPushButton*, 4> buttons_{};  // by NavigateButton
  FilteredEdit* number_;
  QLabel* caption_;
  QLabel* count_;
  int row_ = -1;
  int rows_ = 0;
};

// The period of the history: a list of periods, two fields of its days, and below them what is
// refused or left out.
class PeriodBar : public QWidget {
  Q_OBJECT

 public:
  // The calendars float over `form`. `of` is in the names of the controls: "cboInsightPeriod".
  PeriodBar(const Calendar& calendar, QWidget* form, const QByteArray& of = {});

  void Show(const PeriodState& period);
  // What is refused or left out.
  void ShowNote(const QString& note);

 Q_SIGNALS:
  void Chosen(PeriodChoice choice);
  void Typed(const QString& from, const QString& to);

 private:
  void LayOut(const QByteArray& of);

  ChoiceList* choices_;
  DayEdit* from_;
  DayEdit* to_;
  QLabel* note_;
};

// The search of the history: a field, the previous and the next found row, which of how many it is,
// and below them what else there is to say. Hidden until it is opened.
class FindBar : public QWidget, public EnterByCell {
  Q_OBJECT

 public:
  explicit FindBar(QWidget* parent);

  // In the field the key goes to the next one found, with Shift to the previous one.
  bool EnterPressed() override;

  void Show(const FindState& find);
  // Puts the keyboard into the field and selects its text.
  void FocusField();
  [[nodiscard]] QString Text() const { return field_->text(); }

 Q_SIGNALS:
  void Typed(const QString& text);
  void Moved(bool forward);
  void Stopped();
  void Closed();

 private:
  QPushButton* AddButton(const char* name, const QString& caption, const QString& meaning);
  void LayOut();

  QLineEdit* field_;
  QPushButton* previous_;
  QPushButton* next_;
  QLabel* count_;
  QProgressBar* progress_;
  QPushButton* cancel_;
  QPushButton* close_;
  QLabel* note_;
};

}  // namespace vrx
