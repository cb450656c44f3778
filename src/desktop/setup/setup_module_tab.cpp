#include "desktop/setup/setup_module_tab.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

#include "desktop/setup/setup_sections.h"
#include "widgets/choice_list.h"
#include "widgets/main_window_layout.h"
#include "widgets/qt_text.h"

namespace vrx {
namespace {

constexpr int kStandbyCaption = 1049;
constexpr int kSerialPortCaption = 1085;
constexpr int kBaudCaption = 1086;

}  // namespace

SetupModuleTab::SetupModuleTab(const Ports& ports, QWidget* parent)
    : QWidget(parent),
      module_(ports.krm, ports.settings, ports.op, [this](bool shown) { ShowStandby(shown); }),
      ports_(new SetupPortList(ports.data_folder, ports.op)),
      lst_baud_rate_(new ChoiceList),
      lbl_standby_(AddLabel(*this, "lblStandby", kStandbyCaption)),
      turned_off_(*this) {
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
  const auto [frame, column] =
      AddSection(frames, "frmCommSetup", QStringLiteral("Communications"), 1);
  column->addWidget(AddLabel(*frame, "lblSerialPort", kSerialPortCaption));
  column->addWidget(ports_, 1);
  lst_baud_rate_->setObjectName(QStringLiteral("lstBaudRate"));
  lst_baud_rate_->setAccessibleName(QStringLiteral("KRM Baud"));
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
  const auto [frame, column] = AddSection(frames, "frmCommands", QStringLiteral("Module"));
  commands_ = {
      AddCommand(*frame, "cmdTestKRM", QStringLiteral("&Test KRM"),
                 QStringLiteral("See whether the module answers"), &SetupModuleTab::TestKRM),
      AddCommand(*frame, "cmdClearKRM", QStringLiteral("&Clear KRM"),
                 QStringLiteral("Empty the memory of the module"), &SetupModuleTab::ClearKRM),
      AddCommand(*frame, "cmdSetBaud", QStringLiteral("&Set Baud"),
                 QStringLiteral("Tell the module the chosen baud rate"), &SetupModuleTab::SetBaud)};
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
