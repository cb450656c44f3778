#include "desktop/main_window/status_bar.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <algorithm>

#include "widgets/drawing.h"
#include "widgets/labels.h"
#include "widgets/layout.h"
#include "widgets/qt_text.h"

namespace vrx {
namespace {

struct BarPanel {
  std::string_view caption;   // of the fixed panel before it
  std::string_view tool_tip;  // after the kind of database
  std::string_view widest;    // sets the width; the name is elided in a narrow window
};

struct Bar {
  std::string_view name;
  std::string_view name_caption;
  std::string_view tool_tip_head;
};

constexpr std::array<BarPanel, 4> kPanels{{
    {"", "Filename", "00000000000000000000000000000000"},
    {"Units:", "Weight Units", "MM"},
    {"Created:", "Creation Date", "00/00/0000"},
    {"Modified:", "Last Modified Date", "00/00/0000"},
}};

constexpr int kNameStretch = 1000;  // the name takes all room there is, up to its widest

constexpr Bar kRecipeBar{"sbRecipe", "Recipe dB:", "Recipe Database "};
constexpr Bar kTransactionBar{"sbTrans", "Transaction dB:", "Transaction Database "};

constexpr const Bar& BarOf(DatabaseKind kind) {
  return kind == DatabaseKind::kRecipe ? kRecipeBar : kTransactionBar;
}

std::string_view CaptionOf(const Bar& bar, std::size_t pair) {
  return pair == 0 ? bar.name_caption : kPanels.at(pair).caption;
}

}  // namespace

DatabaseStatusBar::DatabaseStatusBar(DatabaseKind kind, QWidget* parent)
    : QFrame(parent), kind_(kind) {
  const Bar& bar = BarOf(kind);
  setObjectName(ToQString(bar.name));
  setAccessibleName(QTr(bar.tool_tip_head).trimmed());
  auto* layout = new QHBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(kSpacing);
  for (int panel = 1; panel <= kPanelCount; ++panel) {
    if (panel % 2 == 1 && panel > 1) {
      layout->addSpacing(kGroupSpacing - kSpacing);
    }
    layout->addWidget(AddPanel(panel), panel == kPanelName ? kNameStretch : 0);
  }
  layout->addStretch(1);
  ShowCaptions();
  AlignPanels();
}

QLabel* DatabaseStatusBar::AddPanel(int panel) {
  const std::size_t pair = static_cast<std::size_t>(panel - 1) / 2;
  QLabel* label = nullptr;
  if (panel % 2 == 1) {
    label = new QLabel(this);
  } else {
    label = new ElidedLabel(this);
    MakeDemiBold(*label);
    label->setToolTip(QTr(BarOf(kind_).tool_tip_head) + QTr(kPanels.at(pair).tool_tip));
    label->setAccessibleDescription(label->toolTip());
  }
  label->setObjectName(QStringLiteral("%1.Panels(%2)").arg(objectName()).arg(panel));
  label->setTextFormat(Qt::PlainText);
  panels_.at(static_cast<std::size_t>(panel - 1)) = label;
  return label;
}

QString DatabaseStatusBar::Panel(int panel) const {
  return panels_.at(static_cast<std::size_t>(panel - 1))->text();
}

void DatabaseStatusBar::SetPanel(StatusPanel panel, const QString& text) {
  panels_.at(static_cast<std::size_t>(panel - 1))->setText(text);
}

void DatabaseStatusBar::ShowCaptions() {
  for (std::size_t pair = 0; pair < kPanels.size(); ++pair) {
    panels_.at(2 * pair)->setText(QTr(CaptionOf(BarOf(kind_), pair)));
    panels_.at(2 * pair + 1)->clear();
  }
}

// Aligns the panels of both bars.
void DatabaseStatusBar::AlignPanels() {
  const auto width = [](const QLabel& panel, std::string_view text) {
    return panel.fontMetrics().size(Qt::TextSingleLine, ToQString(text)).width();
  };
  for (std::size_t pair = 0; pair < kPanels.size(); ++pair) {
    QLabel& caption = *panels_.at(2 * pair);
    caption.setFixedWidth(std::max(width(caption, Tr(CaptionOf(kRecipeBar, pair))),
                                   width(caption, Tr(CaptionOf(kTransactionBar, pair)))));
    QLabel& value = *panels_.at(2 * pair + 1);
    const int widest = width(value, kPanels.at(pair).widest);
    value.setMaximumWidth(widest);
    value.setMinimumWidth(pair == 0 ? 0 : widest);
  }
}

void DatabaseStatusBar::changeEvent(QEvent* event) {
  QFrame::changeEvent(event);
  if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) {
    AlignPanels();
  }
}

CentralSignButton::CentralSignButton(DatabaseStatusBar& bar) : QToolButton(&bar) {
  setObjectName(QStringLiteral("cmdCentralSign"));
  setAutoRaise(true);
  setFocusPolicy(Qt::NoFocus);  // the menu leads there by keys
  setToolButtonStyle(Qt::ToolButtonTextOnly);
  setAccessibleName(QTr("Central database"));
  bar.layout()->addWidget(this);
  hide();
}

void CentralSignButton::ShowState(const CentralPushState& state) {
  setText(ToQString(state.text).replace(u'&', QStringLiteral("&&")));
  setToolTip(QStringLiteral("<p>%1</p>").arg(ToQString(state.why).toHtmlEscaped()));
  setAccessibleDescription(ToQString(state.why));
  failed_ = state.sign == CentralSign::kNotReached || state.sign == CentralSign::kRefused;
  ShowColor();
  setVisible(state.sign != CentralSign::kNone);
}

void CentralSignButton::ShowColor() {
  QPalette colors = parentWidget()->palette();
  if (failed_) {
    colors.setColor(QPalette::ButtonText,
                    StatusTextColor(StatusColor::kRed, colors.color(QPalette::Window)));
  }
  setPalette(colors);
}

void CentralSignButton::changeEvent(QEvent* event) {
  QToolButton::changeEvent(event);
  if (event->type() == QEvent::ParentChange || event->type() == QEvent::ApplicationPaletteChange) {
    ShowColor();
  }
}

}  // namespace vrx
