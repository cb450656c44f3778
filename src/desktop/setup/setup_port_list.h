#pragma once

#include <QComboBox>
#include <QPushButton>
#include <QTreeWidget>
#include <QWidget>
#include <filesystem>

#include "platform/operator.h"

namespace vrx {

// `lstSerialPort` of `SETUP`: the port numbers with the device behind each, and the means to put
// another device behind the chosen one.
class SetupPortList : public QWidget {
  Q_OBJECT

 public:
  // Links from numbers to devices lie in the data folder.
  SetupPortList(std::filesystem::path data_folder, Operator& op, QWidget* parent = nullptr);

  // An index of the list, or kNoSelection. Choose sends nothing.
  int Chosen() const;
  void Choose(int index);

  // Looks again at what stands behind the numbers and which devices there are.
  void Survey();

 Q_SIGNALS:
  // The operator chose a port, or put another device behind the chosen one.
  void PortChanged();

 private:
  void LayOut();
  void OfferDevices();
  void ShowDeviceOfChosen();
  void PutDevice();
  std::string ChosenDevice() const;

  std::filesystem::path data_folder_;
  Operator& op_;
  QTreeWidget* lst_serial_port_;
  QComboBox* cbo_device_;
  QPushButton* cmd_put_device_;
};

}  // namespace vrx
