#include <QSettings>
#include <filesystem>

#include <gtest/gtest.h>

#include "base/error.h"
#include "desktop/app/qt_services.h"
#include "support/temp_folder.h"

namespace vrx::testing {
namespace {

class UserStore : public ::testing::Test {
 protected:
  UserStore() { Use(folder.Path()); }
  ~UserStore() override { Use(before_); }

  static void Use(const std::filesystem::path& place) {
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope,
                       QString::fromStdString(place.string()));
  }

  TempFolder folder;
  QtUserSettings settings;

 private:
  std::filesystem::path before_ = qgetenv("XDG_CONFIG_HOME").toStdString();
};

TEST_F(UserStore, MissingKeyIsEmpty) { EXPECT_EQ(settings.GetSetting("MRU_RecipePathName"), ""); }

TEST_F(UserStore, KeepsTextsInTheSectionSettingsUnderTheApplicationsTitle) {
  settings.SaveSetting("MRU_RecipeFileName", "J\xc3\x84NNER.RDB");
  EXPECT_EQ(QtUserSettings().GetSetting("MRU_RecipeFileName"), "J\xc3\x84NNER.RDB");
  const QSettings store(QString::fromStdString((folder / "Brantock/VRX(2260).conf").string()),
                        QSettings::IniFormat);
  EXPECT_EQ(store.value(u"Settings/MRU_RecipeFileName"_qs).toString(), u"JÄNNER.RDB"_qs);
}

TEST_F(UserStore, KeepsAnyText) {
  for (const std::string text :
       {"a, b; c", "\"quoted\"", "100%", "C:\\data\\x", "@Invalid()", " x "}) {
    settings.SaveSetting("key", text);
    EXPECT_EQ(settings.GetSetting("key"), text);
  }
}

TEST_F(UserStore, EmptyTextOverwrites) {
  settings.SaveSetting("MRU_TransPathName", "/data/Y.TDB");
  settings.SaveSetting("MRU_TransPathName", "");
  EXPECT_EQ(settings.GetSetting("MRU_TransPathName"), "");
}

TEST_F(UserStore, StoreThatCannotBeWrittenThrows) {
  const TempFolder other;
  other.Write("Brantock", "a file in the folder's place");
  Use(other.Path());
  EXPECT_THROW(settings.SaveSetting("MainLeft", "1"), Error);
}

}  // namespace
}  // namespace vrx::testing
