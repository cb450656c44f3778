#include "desktop/setup/setup_port_list.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QLineEdit>
#include <QSignalBlocker>
#include <QVBoxLayout>
#include <string>
#include <utility>

#include "adapters/port_device.h"
#include "adapters/port_survey.h"
#include "desktop/dialogs/form_parts.h"
#include "platform/serial_control.h"
#include "presenter/setup_controls.h"
#include "widgets/qt_text.h"

namespace vrx {
namespace {

enum Column : int { kPort, kDevice };

int NumberOf(int index) { return index + 1; }

QString Described(const std::string& device) {
  return ToQString(device + ", " + DescribeDevice(device));
}

}  // namespace

SetupPortList::SetupPortList(std::filesystem::path data_folder, Operator& op, QWidget* parent)
    : QWidget(parent),
      data_folder_(std::move(data_folder)),
      op_(op),
      lst_serial_port_(new QTreeWidget(this)),
      cbo_device_(new QComboBox(this)),
      cmd_put_device_(new QPushButton(QStringLiteral("&Use for this Port"), this)) {
  LayOut();
  for (const std::string_view port : kSerialPortList) {
    new QTreeWidgetItem(lst_serial_port_, {ToQString(port)});
  }
  connect(lst_serial_port_, &QTreeWidget::currentItemChanged, this, [this] {
    ShowDeviceOfChosen();
    Q_EMIT PortChanged();
  });
  connect(cmd_put_device_, &QPushButton::clicked, this, [this] { PutDevice(); });
}

void SetupPortList::LayOut() {
  lst_serial_port_->setObjectName(QStringLiteral("lstSerialPort"));
  lst_serial_port_->setAccessibleName(QStringLiteral("Serial Port"));
  lst_serial_port_->setHeaderLabels({QStringLiteral("Port"), QStringLiteral("Device")});
  lst_serial_port_->setRootIsDecorated(false);
  lst_serial_port_->setUniformRowHeights(true);
  lst_serial_port_->header()->setStretchLastSection(true);
  lst_serial_port_->header()->setSectionResizeMode(kPort, QHeaderView::ResizeToContents);
  cbo_device_->setObjectName(QStringLiteral("cboDevice"));
  cbo_device_->setAccessibleName(QStringLiteral("Device behind the port"));
  cbo_device_->setToolTip(QStringLiteral("A device of this machine, or the path of one"));
  cbo_device_->setEditable(true);
  cbo_device_->setInsertPolicy(QComboBox::NoInsert);
  cmd_put_device_->setObjectName(QStringLiteral("cmdPutDevice"));
  cmd_put_device_->setToolTip(QStringLiteral("Put this device behind the chosen port"));
  cmd_put_device_->setAutoDefault(false);

  auto* const device = new QHBoxLayout;
  device->setSpacing(kSpacing);
  device->addWidget(cbo_device_, 1);
  device->addWidget(cmd_put_device_);
  auto* const column = new QVBoxLayout(this);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(kSpacing);
  column->addWidget(lst_serial_port_, 1);
  column->addLayout(device);
}

int SetupPortList::Chosen() const {
  return lst_serial_port_->indexOfTopLevelItem(lst_serial_port_->currentItem());
}

void SetupPortList::Choose(int index) {
  const QSignalBlocker silent(lst_serial_port_);
  lst_serial_port_->setCurrentItem(index == kNoSelection ? nullptr
                                                         : lst_serial_port_->topLevelItem(index));
  ShowDeviceOfChosen();
}

void SetupPortList::Survey() {
  for (int i = 0; i < lst_serial_port_->topLevelItemCount(); ++i) {
    lst_serial_port_->topLevelItem(i)->setText(
        kDevice, Described(LinuxPortDevice(data_folder_, NumberOf(i))));
  }
  OfferDevices();
  ShowDeviceOfChosen();
}

void SetupPortList::OfferDevices() {
  cbo_device_->clear();
  cbo_device_->addItem({}, QString());  // the built-in port of the chosen number
  for (const std::string& device : SerialDevices()) {
    cbo_device_->addItem(Described(device), ToQString(device));
  }
}

void SetupPortList::ShowDeviceOfChosen() {
  const bool any = Chosen() != kNoSelection;
  cbo_device_->setEnabled(any);
  cmd_put_device_->setEnabled(any);
  if (!any) {
    cbo_device_->setEditText({});
    return;
  }
  const std::string built_in = BuiltInPortDevice(NumberOf(Chosen()));
  const std::string device = LinuxPortDevice(data_folder_, NumberOf(Chosen()));
  const int offered = device == built_in ? 0 : cbo_device_->findData(ToQString(device));
  cbo_device_->setItemText(0, ToQString(built_in + ", built-in port"));
  cbo_device_->setCurrentIndex(offered);
  if (offered < 0) {
    cbo_device_->setEditText(ToQString(device));
  }
}

std::string SetupPortList::ChosenDevice() const {
  const QString text = cbo_device_->currentText().trimmed();
  const int offered = cbo_device_->findText(text);
  return (offered >= 0 ? cbo_device_->itemData(offered).toString() : text).toStdString();
}

void SetupPortList::PutDevice() {
  const std::string device = ChosenDevice();
  try {
    PutDeviceBehindPort(data_folder_, NumberOf(Chosen()), device);
  } catch (const SerialError& failure) {
    op_.ShowMessage({.icon = Icon::kWarning,
                     .title = "Serial Port",
                     .text = "The device could not be put behind the port.",
                     .cause = failure.what()});
  }
  Survey();
  Q_EMIT PortChanged();
}

}  // namespace vrx
