#include <QApplication>
#include <QFrame>
#include <QLabel>

#include <gtest/gtest.h>

#include "desktop/dialogs/about_and_splash.h"
#include "presenter/help.h"

namespace vrx::testing {
namespace {

QString TextOf(const QWidget& form, const char* name) {
  const auto* const label = form.findChild<QLabel*>(QString::fromLatin1(name));
  return label == nullptr ? QStringLiteral("no such label") : label->text();
}

TEST(Splash, SaysWhoTheProgramIs) {
  const std::unique_ptr<QWidget> form = Splash::Load();
  EXPECT_EQ(form->objectName(), u"SPLASH"_qs);
  EXPECT_EQ(TextOf(*form, "lblProductName"), u"VRX-2260"_qs);
  EXPECT_EQ(TextOf(*form, "lblVersion").toStdString(), ProgramVersion());
  EXPECT_EQ(TextOf(*form, "lblCopyright"), u"Copyright (C) 2026 Brantock"_qs);
  EXPECT_EQ(TextOf(*form, "lblRights"), u"All rights reserved"_qs);
  EXPECT_EQ(TextOf(*form, "lblVisit"), u"Please visit our website at:"_qs);
  EXPECT_EQ(TextOf(*form, "lblURL"), u"https://brantock.example"_qs);
  EXPECT_NE(form->findChild<QFrame*>(u"fraMainFrame"_qs), nullptr);
}

TEST(Splash, DrawsItsLogo) {
  const std::unique_ptr<QWidget> form = Splash::Load();
  form->show();
  auto* const image = form->findChild<QWidget*>(u"Image1"_qs);
  ASSERT_NE(image, nullptr);
  const QImage drawn = image->grab().toImage();
  // The ground of the drawing, well inside its left edge.
  EXPECT_EQ(drawn.pixelColor(drawn.width() / 16, drawn.height() / 2), QColor(0x1f, 0x6f, 0x54));
}

TEST(Splash, IsOnTheScreenOnceShownAndGoneOnceUnloaded) {
  Splash splash;
  splash.Show();
  const auto shown = [] {
    for (const QWidget* const window : QApplication::topLevelWidgets()) {
      if (window->objectName() == u"SPLASH"_qs && window->isVisible()) {
        return true;
      }
    }
    return false;
  };
  EXPECT_TRUE(shown());
  splash.Unload();
  EXPECT_FALSE(shown());
}

}  // namespace
}  // namespace vrx::testing
