#include "desktop/app/caption_pass.h"

#include <QAction>
#include <QLabel>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QToolBar>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "base/number.h"
#include "base/text.h"
#include "desktop/app/captions.h"
#include "widgets/qt_text.h"

namespace vrx {
namespace {

// Nothing where the designed text stands for no row of the table.
std::optional<QString> CaptionOf(const QString& designed) {
  const std::optional<std::int32_t> id = ParseLong(ResolveCaptionId(designed.toStdString()));
  const std::optional<std::string_view> text = id ? CaptionText(*id) : std::nullopt;
  return text ? std::optional(ToQString(*text)) : std::nullopt;
}

QString TagOf(const QObject& control) { return control.property(kTagProperty).toString(); }

void CaptionMenus(const QWidget& menu) {
  for (QAction* const action : menu.actions()) {
    if (action->isSeparator()) {
      continue;
    }
    if (const std::optional<QString> text = CaptionOf(action->text())) {
      action->setText(*text);
    }
    if (action->menu() != nullptr) {
      CaptionMenus(*action->menu());
    }
  }
}

void CaptionToolBar(const QToolBar& bar) {
  for (QAction* const action : bar.actions()) {
    if (action->isSeparator()) {
      continue;
    }
    if (const std::optional<QString> text = CaptionOf(action->toolTip())) {
      action->setToolTip(*text);
    }
  }
}

}  // namespace

void SetTag(QObject& control, int id) { control.setProperty(kTagProperty, QString::number(id)); }

void ApplyCaptionTable(QWidget& form) {
  if (const std::optional<QString> title = CaptionOf(TagOf(form))) {
    form.setWindowTitle(*title);
  }
  for (QLabel* const label : form.findChildren<QLabel*>()) {
    if (const std::optional<QString> text = CaptionOf(TagOf(*label))) {
      label->setText(*text);
    }
  }
  for (const QMenuBar* const bar : form.findChildren<QMenuBar*>()) {
    CaptionMenus(*bar);
  }
  for (const QToolBar* const bar : form.findChildren<QToolBar*>()) {
    CaptionToolBar(*bar);
  }
}

}  // namespace vrx
