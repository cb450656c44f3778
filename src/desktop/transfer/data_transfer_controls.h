#pragma once

#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QWidget>
#include <array>
#include <vector>

#include "desktop/main_window/turned_off.h"
#include "link/line_guard.h"
#include "presenter/transfer_state.h"
#include "widgets/byte_text_edit.h"

namespace vrx {

// The controls of the Data Transfer tab, with their object names, laid out on its page.
class DataTransferControls {
 public:
  explicit DataTransferControls(QWidget& page);

  // Called after the caption pass, for texts that the caption table lacks.
  void ShowCaptions();

  // Shows everything except `optConnection`, which keeps the operator's choice while a connection
  // begins or ends. Emits no click and no edit.
  void Show(const TransferState& transfer);

  // Disables the controls that would start another command while one uses the line.
  void ShowLine(const LineGuard& line);

  std::array<QRadioButton*, 2> opt_connection;  // by Connection
  QPushButton* cmd_download_recipe_to_krm;
  QPushButton* cmd_upload_data_from_krm;
  QPushButton* cmd_open_recipe_db;
  QPushButton* cmd_download_recipe_db;
  QPushButton* cmd_open_recipe_bu;
  QPushButton* cmd_download_recipe_bu;
  QListWidget* lst_data_files;
  QPushButton* cmd_save_file;
  QPushButton* cmd_save_import;
  QPushButton* cmd_reload;
  QLineEdit* txt_file_path;
  QPushButton* cmd_print_text;
  DataWindow* txt_data_window;

 private:
  QLayout* LayOutConnection(QWidget& page);
  QLayout* LayOutSteps(QWidget& page);
  QGroupBox* MakeRecipeFrame(QWidget& page, const char* name, const QString& caption,
                             const char* suffix, QPushButton*& open, QPushButton*& download);
  QWidget* MakeDataFiles(QWidget& page);
  QLayout* LayOutPath(QWidget& page);
  void ShowDataFiles(const TransferState& transfer);

  void TurnReload();

  TurnedOff turned_off_;
  bool command_runs_ = false;
  bool reload_enabled_ = true;
  QLabel* lbl_file_path_;
  QGroupBox* frm_recipe_file_;
  QGroupBox* frm_recipe_backup_;
  QGroupBox* frm_data_files_;
  QWidget* data_files_;  // that frame and the buttons beside it
};

}  // namespace vrx
