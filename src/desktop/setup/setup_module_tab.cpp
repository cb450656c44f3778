#include "desktop/setup/setup_module_tab.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QLineEdit>
#include <QSignalBlocker>
#include <QVBoxLayout>
#include <string>
#include <utility>

#include "adapters/serial_ports.h"
#include "desktop/app/captions.h"
#include "desktop/dialogs/about_and_splash.h"
#include "desktop/setup/setup_sections.h"
#include "platform/serial_control.h"
#include "presenter/report_failure.h"
#include "presenter/setup.h"
#include "widgets/fields.h"
#include "widgets/layout.h"
#include "widgets/qt_text.h"

namespace vrx {

namespace {

enum PortColumn : int { kPort, kDevice };

int NumberOf(int index) { return index + 1; }

QString Described(const std::string& device) {
  return ToQString(device + ", " + DescribeDevice(device));
}

constexpr int kStandbyCaption = 1049;
constexpr int kSerialPortCaption = 1085;
constexpr int kBaudCaption = 1086;

}  // namespace

SetupPortList::SetupPortList(std::filesystem::path data_folder, Operator& op, QWidget* parent)
    : QWidget(parent),
      data_folder_(std::move(data_folder)),
      op_(op),
      lst_serial_port_(new QTreeWidget(this)),
      cbo_device_(new QComboBox(this)),
      cmd_put_device_(new QPushButton(QTr("&Use for this Port"), this)) {
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
  setFocusProxy(lst_serial_port_);
  lst_serial_port_->setObjectName(QStringLiteral("lstSerialPort"));
  lst_serial_port_->setAccessibleName(QTr("Serial Port"));
  lst_serial_port_->setHeaderLabels({QTr("Port"), QTr("Device")});
  lst_serial_port_->setRootIsDecorated(false);
  lst_serial_port_->setUniformRowHeights(true);
  lst_serial_port_->header()->setStretchLastSection(true);
  lst_serial_port_->header()->setSectionResizeMode(kPort, QHeaderView::ResizeToContents);
  cbo_device_->setObjectName(QStringLiteral("cboDevice"));
  cbo_device_->setAccessibleName(QTr("Device behind the port"));
  cbo_device_->setToolTip(QTr("A device of this machine, or the path of one"));
  cbo_device_->setEditable(true);
  cbo_device_->setInsertPolicy(QComboBox::NoInsert);
  cmd_put_device_->setObjectName(QStringLiteral("cmdPutDevice"));
  cmd_put_device_->setToolTip(QTr("Put this device behind the chosen port"));
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
  cbo_device_->setItemText(0, QTr("%1, built-in port").arg(ToQString(built_in)));
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
  RunReported<SerialError>(op_,
                           {.title = "Serial Port",
                            .text = FailureText::kWords,
                            .words = TrMark("The device could not be put behind the port."),
                            .icon = Icon::kWarning},
                           [&] { PutDeviceBehindPort(data_folder_, NumberOf(Chosen()), device); });
  Survey();
  Q_EMIT PortChanged();
}

SetupModuleTab::SetupModuleTab(Services& services, KRMCOMM& krm, QWidget* parent)
    : QWidget(parent),
      module_(krm, services.settings, services.op, [this](bool shown) { ShowStandby(shown); }),
      ports_(new SetupPortList(services.folder.DefaultAppPath(), services.op)),
      lst_baud_rate_(new ChoiceList),
      lbl_standby_(AddLabel(*this, "lblStandby", kStandbyCaption)),
      turned_off_(*this) {
  setFocusProxy(ports_);
  QSizePolicy keeps_place = lbl_standby_->sizePolicy();
  keeps_place.setRetainSizeWhenHidden(true);
  lbl_standby_->setSizePolicy(keeps_place);
  lbl_standby_->hide();

  auto* const frames = new QHBoxLayout;
  frames->setSpacing(kGroupSpacing);
  AddCommSetup(*frames);
  AddCommands(*frames);
  auto* const column = new QVBoxLayout(this);
  column->setContentsMargins(kGroupSpacing, kGroupSpacing, kGroupSpacing, kGroupSpacing);
  column->setSpacing(kSpacing);
  column->addLayout(frames, 1);
  column->addWidget(lbl_standby_);
  line_watch_ = module_.Guard().OnChange([this] { ShowLine(); });
  ShowLine();
}

// One command at a time.
void SetupModuleTab::ShowLine() {
  turned_off_.Turn({commands_[0], commands_[1], commands_[2]}, module_.Guard().Free());
}

void SetupModuleTab::AddCommSetup(QBoxLayout& frames) {
  const auto [frame, column] = AddSection(frames, "frmCommSetup", QTr("Communications"), 1);
  column->addWidget(AddLabel(*frame, "lblSerialPort", kSerialPortCaption));
  column->addWidget(ports_, 1);
  lst_baud_rate_->setObjectName(QStringLiteral("lstBaudRate"));
  lst_baud_rate_->setAccessibleName(QTr("KRM Baud"));
  for (const std::string_view baud : kBaudRateList) {
    lst_baud_rate_->addItem(ToQString(baud));
  }
  auto* const baud = new QHBoxLayout;
  baud->setSpacing(kSpacing);
  baud->addWidget(AddLabel(*frame, "lblBaudRate", kBaudCaption));
  baud->addWidget(lst_baud_rate_);
  baud->addStretch();
  column->addLayout(baud);
  connect(ports_, &SetupPortList::PortChanged, this, [this] { ResetLink(); });
  connect(lst_baud_rate_, &QComboBox::activated, this, [this](int index) {
    module_.ChooseBaud(kBaudRateList.at(static_cast<std::size_t>(index)));
  });
}

void SetupModuleTab::AddCommands(QBoxLayout& frames) {
  const auto [frame, column] = AddSection(frames, "frmCommands", QTr("Module"));
  commands_ = {AddCommand(*frame, "cmdTestKRM", QTr("&Test KRM"),
                          QTr("See whether the module answers"), &SetupModuleTab::TestKRM),
               AddCommand(*frame, "cmdClearKRM", QTr("&Clear KRM"),
                          QTr("Empty the memory of the module"), &SetupModuleTab::ClearKRM),
               AddCommand(*frame, "cmdSetBaud", QTr("&Set Baud"),
                          QTr("Set the module to the chosen baud rate"), &SetupModuleTab::SetBaud)};
  for (QPushButton* const command : commands_) {
    column->addWidget(command);
  }
  column->addStretch();
}

QPushButton* SetupModuleTab::AddCommand(QWidget& frame, const char* name, const QString& caption,
                                        const QString& meaning, void (SetupModuleTab::*work)()) {
  auto* const button = new QPushButton(caption, &frame);
  button->setObjectName(QString::fromLatin1(name));
  button->setToolTip(meaning);
  button->setAutoDefault(false);
  connect(button, &QPushButton::clicked, this, work);
  return button;
}

void SetupModuleTab::Show(const SetupControls& controls) {
  ports_->Choose(controls.serial_port);
  lst_baud_rate_->setCurrentIndex(controls.baud_rate);
}

void SetupModuleTab::Take(SetupControls& controls) const {
  controls.serial_port = ports_->Chosen();
  controls.baud_rate = lst_baud_rate_->currentIndex();
}

void SetupModuleTab::TestKRM() {
  SetupControls chosen;
  Take(chosen);
  module_.TestKRM(chosen.SerialPort(), chosen.BaudRate());
}

void SetupModuleTab::ClearKRM() {
  SetupControls chosen;
  Take(chosen);
  module_.ClearKRM(chosen.SerialPort(), chosen.BaudRate());
}

void SetupModuleTab::SetBaud() {
  SetupControls chosen;
  Take(chosen);
  module_.SetBaud(chosen.BaudRate());
}

void SetupModuleTab::ShowStandby(bool shown) { lbl_standby_->setVisible(shown); }

}  // namespace vrx
