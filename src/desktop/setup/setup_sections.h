#pragma once

#include <QBoxLayout>
#include <QString>
#include <QVBoxLayout>
#include <QWidget>

namespace vrx {

// A part of a tab of `SETUP`: what belongs together, under a heading. No frame is drawn: the tab
// has one.
struct SetupSection {
  QWidget* frame;        // bears the name
  QVBoxLayout* content;  // to be filled, below the heading
};
SetupSection AddSection(QBoxLayout& tab, const char* name, const QString& heading, int stretch = 0);

// Behind the caption pass, which knows no headings.
void ShowHeadings(const QWidget& form);

}  // namespace vrx
