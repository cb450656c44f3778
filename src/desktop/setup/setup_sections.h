#pragma once

#include <QBoxLayout>
#include <QString>
#include <QVBoxLayout>
#include <QWidget>

namespace vrx {

// A section of a tab of `SETUP` with a heading. It has no visible frame, because the tab has one.
struct SetupSection {
  QWidget* frame;        // has the name
  QVBoxLayout* content;  // to be filled, below the heading
};
SetupSection AddSection(QBoxLayout& tab, const char* name, const QString& heading, int stretch = 0);

// Called after the caption pass, which does not set headings.
void ShowHeadings(const QWidget& form);

}  // namespace vrx
