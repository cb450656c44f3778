#include "desktop/dialogs/about_and_splash.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>

#include "desktop/app/caption_pass.h"
#include "desktop/dialogs/form_parts.h"
#include "presenter/about_form.h"
#include "presenter/help.h"
#include "settings/data_folder.h"
#include "widgets/qt_text.h"
#include "widgets/svg_image.h"

namespace vrx {
namespace {

constexpr QSize kLogoSize{80, 80};
constexpr double kTitleScale = 1.8;  // of the application's font
constexpr int kVersionCaption = 1050;
constexpr int kTitleCaption = 1051;
constexpr int kDescriptionCaption = 1052;
constexpr int kPartNoCaption = 1104;

QLayout* LayOutFacts(QDialog& form) {
  auto* const facts = new QGridLayout;
  facts->setHorizontalSpacing(kSpacing);
  facts->addWidget(AddLabel(form, "lblVersion", kVersionCaption), 0, 0);
  facts->addWidget(AddLabel(form, "lblVer"), 0, 1);
  facts->addWidget(AddLabel(form, "lblPartNo", kPartNoCaption), 1, 0);
  facts->addWidget(AddLabel(form, "lblPart"), 1, 1);
  facts->setColumnStretch(1, 1);
  return facts;
}

QLayout* LayOutWords(QDialog& form) {
  auto* const words = new QVBoxLayout;
  words->setSpacing(kSpacing);
  QLabel* const title = AddLabel(form, "lblTitle", kTitleCaption);
  SetFontScale(*title, kTitleScale, QFont::DemiBold);
  words->addWidget(title);
  words->addWidget(AddLabel(form, "lblDescription", kDescriptionCaption));
  words->addSpacing(kSpacing);
  words->addLayout(LayOutFacts(form));
  words->addSpacing(kSpacing);
  AddMakersWords(form, *words);
  return words;
}

QLayout* LayOutButtons(QDialog& form) {
  auto* const system = new QPushButton(QStringLiteral("&System Info..."), &form);
  system->setObjectName(QStringLiteral("cmdSysInfo"));
  system->setAutoDefault(false);
  auto* const ok = new QPushButton(QStringLiteral("OK"), &form);
  ok->setObjectName(QStringLiteral("cmdOK"));
  ok->setDefault(true);
  auto* const buttons = new QHBoxLayout;
  buttons->setSpacing(kSpacing);
  buttons->addWidget(system);
  buttons->addStretch();
  buttons->addWidget(ok);
  return buttons;
}

void LayOut(QDialog& form) {
  auto* const image = new SvgImage(kLogoPath, kLogoSize, &form);
  image->setObjectName(QStringLiteral("Image1"));
  auto* const head = new QHBoxLayout;
  head->setSpacing(kFormMargin);
  head->addWidget(image, 0, Qt::AlignTop);
  head->addLayout(LayOutWords(form), 1);
  auto* const column = new QVBoxLayout(&form);
  column->setContentsMargins(kFormMargin, kFormMargin, kFormMargin, kFormMargin);
  column->setSpacing(kFormMargin);
  column->addLayout(head);
  column->addLayout(LayOutButtons(form));
  column->setSizeConstraint(QLayout::SetFixedSize);
}

}  // namespace

About::About(const SystemInfo& system, OperatingSystem& os, Operator& op, QWidget* owner)
    : QDialog(owner) {
  setObjectName(QStringLiteral("ABOUT"));
  SetTag(*this, kProductCaption);
  LayOut(*this);
  ApplyCaptionTable(*this);
  findChild<QLabel*>(QStringLiteral("lblVer"))->setText(VersionText());
  findChild<QLabel*>(QStringLiteral("lblPart"))->setText(ToQString(kPartNumber));
  findChild<QLabel*>(QStringLiteral("lblTitle"))->setText(ToQString(kProductName));
  connect(findChild<QPushButton*>(QStringLiteral("cmdOK")), &QPushButton::clicked, this,
          &QDialog::accept);
  connect(findChild<QPushButton*>(QStringLiteral("cmdSysInfo")), &QPushButton::clicked, this,
          [&system, &os, &op] { StartSysInfo(system, os, op); });
}

}  // namespace vrx
