#include "desktop/dialogs/splash.h"

#include <QApplication>
#include <QFrame>
#include <QLabel>
#include <QScreen>
#include <QVBoxLayout>

#include "desktop/app/caption_pass.h"
#include "desktop/dialogs/form_parts.h"
#include "settings/data_folder.h"
#include "widgets/qt_text.h"
#include "widgets/svg_image.h"

namespace vrx {
namespace {

constexpr QSize kFormSize{480, 300};
constexpr QSize kLogoSize{112, 112};
constexpr double kProductScale = 2.4;  // of the application's font

void LayOut(QFrame& frame) {
  auto* const image = new SvgImage(kLogoPath, kLogoSize, &frame);
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

}  // namespace vrx
