#pragma once

#include <QBoxLayout>
#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QWidget>
#include <array>
#include <filesystem>

#include "desktop/main_window/turned_off.h"
#include "desktop/setup/setup_port_list.h"
#include "presenter/setup.h"
#include "presenter/setup_controls.h"

namespace vrx {

// The tab "KRM Setup" of `SETUP`: the line to the module, and its commands.
class SetupModuleTab : public QWidget {
  Q_OBJECT

 public:
  // Everything outlives it.
  struct Ports {
    Operator& op;
    PrivateINI& settings;
    KRMCOMM& krm;
    std::filesystem::path data_folder;
  };

  explicit SetupModuleTab(const Ports& ports, QWidget* parent = nullptr);

  void Show(const SetupControls& controls);
  void Take(SetupControls& controls) const;
  void Survey() { ports_->Survey(); }

  // The port is closed, so that the next command opens it with the settings of then.
  void ResetLink() { module_.ResetLink(); }

  // The form is closed.
  void Abandon() { module_.Abandon(); }

 private:
  void AddCommSetup(QBoxLayout& frames);
  void AddCommands(QBoxLayout& frames);
  void ShowLine();
  QPushButton* AddCommand(QWidget& frame, const char* name, const QString& caption,
                          const QString& meaning, void (SetupModuleTab::*work)());
  void TestKRM();
  void ClearKRM();
  void SetBaud();
  void ShowStandby(bool shown);

  ModuleSetup module_;
  SetupPortList* ports_;
  QComboBox* lst_baud_rate_;
  QLabel* lbl_standby_;
  TurnedOff turned_off_;
  std::array<QPushButton*, 3> commands_{};
  LineGuard::Watch line_watch_;
};

}  // namespace vrx
