#include "desktop/app/qt_services.h"

#include <QAbstractButton>
#include <QApplication>
#include <QFontMetrics>
#include <QGridLayout>
#include <QMessageBox>
#include <QSettings>
#include <QSpacerItem>
#include <memory>
#include <utility>

#include "base/application.h"
#include "base/error.h"
#include "settings/data_folder.h"
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
    default:
      return QMessageBox::Ok;
  }
}

Answer AnswerOf(int button, Buttons buttons) {
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
    box.button(QMessageBox::Retry)->setText(QStringLiteral("Try Again"));
    box.button(QMessageBox::Discard)->setText(QStringLiteral("Discard"));
    box.button(QMessageBox::Cancel)->setText(QStringLiteral("Stay"));
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

}  // namespace

Answer QtOperator::ShowMessage(const MessageBox& box) {
  const int busy = std::exchange(busy_, 0);
  ShowCursor();
  ReleasePressedButtons();
  QMessageBox message(IconOf(box.icon),
                      ToQString(box.title.empty() ? kApplicationTitle : box.title), {},
                      ButtonsOf(box.buttons), QApplication::activeWindow());
  message.setObjectName(QStringLiteral("MessageBox"));
  message.setTextFormat(Qt::PlainText);
  message.setText(ToScreenLines(box.text));
  message.setDetailedText(ToScreenLines(box.cause));
  NameButtons(message, box.buttons);
  message.setDefaultButton(DefaultOf(box));
  MakeRoomForTitle(message);
  const Answer answer = AnswerOf(message.exec(), box.buttons);
  busy_ += busy;
  ShowCursor();
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

void QtOperator::SetStatusLine(std::string_view text) { Q_EMIT StatusLineChanged(ToQString(text)); }

void QtOperator::SetStatusColor(StatusColor color) { Q_EMIT StatusColorChanged(color); }

std::string QtUserSettings::GetSetting(std::string_view key) const {
  return OpenStore()->value(ToQString(key)).toString().toStdString();
}

void QtUserSettings::SaveSetting(std::string_view key, std::string_view value) {
  const std::unique_ptr<QSettings> store = OpenStore();
  store->setValue(ToQString(key), ToQString(value));
  store->sync();
  if (store->status() != QSettings::NoError) {
    throw Error("cannot write the user's settings in " + store->fileName().toStdString());
  }
}

}  // namespace vrx
