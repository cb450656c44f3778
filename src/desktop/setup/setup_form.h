#pragma once

#include <QBoxLayout>
#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QLineEdit>
#include <QPushButton>
#include <QString>
#include <QTabWidget>
#include <QWidget>
#include <array>
#include <filesystem>
#include <string>

#include "desktop/setup/setup_limits_tab.h"
#include "desktop/setup/setup_module_tab.h"
#include "platform/system_info.h"
#include "presenter/setup.h"
#include "widgets/fields.h"
#include "widgets/labels.h"

namespace vrx {

// The state of the program that `SETUP` shows when it opens. A path or unit is empty for a database
// that is not open, and for a transaction file before any import.
struct SetupFacts {
  std::string recipe_path;
  std::string recipe_unit;
  std::string transaction_path;
  std::string transaction_unit;
  std::string qxt_path;
  std::string qxt_text;  // bytes as in the file
  ConnectionTexts connections;
};

// The form `SETUP`, shown modally. `cmdOK` changes the settings; the commands to the module already
// change some. A command that runs when the form is closed ends before the form does.
class SetupForm : public QDialog {
  Q_OBJECT

 public:
  SetupForm(Services& services, KRMCOMM& krm, SetupFacts facts, QWidget* owner);

  // Selects the tab of the serial port, with the focus on the list of ports.
  void ShowPort();

  void done(int result) override;

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void showEvent(QShowEvent* event) override;

 private:
  QWidget* MakeDatabaseTab();
  QWidget* MakeApplicationTab();
  QWidget* MakeFileTab(const char* frame_name, QLineEdit*& path, const char* path_name,
                       TextView*& contents, const char* data_name);
  QWidget* MakeOptionsTab();
  QBoxLayout* MakeToleranceRow(QWidget& page);
  QWidget* MakeConnectionsTab();
  void LoadControls();
  void FillTab(int tab);
  void FillIniFile();
  void ApplyControls();

  Services& services_;
  SetupFacts facts_;
  QTabWidget* tab_setup_folder_;
  QLineEdit* txt_recipe_path_ = nullptr;
  QLineEdit* txt_transaction_path_ = nullptr;
  QComboBox* lst_system_uom_ = nullptr;
  QLineEdit* txt_app_path_ = nullptr;
  TextView* txt_associations_ = nullptr;
  QLineEdit* txt_ini_path_ = nullptr;
  TextView* txt_ini_file_data_ = nullptr;
  QLineEdit* txt_qxt_path_ = nullptr;
  TextView* txt_qxt_file_data_ = nullptr;
  std::array<QCheckBox*, kSetupOptionCount> options_{};
  FilteredEdit* txt_difference_tolerance_ = nullptr;
  TextView* txt_rec_ctrl_ = nullptr;
  TextView* txt_trans_ctrl_ = nullptr;
  SetupModuleTab* module_tab_;
  SetupLimitsTab* limits_tab_;
  QPushButton* cmd_ok_;
  bool link_reset_ = false;
};

}  // namespace vrx
