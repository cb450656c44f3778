#include "desktop/transfer/data_transfer_controls.h"

#include <QHBoxLayout>
#include <QSignalBlocker>
#include <QStyledItemDelegate>
#include <QVBoxLayout>
#include <algorithm>
#include <cstddef>
#include <string>

#include "desktop/app/captions.h"
#include "widgets/drawing.h"
#include "widgets/layout.h"
#include "widgets/qt_text.h"

namespace vrx {
namespace {

constexpr int kConnectionCaption = 1112;
constexpr int kDataFilesWidth = 400;
constexpr int kShownDataFiles = 4;  // rows to be seen without scrolling

QPushButton* AddButton(QWidget& parent, const char* name, const QString& caption,
                       const QString& meaning) {
  auto* const button = new QPushButton(caption, &parent);
  button->setObjectName(QString::fromLatin1(name));
  button->setToolTip(meaning);
  return button;
}

QRadioButton* AddConnection(QWidget& page, Connection connection, const QString& caption,
                            const QString& meaning) {
  auto* const button = new QRadioButton(caption, &page);
  button->setObjectName(QStringLiteral("optConnection(%1)").arg(static_cast<int>(connection)));
  button->setToolTip(meaning);
  button->setAccessibleDescription(meaning);
  return button;
}

// The style draws the outline of a check box in a darker window color, invisible in a dark list.
class BoxesToBeSeen : public QStyledItemDelegate {
 public:
  using QStyledItemDelegate::QStyledItemDelegate;

 protected:
  void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override {
    QStyledItemDelegate::initStyleOption(option, index);
    QPalette& palette = option->palette;
    const QColor outline = Readable(palette.color(QPalette::Window).darker(kOutline),
                                    palette.color(QPalette::Base), kGraphicsContrast);
    palette.setColor(QPalette::Window, outline.lighter(kOutline));
  }

 private:
  static constexpr int kOutline = 140;  // per cent
};

bool Shows(const QListWidget& list, const std::vector<DataFileRow>& rows) {
  if (list.count() != static_cast<int>(rows.size())) {
    return false;
  }
  for (int i = 0; i < list.count(); ++i) {
    const DataFileRow& row = rows[static_cast<std::size_t>(i)];
    if (list.item(i)->text() != ToQString(row.text) ||
        (list.item(i)->checkState() == Qt::Checked) != row.checked) {
      return false;
    }
  }
  return true;
}

}  // namespace

DataTransferControls::DataTransferControls(QWidget& page) : turned_off_(page) {
  auto* const column = new QVBoxLayout(&page);
  column->setContentsMargins(kGroupSpacing, kGroupSpacing, kGroupSpacing, kGroupSpacing);
  column->setSpacing(kGroupSpacing);
  column->addLayout(LayOutConnection(page));
  column->addLayout(LayOutSteps(page));
  auto* const data = new QVBoxLayout;
  data->setSpacing(kSpacing);
  data->addLayout(LayOutPath(page));
  txt_data_window = new DataWindow(&page);
  data->addWidget(txt_data_window, 1);
  column->addLayout(data, 1);
}

QLayout* DataTransferControls::LayOutConnection(QWidget& page) {
  auto* const row = new QHBoxLayout;
  row->setSpacing(kSpacing);
  row->addWidget(AddLabel(page, "lblConnection", kConnectionCaption));
  opt_connection = {AddConnection(page, Connection::kModule, QStringLiteral("KRM-40"),
                                  QTr("The data module, carried between indicator and PC")),
                    AddConnection(page, Connection::kIndicator, QStringLiteral("K-2260"),
                                  QTr("The indicator itself, on a cable to this PC"))};
  for (QRadioButton* const button : opt_connection) {
    row->addWidget(button);
  }
  opt_connection.front()->setChecked(true);
  row->addStretch();
  return row;
}

// The result of the two buttons is shown beside them; its space is reserved while it is hidden.
QLayout* DataTransferControls::LayOutSteps(QWidget& page) {
  cmd_download_recipe_to_krm = AddButton(page, "cmdDownloadRecipeToKRM", QTr("&Download Data..."),
                                         QTr("Recipes, ingredients and pens to the indicator"));
  cmd_upload_data_from_krm =
      AddButton(page, "cmdUploadDataFromKRM", QTr("&Upload Data..."),
                QTr("Batch and feed records, backups and reports from the indicator"));
  auto* const buttons = new QVBoxLayout;
  buttons->setSpacing(kSpacing);
  buttons->addWidget(cmd_download_recipe_to_krm);
  buttons->addWidget(cmd_upload_data_from_krm);
  buttons->addStretch();

  frm_recipe_file_ = MakeRecipeFrame(page, "frmRecipeFile", QTr("Recipe Database"), "DB",
                                     cmd_open_recipe_db, cmd_download_recipe_db);
  frm_recipe_backup_ = MakeRecipeFrame(page, "frmRecipeBackup", QTr("Recipe Backup"), "BU",
                                       cmd_open_recipe_bu, cmd_download_recipe_bu);
  data_files_ = MakeDataFiles(page);
  auto* const row = new QHBoxLayout;
  row->setSpacing(kGroupSpacing);
  row->addLayout(buttons);
  row->addWidget(frm_recipe_file_, 0, Qt::AlignTop);
  row->addWidget(frm_recipe_backup_, 0, Qt::AlignTop);
  row->addWidget(data_files_, 0, Qt::AlignTop);
  row->addStretch();
  row->addStrut(data_files_->sizeHint().height());
  return row;
}

QGroupBox* DataTransferControls::MakeRecipeFrame(QWidget& page, const char* name,
                                                 const QString& caption, const char* suffix,
                                                 QPushButton*& open, QPushButton*& download) {
  auto* const frame = new QGroupBox(caption, &page);
  frame->setObjectName(QString::fromLatin1(name));
  open = AddButton(*frame, (std::string("cmdOpenRecipe") + suffix).c_str(), QTr("Load Memory..."),
                   QTr("Choose the %1").arg(caption));
  download = AddButton(*frame, (std::string("cmdDownloadRecipe") + suffix).c_str(), QTr("Download"),
                       QTr("Send the %1 to the module").arg(caption));
  open->setAccessibleDescription(caption);
  download->setAccessibleDescription(caption);
  const int width = open->sizeHint().width();  // the longer of its captions
  auto* const row = new QHBoxLayout(frame);
  row->setSpacing(kSpacing);
  for (QPushButton* const button : {open, download}) {
    button->setMinimumWidth(width);
    QSizePolicy keeps_place = button->sizePolicy();
    keeps_place.setRetainSizeWhenHidden(true);
    button->setSizePolicy(keeps_place);
    row->addWidget(button);
  }
  return frame;
}

QWidget* DataTransferControls::MakeDataFiles(QWidget& page) {
  auto* const whole = new QWidget(&page);
  frm_data_files_ = new QGroupBox(QTr("Data Files"), whole);
  frm_data_files_->setObjectName(QStringLiteral("frmDataFiles"));
  lst_data_files = new QListWidget(frm_data_files_);
  lst_data_files->setObjectName(QStringLiteral("lstDataFiles"));
  lst_data_files->setAccessibleName(QTr("Data Files"));
  lst_data_files->setFrameShape(QFrame::NoFrame);  // the group has one
  lst_data_files->setItemDelegate(new BoxesToBeSeen(lst_data_files));
  lst_data_files->setFixedSize(kDataFilesWidth,
                               lst_data_files->fontMetrics().height() * (kShownDataFiles + 1));
  auto* const frame = new QVBoxLayout(frm_data_files_);
  frame->setContentsMargins(1, 1, 1, 1);
  frame->addWidget(lst_data_files);
  cmd_save_file = AddButton(*whole, "cmdSaveFile", QTr("&Save"), QTr("Save the checked data file"));
  cmd_save_import = AddButton(*whole, "cmdSaveImport", QTr("Save and &Import"),
                              QTr("Save the checked data files, or all transaction files "
                                  "if none is checked, and import one after the other"));
  cmd_reload = AddButton(*whole, "cmdReload", QTr("&Reload"), QTr("Upload once more"));
  auto* const buttons = new QVBoxLayout;
  buttons->setSpacing(kSpacing);
  buttons->addWidget(cmd_save_file);
  buttons->addWidget(cmd_save_import);
  buttons->addWidget(cmd_reload);
  buttons->addStretch();
  auto* const row = new QHBoxLayout(whole);
  row->setContentsMargins(0, 0, 0, 0);
  row->setSpacing(kSpacing);
  row->addWidget(frm_data_files_);
  row->addLayout(buttons);
  row->addStretch();
  return whole;
}

QLayout* DataTransferControls::LayOutPath(QWidget& page) {
  lbl_file_path_ = AddLabel(page, "lblFilePath");
  txt_file_path = new QLineEdit(&page);
  txt_file_path->setObjectName(QStringLiteral("txtFilePath"));
  txt_file_path->setAccessibleName(QTr("Path"));
  txt_file_path->setReadOnly(true);
  cmd_print_text =
      AddButton(page, "cmdPrintText", QTr("&Print"), QTr("Print what the data window shows"));
  auto* const row = new QHBoxLayout;
  row->setSpacing(kSpacing);
  row->addWidget(lbl_file_path_);
  row->addWidget(txt_file_path, 1);
  row->addWidget(cmd_print_text);
  return row;
}

void DataTransferControls::ShowCaptions() { lbl_file_path_->setText(QTr("Path")); }

void DataTransferControls::Show(const TransferState& transfer) {
  for (QGroupBox* const frame : {frm_recipe_file_, frm_recipe_backup_}) {
    frame->setVisible(transfer.recipe_frames_visible);
  }
  for (QPushButton* const open : {cmd_open_recipe_db, cmd_open_recipe_bu}) {
    open->setText(ToQString(transfer.open_caption));
  }
  for (QPushButton* const download : {cmd_download_recipe_db, cmd_download_recipe_bu}) {
    download->setVisible(transfer.download_buttons_visible);
  }
  data_files_->setVisible(transfer.data_files_frame_visible);
  reload_enabled_ = transfer.reload_enabled;
  TurnReload();
  ShowDataFiles(transfer);
  const QString path = ToQString(transfer.file_path);
  if (txt_file_path->text() != path) {
    txt_file_path->setText(path);
  }
  txt_data_window->SetBytes(transfer.data_window);
}

void DataTransferControls::TurnReload() {
  turned_off_.Turn({cmd_reload}, reload_enabled_ && !command_runs_);
}

// In the direct connection, reading the memory and ending the connection are always possible.
void DataTransferControls::ShowLine(const LineGuard& line) {
  command_runs_ = line.AtWork() && !line.Direct();
  turned_off_.Turn({cmd_download_recipe_to_krm, cmd_upload_data_from_krm,
                    opt_connection.at(static_cast<std::size_t>(Connection::kIndicator))},
                   !command_runs_);
  turned_off_.Turn(
      {cmd_open_recipe_db, cmd_open_recipe_bu, cmd_download_recipe_db, cmd_download_recipe_bu},
      !line.AtWork());
  TurnReload();
}

void DataTransferControls::ShowDataFiles(const TransferState& transfer) {
  const QSignalBlocker silent(lst_data_files);
  if (!Shows(*lst_data_files, transfer.data_files)) {
    lst_data_files->clear();
    for (const DataFileRow& row : transfer.data_files) {
      auto* const item = new QListWidgetItem(ToQString(row.text), lst_data_files);
      item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable);
      item->setToolTip(item->text());
      item->setCheckState(row.checked ? Qt::Checked : Qt::Unchecked);
    }
    lst_data_files->setCurrentRow(transfer.selected_row);
  }
}

}  // namespace vrx
