#include <QLabel>
#include <QPushButton>
#include <QTest>

#include <gtest/gtest.h>

#include "desktop/dialogs/about_and_splash.h"
#include "presenter/help.h"
#include "support/fake_operating_system.h"
#include "support/fixed_system_info.h"
#include "support/recording_operator.h"

namespace vrx::testing {
namespace {

class AboutBox : public ::testing::Test {
 protected:
  AboutBox() { system.program_directory = "/program"; }

  QString TextOf(const char* name) const {
    const auto* const label = form.findChild<QLabel*>(QString::fromLatin1(name));
    return label == nullptr ? QStringLiteral("no such label") : label->text();
  }
  QPushButton& Button(const char* name) const {
    return *form.findChild<QPushButton*>(QString::fromLatin1(name));
  }

  FixedSystemInfo system;
  FakeOperatingSystem os;
  RecordingOperator op;
  About form{system, os, op, nullptr};
};

TEST_F(AboutBox, LetsTheAddressBeCopied) {
  EXPECT_TRUE(form.findChild<QLabel*>(u"lblURL"_qs)
                  ->textInteractionFlags()
                  .testFlag(Qt::TextSelectableByMouse));
}

TEST_F(AboutBox, SaysWhatTheProgramIs) {
  EXPECT_EQ(form.objectName(), u"ABOUT"_qs);
  EXPECT_EQ(TextOf("lblTitle"), u"VRX-2260"_qs);
  EXPECT_EQ(TextOf("lblDescription"), u"Transfer Data Software"_qs);
  EXPECT_EQ(TextOf("lblVersion"), u"Version:"_qs);
  EXPECT_EQ(TextOf("lblVer").toStdString(), ProgramVersion());
  EXPECT_EQ(TextOf("lblPartNo"), u"Part No:"_qs);
  EXPECT_EQ(TextOf("lblPart"), u"70315-0042"_qs);
  EXPECT_EQ(TextOf("lblCopyright"), u"Copyright (C) 2026 Brantock"_qs);
  EXPECT_EQ(TextOf("lblRights"), u"All rights reserved"_qs);
  EXPECT_EQ(TextOf("lblVisit"), u"Please visit our website at:"_qs);
  EXPECT_EQ(TextOf("lblURL"), u"https://brantock.example"_qs);
  EXPECT_NE(form.findChild<QWidget*>(u"Image1"_qs), nullptr);
  EXPECT_EQ(Button("cmdOK").text(), u"OK"_qs);
  EXPECT_EQ(Button("cmdSysInfo").text(), u"&System Info..."_qs);
}

TEST_F(AboutBox, OkClosesIt) {
  form.show();
  Button("cmdOK").click();
  EXPECT_FALSE(form.isVisible());
}

TEST_F(AboutBox, EnterPressesOk) {
  form.show();
  QTest::keyClick(&form, Qt::Key_Return);
  EXPECT_FALSE(form.isVisible());
  EXPECT_TRUE(os.started.empty());
}

TEST_F(AboutBox, SystemInfoStartsTheTool) {
  form.show();
  Button("cmdSysInfo").click();
  EXPECT_EQ(os.started, std::vector<std::filesystem::path>{"/program/MSINFO32.exe"});
  EXPECT_TRUE(form.isVisible());
}

TEST_F(AboutBox, SystemInfoThatCannotBeStartedIsReported) {
  os.starts = false;
  Button("cmdSysInfo").click();
  ASSERT_EQ(op.boxes.size(), 1U);
  EXPECT_EQ(op.boxes[0].text, "System Information Is Unavailable At This Time");
}

}  // namespace
}  // namespace vrx::testing
