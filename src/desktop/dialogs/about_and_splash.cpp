#include "desktop/dialogs/about_and_splash.h"

#include <QApplication>
#include <QFrame>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QVBoxLayout>

#include "desktop/app/captions.h"
#include "presenter/help.h"
#include "settings/data_folder.h"
#include "widgets/drawing.h"
#include "widgets/layout.h"
#include "widgets/qt_text.h"

namespace vrx {

namespace {

// The margin of the forms in logical pixels.
constexpr int kFormMargin = 24;

constexpr int kProductCaption = 1081;  // the title of both forms

void SetFontScale(QWidget& widget, double scale, QFont::Weight weight = QFont::Normal) {
  QFont font = widget.font();
  font.setPointSizeF(font.pointSizeF() * scale);
  font.setWeight(weight);
  widget.setFont(font);
}

constexpr int kCopyrightCaption = 1030;
constexpr int kVisitCaption = 1083;
constexpr int kRightsCaption = 1105;
constexpr int kUrlCaption = 1116;

// `lblCopyright`, `lblRights`, `lblVisit` and `lblURL`.
void AddMakersWords(QWidget& form, QBoxLayout& column) {
  column.addWidget(AddLabel(form, "lblCopyright", kCopyrightCaption));
  column.addWidget(AddLabel(form, "lblRights", kRightsCaption));
  column.addSpacing(kSpacing);
  column.addWidget(AddLabel(form, "lblVisit", kVisitCaption));
  QLabel* const url = AddLabel(form, "lblURL", kUrlCaption);
  url->setTextInteractionFlags(Qt::TextSelectableByMouse);
  column.addWidget(url);
}

constexpr QSize kLogoSize{80, 80};
constexpr double kTitleScale = 1.8;  // of the application's font
constexpr int kVersionCaption = 1050;
constexpr int kTitleCaption = 1051;
constexpr int kPurposeCaption = 1052;
constexpr int kPartNoCaption = 1104;

QLayout* LayOutFacts(QWidget& form) {
  auto* const facts = new QGridLayout;
  facts->setHorizontalSpacing(kSpacing);
  facts->addWidget(AddLabel(form, "lblVersion", kVersionCaption), 0, 0);
  facts->addWidget(AddLabel(form, "lblVer"), 0, 1);
  facts->addWidget(AddLabel(form, "lblPartNo", kPartNoCaption), 1, 0);
  facts->addWidget(AddLabel(form, "lblPart"), 1, 1);
  facts->setColumnStretch(1, 1);
  return facts;
}

QLayout* LayOutWords(QWidget& form) {
  auto* const words = new QVBoxLayout;
  words->setSpacing(kSpacing);
  QLabel* const title = AddLabel(form, "lblTitle", kTitleCaption);
  SetFontScale(*title, kTitleScale, QFont::DemiBold);
  words->addWidget(title);
  words->addWidget(AddLabel(form, "lblDescription", kPurposeCaption));
  words->addSpacing(kSpacing);
  words->addLayout(LayOutFacts(form));
  words->addSpacing(kSpacing);
  AddMakersWords(form, *words);
  return words;
}

QLayout* LayOutButtons(QDialog& form) {
  auto* const system = new QPushButton(QTr("&System Info..."), &form);
  system->setObjectName(QStringLiteral("cmdSysInfo"));
  system->setAutoDefault(false);
  auto* const ok = new QPushButton(QTr("OK"), &form);
  ok->setObjectName(QStringLiteral("cmdOK"));
  ok->setDefault(true);
  auto* const buttons = new QHBoxLayout;
  buttons->setSpacing(kSpacing);
  buttons->addWidget(system);
  buttons->addStretch();
  buttons->addWidget(ok);
  return buttons;
}

// Returns the contents that scroll.
QWidget* LayOut(QDialog& form) {
  auto* const contents = new QWidget;
  auto* const image = new SvgImage(kLogoPath, kLogoSize, contents);
  image->setObjectName(QStringLiteral("Image1"));
  auto* const head = new QHBoxLayout(contents);
  head->setContentsMargins({});
  head->setSpacing(kFormMargin);
  head->addWidget(image, 0, Qt::AlignTop);
  head->addLayout(LayOutWords(*contents), 1);
  auto* const column = new QVBoxLayout(&form);
  column->setContentsMargins(kFormMargin, kFormMargin, kFormMargin, kFormMargin);
  column->setSpacing(kFormMargin);
  column->addWidget(MakeScrollArea(contents), 1);
  column->addLayout(LayOutButtons(form));
  return contents;
}

// Called when the texts are there.
void FixSize(QDialog& form, const QWidget& contents) {
  contents.layout()->activate();
  const int buttons = form.findChild<QPushButton*>()->sizeHint().height();
  const QSize around(2 * kFormMargin, 3 * kFormMargin + buttons);
  form.setFixedSize(FormSize(form, contents, around, contents.sizeHint() + around));
}

constexpr QSize kFormSize{480, 300};
constexpr QSize kSplashLogoSize{112, 112};
constexpr double kProductScale = 2.4;  // of the application's font

void LayOut(QFrame& frame) {
  auto* const image = new SvgImage(kLogoPath, kSplashLogoSize, &frame);
  image->setObjectName(QStringLiteral("Image1"));
  QLabel* const product = AddLabel(frame, "lblProductName");
  SetFontScale(*product, kProductScale, QFont::DemiBold);

  auto* const words = new QVBoxLayout;
  words->setSpacing(kSpacing);
  words->addStretch(1);
  words->addWidget(product);
  words->addWidget(AddLabel(frame, "lblVersion"));
  words->addStretch(1);

  auto* const head = new QHBoxLayout;
  head->setSpacing(kFormMargin);
  head->addWidget(image);
  head->addLayout(words, 1);

  auto* const column = new QVBoxLayout(&frame);
  const int margin = kFormMargin - frame.frameWidth();  // even, so that edges are sharp at 1.5 too
  column->setContentsMargins(margin, margin, margin, margin);
  column->setSpacing(kSpacing / 2);
  column->addLayout(head);
  column->addStretch(1);
  AddMakersWords(frame, *column);
}

}  // namespace

About::About(const SystemInfo& system, OperatingSystem& os, Operator& op, QWidget* owner)
    : QDialog(owner) {
  setObjectName(QStringLiteral("ABOUT"));
  SetTag(*this, kProductCaption);
  const QWidget* const contents = LayOut(*this);
  ApplyCaptionTable(*this);
  findChild<QLabel*>(QStringLiteral("lblVer"))->setText(VersionText());
  findChild<QLabel*>(QStringLiteral("lblPart"))->setText(ToQString(kPartNumber));
  findChild<QLabel*>(QStringLiteral("lblTitle"))->setText(ToQString(kProductName));
  FixSize(*this, *contents);
  connect(findChild<QPushButton*>(QStringLiteral("cmdOK")), &QPushButton::clicked, this,
          &QDialog::accept);
  connect(findChild<QPushButton*>(QStringLiteral("cmdSysInfo")), &QPushButton::clicked, this,
          [&system, &os, &op] { StartSysInfo(system, os, op); });
}

std::unique_ptr<QWidget> Splash::Load() {
  auto form = std::make_unique<QWidget>(nullptr, Qt::SplashScreen | Qt::FramelessWindowHint);
  form->setObjectName(QStringLiteral("SPLASH"));
  SetTag(*form, kProductCaption);
  auto* const frame = new QFrame(form.get());
  frame->setObjectName(QStringLiteral("fraMainFrame"));
  frame->setFrameShape(QFrame::StyledPanel);
  LayOut(*frame);
  auto* const whole = new QVBoxLayout(form.get());
  whole->setContentsMargins({});
  whole->addWidget(frame);

  ApplyCaptionTable(*form);
  form->findChild<QLabel*>(QStringLiteral("lblVersion"))->setText(VersionText());
  form->findChild<QLabel*>(QStringLiteral("lblProductName"))->setText(ToQString(kProductName));
  form->resize(kFormSize.expandedTo(form->sizeHint()));
  return form;
}

void Splash::Show() {
  form_ = Load();
  const QRect screen = QApplication::primaryScreen()->availableGeometry();
  form_->move(screen.center() - form_->rect().center());
  form_->show();
  form_->repaint();
  QApplication::processEvents(QEventLoop::ExcludeUserInputEvents);  // lets the screen have it
}

QString VersionText() { return ToQString(ProgramVersion()); }

void SetHelpHandlers(MainWindow& window, const SystemInfo& system, OperatingSystem& os,
                     Operator& op) {
  window.SetHandler(MainCommand::kManual, [&] { ShowDocument(kUsersManual, system, os, op); });
  window.SetHandler(MainCommand::kChapter, [&] {
    ShowChapter(window.Tabs().CurrentTab(), system, os, op,
                [&](const std::filesystem::path& chapter) { ViewChapter(chapter, window); });
  });
  window.SetHandler(MainCommand::kReadme, [&] { ShowDocument(kReadme, system, os, op); });
  window.SetHandler(MainCommand::kAbout, [&] { About(system, os, op, &window).exec(); });
  QObject::connect(&window.Panels().PicResult(), &ResultPanel::OpenRequested, &window,
                   [&](const QString& path) { OpenWrittenFile(path.toStdString(), os, op); });
}

}  // namespace vrx
