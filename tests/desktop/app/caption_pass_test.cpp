#include <QAction>
#include <QLabel>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QToolBar>

#include <gtest/gtest.h>

#include "desktop/app/captions.h"

namespace vrx::testing {
namespace {

QString Captioned(const QVariant& tag, const QString& designed = {}) {
  QWidget form;
  auto* const label = new QLabel(designed, &form);
  label->setProperty(kTagProperty, tag);
  ApplyCaptionTable(form);
  return label->text();
}

TEST(ApplyCaptionTable, GivesALabelTheTextOfItsTag) {
  EXPECT_EQ(Captioned(u"1056"_qs), u"Name"_qs);
}

TEST(ApplyCaptionTable, LabelWithoutANumericTagReadsTbd) {
  EXPECT_EQ(Captioned({}, u"designed"_qs), u"TBD"_qs);
  EXPECT_EQ(Captioned(u""_qs), u"TBD"_qs);
  EXPECT_EQ(Captioned(u"Name"_qs), u"TBD"_qs);
}

TEST(ApplyCaptionTable, TagThatOnlyBeginsWithADigitLeavesTheLabelAsItWasLaidOut) {
  EXPECT_EQ(Captioned(u"1056x"_qs, u"designed"_qs), u"designed"_qs);
}

TEST(ApplyCaptionTable, IdWithoutARowLeavesTheLabelAsItWasLaidOut) {
  EXPECT_EQ(Captioned(u"1055"_qs, u"Description"_qs), u"Description"_qs);
  EXPECT_EQ(Captioned(u"99999999999"_qs, u"designed"_qs), u"designed"_qs);
}

TEST(ApplyCaptionTable, GivesTheFormItsTitle) {
  QWidget form;
  SetTag(form, 1063);
  ApplyCaptionTable(form);
  EXPECT_EQ(form.windowTitle(), u"VRX-2260 Transfer Data Software"_qs);
}

TEST(ApplyCaptionTable, FormWithoutATagIsTitledTbd) {
  QWidget form;
  ApplyCaptionTable(form);
  EXPECT_EQ(form.windowTitle(), u"TBD"_qs);
}

TEST(ApplyCaptionTable, MenusHoldTheIdInTheirCaption) {
  QMainWindow form;
  QMenu* const file = form.menuBar()->addMenu(u"1000"_qs);
  QMenu* const make = file->addMenu(u"1001"_qs);
  const QAction* const recipe = make->addAction(u"1070"_qs);
  const QAction* const unspecified = make->addAction(u"Recipe"_qs);
  const QAction* const bar = file->addSeparator();
  ApplyCaptionTable(form);
  EXPECT_EQ(file->title(), u"&File"_qs);
  EXPECT_EQ(make->title(), u"&New..."_qs);
  EXPECT_EQ(recipe->text(), u"Recipe Database"_qs);
  EXPECT_EQ(unspecified->text(), u"TBD"_qs);
  EXPECT_TRUE(bar->isSeparator());
}

TEST(ApplyCaptionTable, ToolBarsHoldTheIdInTheTooltip) {
  QMainWindow form;
  QToolBar* const bar = form.addToolBar(u"Tools"_qs);
  QAction* const print = bar->addAction(u"Print"_qs);
  print->setToolTip(u"1022"_qs);
  bar->addSeparator();
  ApplyCaptionTable(form);
  EXPECT_EQ(print->toolTip(), u"Print"_qs);
  EXPECT_EQ(print->text(), u"Print"_qs);
}

TEST(ApplyCaptionTable, LeavesEverythingElseAsItWasLaidOut) {
  QWidget form;
  auto* const button = new QPushButton(u"&System Info..."_qs, &form);
  SetTag(*button, 1045);
  ApplyCaptionTable(form);
  EXPECT_EQ(button->text(), u"&System Info..."_qs);
}

}  // namespace
}  // namespace vrx::testing
