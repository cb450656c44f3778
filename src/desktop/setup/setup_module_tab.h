#pragma once

#include <QBoxLayout>
#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QTreeWidget>
#include <QWidget>
#include <array>
#include <filesystem>

#include "desktop/main_window/turned_off.h"
#include "platform/operator.h"
#include "presenter/services.h"
#include "presenter/setup.h"

namespace vrx {

// `lstSerialPort` of `SETUP`: the port numbers with the device of each, and a control to assign
// another device to the selected number.
class SetupPortList : public QWidget {
  Q_OBJECT

 public:
  // The links from numbers to devices are in the data folder.
  SetupPortList(std::filesystem::path data_folder, Operator& op, QWidget* parent = nullptr);

  // An index of the list, or kNoSelection. Choose emits no signal.
  [[nodiscard]] int Chosen() const;
  void Choose(int index);

  // Reads the assignments and the existing devices again.
  void Survey();

 Q_SIGNALS:
  // The operator selected a port, or assigned another device to it.
  void PortChanged();

 private:
  void LayOut();
  void OfferDevices();
  void ShowDeviceOfChosen();
  void PutDevice();
  [[nodiscard]] std::string ChosenDevice() const;

  std::filesystem::path data_folder_;
  Operator& op_;
  QTreeWidget* lst_serial_port_;
  QComboBox* cbo_device_;
  QPushButton* cmd_put_device_;
};

// The tab "KRM Setup" of `SETUP`: the line to the module, and its commands.
class SetupModuleTab : public QWidget {
  Q_OBJECT

 public:
  // Everything outlives it.
  SetupModuleTab(Services& services, KRMCOMM& krm, QWidget* parent = nullptr);

  void Show(const SetupControls& controls);
  void Take(SetupControls& controls) const;
  void Survey() { ports_->Survey(); }

  // Closes the port, so that the next command opens it with its current settings.
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
