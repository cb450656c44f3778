#pragma once

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QProgressBar>
#include <QPushButton>
#include <QSplitter>
#include <QStackedLayout>
#include <QWidget>
#include <array>
#include <cstddef>

#include "desktop/history/history_bars.h"
#include "desktop/insight/insight_table.h"
#include "desktop/insight/picture_view.h"
#include "desktop/main_window/tabs.h"
#include "presenter/insight.h"
#include "widgets/calendar_popup.h"
#include "widgets/fields.h"
#include "widgets/labels.h"

namespace vrx {

// Period and filters of a question, and which table and picture answer it.
class InsightFields : public QWidget {
  Q_OBJECT

 public:
  // The calendars float over `form`.
  InsightFields(const Calendar& calendar, QWidget* form);

  void Show(const InsightState& state);

 Q_SIGNALS:
  void PeriodChosen(PeriodChoice choice);
  void DaysTyped(const QString& from, const QString& to);
  void NameChosen(int kind, int item);
  void HoldingTyped(const QString& days, const QString& on);
  void TableChosen(int table);
  void PictureChosen(int picture);

 private:
  struct Choice {
    QLabel* caption;
    ChoiceList* list;
  };
  Choice AddChoice(const char* name, int caption, const QString& meaning);
  QBoxLayout* LayOutNames();
  QBoxLayout* LayOutHolding(const Calendar& calendar, QWidget* form);
  void Connect();

  PeriodBar* period_;
  std::array<Choice, kNameKinds> names_{};
  QWidget* holding_;
  FilteredEdit* days_;
  DayEdit* on_;
  Choice table_{};
  Choice picture_{};
};

// The `Insight` tab: the questions at the left, the question's fields above, its picture and its
// table.
class InsightPage final : public MainTabPage, private InsightView {
  Q_OBJECT

 public:
  // Everything except the window outlives the page.
  explicit InsightPage(Services& services);

  [[nodiscard]] InsightPresenter& Presenter() { return presenter_; }
  // What the picture of the answer draws, with the sentence below it; empty if there is none.
  [[nodiscard]] DrawPicture WholePicture() const;
  // Puts the keyboard back into the table.
  void Return();

  // MainTabPage.
  void TabChanged(int tab, int previous) override;
  void Prepare() override;
  void Activated() override;
  void Rebind(DatabaseKind kind, const BoundDatabase& database) override;
  void EndReads(DatabaseKind kind) override;
  void ReleaseViews() override { presenter_.Release(); }

 Q_SIGNALS:
  void RecordsChosen(const vrx::RecordsPlace& place);
  void PrintChosen();
  void ManualChosen(const QString& section);
  void FileWritten(const QString& action, const QString& path);

 private:
  // InsightView.
  void InsightChanged(InsightPart part) override;

  QPushButton* AddButton(const char* name, const QString& caption, const QString& meaning);
  QLabel* AddText(const char* name);
  void LayOut();
  QWidget* LayOutQuestion();
  QWidget* LayOutPicture();
  QWidget* LayOutTable();
  void Connect();
  void ShowQuestion();
  void ShowProgress();
  void ShowAnswer();
  void ShowPicture();
  void ShowHow();
  void TurnCommands();
  [[nodiscard]] DrawPicture Drawing(bool leaves_window) const;
  void GoToRow(int row);
  void GoToMark(std::size_t index);
  void SavePicture();
  void CopyPicture();

  Services& services_;
  InsightPresenter presenter_;
  QListWidget* questions_;
  QLabel* sentence_;
  InsightFields* fields_;
  QSplitter* sides_;
  PictureView* picture_;
  QLabel* how_picture_;
  InsightTable* table_;
  QLabel* standby_;
  QStackedLayout* table_or_standby_;
  LinkLabel* how_;
  QLabel* notes_;
  QPushButton* save_;
  QPushButton* copy_;
  QPushButton* print_;
  QPushButton* records_;
  QProgressBar* progress_;
  QPushButton* cancel_;
};

}  // namespace vrx
