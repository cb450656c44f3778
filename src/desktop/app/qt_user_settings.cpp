#include "desktop/app/qt_user_settings.h"

#include <QSettings>
#include <memory>

#include "base/application.h"
#include "base/error.h"
#include "settings/data_folder.h"
#include "widgets/qt_text.h"

namespace vrx {
namespace {

std::unique_ptr<QSettings> OpenStore() {
  auto store =
      std::make_unique<QSettings>(QSettings::NativeFormat, QSettings::UserScope,
                                  ToQString(kMakerFolderName), ToQString(kApplicationTitle));
  store->setFallbacksEnabled(false);
  store->beginGroup(QStringLiteral("Settings"));
  return store;
}

}  // namespace

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
