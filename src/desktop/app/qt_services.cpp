#include "desktop/app/qt_services.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QFontMetrics>
#include <QGridLayout>
#include <QHeaderView>
#include <QLabel>
#include <QMessageBox>
#include <QMimeDatabase>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QSettings>
#include <QSpacerItem>
#include <QStringList>
#include <QTreeView>
#include <algorithm>
#include <array>
#include <memory>
#include <utility>

#include "base/application.h"
#include "base/error.h"
#include "base/translation.h"
#include "settings/data_folder.h"
#include "widgets/layout.h"
#include "widgets/qt_text.h"

namespace vrx {

namespace {

QMessageBox::Icon IconOf(Icon icon) {
  switch (icon) {
    case Icon::kCritical:
      return QMessageBox::Critical;
    case Icon::kQuestion:
      return QMessageBox::Question;
    case Icon::kWarning:
      return QMessageBox::Warning;
    case Icon::kInformation:
      return QMessageBox::Information;
    case Icon::kNone:
      break;
  }
  return QMessageBox::NoIcon;
}

QMessageBox::StandardButtons ButtonsOf(Buttons buttons) {
  switch (buttons) {
    case Buttons::kOkCancel:
      return QMessageBox::Ok | QMessageBox::Cancel;
    case Buttons::kYesNo:
      return QMessageBox::Yes | QMessageBox::No;
    case Buttons::kTryDiscardStay:
      return QMessageBox::Retry | QMessageBox::Discard | QMessageBox::Cancel;
    case Buttons::kNewAllNothing:
      return QMessageBox::Yes | QMessageBox::YesToAll | QMessageBox::Cancel;
    case Buttons::kOk:
      break;
  }
  return QMessageBox::Ok;
}

// Set explicitly: the desktop's order of buttons might put the one for the details first.
QMessageBox::StandardButton DefaultOf(const MessageBox& box) {
  switch (box.buttons) {
    case Buttons::kYesNo:
      return box.refuses_by_default ? QMessageBox::No : QMessageBox::Yes;
    case Buttons::kOkCancel:
      return box.refuses_by_default ? QMessageBox::Cancel : QMessageBox::Ok;
    case Buttons::kTryDiscardStay:
      return QMessageBox::Retry;
    case Buttons::kNewAllNothing:
      return QMessageBox::Yes;
    default:
      return QMessageBox::Ok;
  }
}

Answer AnswerOf(int button, Buttons buttons) {
  if (buttons == Buttons::kNewAllNothing) {
    return button == QMessageBox::Yes        ? Answer::kStoreNew
           : button == QMessageBox::YesToAll ? Answer::kStoreAll
                                             : Answer::kStoreNothing;
  }
  switch (button) {
    case QMessageBox::Yes:
      return Answer::kYes;
    case QMessageBox::No:
      return Answer::kNo;
    case QMessageBox::Retry:
      return Answer::kTryAgain;
    case QMessageBox::Discard:
      return Answer::kDiscard;
    case QMessageBox::Cancel:
      return buttons == Buttons::kTryDiscardStay ? Answer::kStay : Answer::kCancel;
    default:
      return Answer::kOk;
  }
}

void NameButtons(QMessageBox& box, Buttons buttons) {
  if (buttons == Buttons::kTryDiscardStay) {
    box.button(QMessageBox::Retry)->setText(QTr("Try Again"));
    box.button(QMessageBox::Discard)->setText(QTr("Discard"));
    box.button(QMessageBox::Cancel)->setText(QTr("Stay"));
  } else if (buttons == Buttons::kNewAllNothing) {
    box.button(QMessageBox::Yes)->setText(QTr("Store What Is &New"));
    box.button(QMessageBox::YesToAll)->setText(QTr("Store &All Again"));
    box.button(QMessageBox::Cancel)->setText(QTr("&Store Nothing"));
  }
}

// The box takes the mouse button's release, so a button that is held down would stay drawn so.
void ReleasePressedButtons() {
  const QWidget* const window = QApplication::activeWindow();
  if (window == nullptr) {
    return;
  }
  for (auto* const button : window->findChildren<QAbstractButton*>()) {
    button->setDown(false);
  }
}

// A text that is too high for the screen scrolls, so that the buttons remain in sight.
void KeepWithinScreen(QMessageBox& message) {
  auto* const text = message.findChild<QLabel*>(QStringLiteral("qt_msgbox_label"));
  auto* const grid = qobject_cast<QGridLayout*>(message.layout());
  const QSize room = message.screen()->availableSize() - kFrameSize;
  const QSize widest(room.width() * 2 / 3, room.height() / 2);
  const QRect needed = text->fontMetrics().boundingRect(
      QRect(0, 0, widest.width(), 0), Qt::TextWordWrap | Qt::TextExpandTabs, text->text());
  const int place = grid == nullptr ? -1 : grid->indexOf(text);
  if (place < 0 || needed.height() <= widest.height()) {
    return;
  }
  int row = 0;
  int column = 0;
  int rows = 0;
  int columns = 0;
  grid->getItemPosition(place, &row, &column, &rows, &columns);
  grid->removeWidget(text);
  text->setWordWrap(true);
  QScrollArea* const area = MakeScrollArea(text);
  area->setFocusPolicy(Qt::StrongFocus);
  area->setAccessibleName(message.windowTitle());
  area->setMinimumSize(widest);
  grid->addWidget(area, row, column, rows, columns);
}

// The cause of a problem with the port is needed to solve it, so it is not hidden in the details.
// Returns the button that opens Setup, or nullptr.
QPushButton* ShowCause(QMessageBox& message, const MessageBox& box) {
  if (box.port_help == PortHelp::kNone) {
    message.setDetailedText(ToScreenLines(Tr(box.cause)));
    return nullptr;
  }
  message.setInformativeText(ToScreenLines(Tr(box.cause)));
  if (box.port_help == PortHelp::kCause) {
    return nullptr;
  }
  QPushButton* const setup = message.addButton(QTr("&Setup..."), QMessageBox::ActionRole);
  setup->setObjectName(QStringLiteral("cmdPortSetup"));
  setup->setToolTip(QTr("Choose the serial port"));
  message.setEscapeButton(QMessageBox::Ok);
  return setup;
}

// A box is as wide as its text; the title bar of a desktop would cut off a longer title.
void MakeRoomForTitle(QMessageBox& box) {
  constexpr int kBarButtons = 120;  // and the icon, in logical pixels
  QFont bold = QApplication::font();
  bold.setBold(true);
  const int width = QFontMetrics(bold).horizontalAdvance(box.windowTitle()) + kBarButtons;
  auto& grid = dynamic_cast<QGridLayout&>(*box.layout());
  grid.addItem(new QSpacerItem(width, 0), grid.rowCount(), 0, 1, grid.columnCount());
}

std::unique_ptr<QSettings> OpenStore() {
  auto store =
      std::make_unique<QSettings>(QSettings::NativeFormat, QSettings::UserScope,
                                  ToQString(kMakerFolderName), ToQString(kApplicationTitle));
  store->setFallbacksEnabled(false);
  store->beginGroup(QStringLiteral("Settings"));
  return store;
}

// Files that the kernel makes up have no size, or lie in one of these folders.
bool IsStored(const QFileInfo& file) {
  static const std::array<QString, 3> kernel_folders = {
      QStringLiteral("/proc/"), QStringLiteral("/sys/"), QStringLiteral("/dev/")};
  if (!file.isFile() || file.size() == 0) {
    return false;
  }
  const QString path = file.canonicalFilePath();
  return std::none_of(kernel_folders.begin(), kernel_folders.end(),
                      [&](const QString& folder) { return path.startsWith(folder); });
}

// A dialog reads a folder as soon as it is made, before it has our icons: one that only holds
// folders.
QString FirstFolder() { return QDir::rootPath(); }

// "*.QXT" takes files whatever their case; "*.*" takes those without an extension too.
QString AnyCase(const QString& pattern) {
  if (pattern == QStringLiteral("*.*")) {
    return QStringLiteral("*");
  }
  QString mapped;
  for (const QChar character : pattern) {
    if (character.isLetter()) {
      mapped += QStringLiteral("[%1%2]").arg(character.toLower()).arg(character.toUpper());
    } else {
      mapped += character;
    }
  }
  return mapped;
}

// "Transactions (*.QXT)|*.QXT|..." as Qt's name filters. The patterns behind each name are hidden;
// the name contains them.
QStringList NameFilters(const std::string& filter) {
  const QStringList parts = ToQString(filter).split(u'|');
  QStringList filters;
  for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
    QStringList patterns;
    for (const QString& pattern : parts[i + 1].split(u';', Qt::SkipEmptyParts)) {
      patterns << AnyCase(pattern.trimmed());
    }
    filters << parts[i] + QStringLiteral(" (") + patterns.join(u' ') + u')';
  }
  return filters;
}

// Sizes and dates as wide as they are, names in what is left.
void ShowWholeCells(QFileDialog& widget) {
  constexpr QSize kOpeningSize{800, 520};
  QHeaderView& columns = *widget.findChild<QTreeView*>(QStringLiteral("treeView"))->header();
  columns.setSectionResizeMode(QHeaderView::ResizeToContents);
  columns.setStretchLastSection(false);
  columns.setSectionResizeMode(0, QHeaderView::Stretch);
  widget.resize(kOpeningSize);
}

// Empty after a cancel.
QString Ask(QFileDialog& widget, QString& last_folder) {
  if (widget.exec() != QDialog::Accepted || widget.selectedFiles().isEmpty()) {
    return {};
  }
  QString path = widget.selectedFiles().constFirst();
  // A path can be typed that leads out of the shown folder.
  last_folder = widget.fileMode() == QFileDialog::Directory ? path : QFileInfo(path).absolutePath();
  return path;
}

FileChoice ChoiceOf(const QString& path) {
  return {path.toStdString(), QFileInfo(path).fileName().toStdString()};
}

}  // namespace

Answer QtOperator::ShowMessage(const MessageBox& box) {
  const int busy = std::exchange(busy_, 0);
  ShowCursor();
  ReleasePressedButtons();
  QMessageBox message(IconOf(box.icon), QTr(box.title.empty() ? kApplicationTitle : box.title), {},
                      ButtonsOf(box.buttons), QApplication::activeWindow());
  message.setObjectName(QStringLiteral("MessageBox"));
  message.setTextFormat(Qt::PlainText);
  message.setText(ToScreenLines(Tr(box.text)));
  const QPushButton* const setup = ShowCause(message, box);
  NameButtons(message, box.buttons);
  message.setDefaultButton(DefaultOf(box));
  MakeRoomForTitle(message);
  KeepWithinScreen(message);
  const Answer answer = AnswerOf(message.exec(), box.buttons);
  busy_ += busy;
  ShowCursor();
  if (setup != nullptr && message.clickedButton() == setup) {
    Q_EMIT PortSetupRequested();
  }
  return answer;
}

void QtOperator::Beep() { QApplication::beep(); }

void QtOperator::SetBusy(bool busy) {
  busy_ += busy ? 1 : -1;
  ShowCursor();
}

void QtOperator::ShowCursor() {
  const bool busy = busy_ > 0;
  if (busy == std::exchange(busy_shown_, busy)) {
    return;
  }
  if (busy) {
    QApplication::setOverrideCursor(Qt::WaitCursor);
  } else {
    QApplication::restoreOverrideCursor();
  }
}

void QtOperator::SetStatusLine(std::string_view text) { Q_EMIT StatusLineChanged(QTr(text)); }

void QtOperator::SetStatusColor(StatusColor color) { Q_EMIT StatusColorChanged(color); }

QIcon FileIcons::icon(const QFileInfo& file) const {
  return file.isDir() || IsStored(file) ? QFileIconProvider::icon(file)
                                        : QFileIconProvider::icon(IconType::File);
}

QString FileIcons::type(const QFileInfo& file) const {
  return file.isDir() || IsStored(file)
             ? QFileIconProvider::type(file)
             : QMimeDatabase()
                   .mimeTypeForFile(file.fileName(), QMimeDatabase::MatchExtension)
                   .comment();
}

QtFileChooser::QtFileChooser(std::function<std::string()> home) : home_(std::move(home)) {}

QString QtFileChooser::LastFolder() const {
  return last_folder_.isEmpty() ? ToQString(home_()) : last_folder_;
}

void QtFileChooser::SetUp(QFileDialog& widget, const FileDialog& dialog) {
  widget.setObjectName(QStringLiteral("FileDialog"));
  widget.setWindowTitle(QTr(dialog.title));
  widget.setOption(QFileDialog::DontUseNativeDialog);
  widget.setOption(QFileDialog::HideNameFilterDetails);
  widget.setNameFilters(NameFilters(dialog.filter));
  widget.setDefaultSuffix(ToQString(dialog.default_extension));
  widget.setIconProvider(&icons_);
  widget.setDirectory(dialog.start_folder.empty() ? LastFolder() : ToQString(dialog.start_folder));
  ShowWholeCells(widget);
}

FileChoice QtFileChooser::ShowOpen(const FileDialog& dialog) {
  QFileDialog widget(QApplication::activeWindow(), {}, FirstFolder());
  widget.setAcceptMode(QFileDialog::AcceptOpen);
  widget.setFileMode((dialog.flags & kFileMustExist) != 0 ? QFileDialog::ExistingFile
                                                          : QFileDialog::AnyFile);
  SetUp(widget, dialog);
  return ChoiceOf(Ask(widget, last_folder_));
}

FileChoice QtFileChooser::ShowSave(const FileDialog& dialog) {
  QFileDialog widget(QApplication::activeWindow(), {}, FirstFolder());
  widget.setAcceptMode(QFileDialog::AcceptSave);
  widget.setFileMode(QFileDialog::AnyFile);
  widget.setOption(QFileDialog::DontConfirmOverwrite, (dialog.flags & kOverwritePrompt) == 0);
  SetUp(widget, dialog);
  return ChoiceOf(Ask(widget, last_folder_));
}

std::string QtFileChooser::ShowFolder(const std::string& title) {
  QFileDialog widget(QApplication::activeWindow(), {}, FirstFolder());
  widget.setAcceptMode(QFileDialog::AcceptOpen);
  widget.setFileMode(QFileDialog::Directory);
  widget.setOption(QFileDialog::ShowDirsOnly);
  SetUp(widget, {.title = title, .filter = {}, .default_extension = {}});
  return Ask(widget, last_folder_).toStdString();
}

std::string QtUserSettings::GetSetting(std::string_view key) const {
  return OpenStore()->value(ToQString(key)).toString().toStdString();
}

void QtUserSettings::SaveSetting(std::string_view key, std::string_view value) {
  const std::unique_ptr<QSettings> store = OpenStore();
  store->setValue(ToQString(key), ToQString(value));
  store->sync();
  if (store->status() != QSettings::NoError) {
    throw Error(Tr("cannot write the user's settings in %1", {store->fileName().toStdString()}));
  }
}

}  // namespace vrx
