#pragma once

#include <QCheckBox>
#include <QDialog>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QString>
#include <QStringList>
#include <QTabWidget>
#include <QTableWidget>
#include <QVBoxLayout>
#include <filesystem>
#include <string>

#include "presenter/central_form.h"
#include "presenter/central_push.h"
#include "presenter/services.h"

namespace vrx {

// Parts of the form's pages.

// A server's time, which is ISO 8601 in UTC, in the form and the zone of this computer.
QString LocalTimeText(const std::string& iso);
// A table of rows to choose from; the stretched column takes the room that the others leave.
QTableWidget* AddTable(QWidget& page, const char* name, const QString& meaning,
                       const QStringList& captions, int stretched);
void SetCell(QTableWidget& table, int row, int column, const QString& text,
             Qt::Alignment alignment = Qt::AlignLeft);
// Sentences of any length, which can be selected and sent to the administrator.
QLabel* AddNote(QWidget& page, const char* name);
void ShowNote(QLabel& label, const CentralNote& note);
QPushButton* AddFormButton(QWidget& page, const char* name, const QString& caption,
                           const QString& meaning);
QVBoxLayout* LayOutPage(QWidget& page);

// The form of the central database, shown modally. A push goes on when it is closed; everything
// else ends with it.
class CentralDialog : public QDialog, private CentralFormView {
  Q_OBJECT

 public:
  // `recipes` is the open recipe database; empty without one.
  CentralDialog(Services& services, CentralPush& push, const std::string& machine,
                const std::filesystem::path& recipes, QWidget* owner);

  // The state of the push has changed.
  void ShowPush();

  // Ends what runs; closes the form if nothing does.
  void reject() override;

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void showEvent(QShowEvent* event) override;

 private:
  void CentralFormChanged() override;

  void LayOut();
  QLayout* LayOutConnection();
  QWidget* MakePushTab();
  QLayout* LayOutPushButtons(QWidget& page);
  QWidget* MakeRestoreTab();
  QWidget* MakeReleasesTab();
  QLayout* LayOutButtons();
  void ConnectControls();
  void ShowFacts();
  void ShowSources();
  void ShowReleases();
  void CompareRelease();
  void ShowDifferences();
  void ShowTask();

  Services& services_;
  CentralForm form_;
  bool was_running_ = false;  // the push
  QLineEdit* connection_ = nullptr;
  QLineEdit* yard_ = nullptr;
  QPushButton* test_ = nullptr;
  QLabel* connection_note_ = nullptr;
  QTabWidget* tabs_ = nullptr;
  QLabel* file_ = nullptr;
  QLabel* waiting_ = nullptr;
  QLabel* last_push_ = nullptr;
  QLabel* proof_ = nullptr;
  QLabel* push_note_ = nullptr;
  QPushButton* push_now_ = nullptr;
  QPushButton* push_copy_ = nullptr;
  QPushButton* stop_ = nullptr;
  QProgressBar* push_progress_ = nullptr;
  QCheckBox* automatic_ = nullptr;
  QTableWidget* sources_ = nullptr;
  QPushButton* restore_ = nullptr;
  QLabel* restore_note_ = nullptr;
  QTableWidget* releases_ = nullptr;
  QTableWidget* differences_ = nullptr;
  QLabel* release_note_ = nullptr;
  QPushButton* fetch_ = nullptr;
  QProgressBar* progress_ = nullptr;
  QLabel* doing_ = nullptr;
  QPushButton* close_ = nullptr;
};

}  // namespace vrx
