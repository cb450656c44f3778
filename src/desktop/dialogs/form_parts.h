#pragma once

#include <QBoxLayout>
#include <QFont>
#include <QLabel>
#include <QString>
#include <QWidget>

namespace vrx {

// What `SPLASH` and `ABOUT` share.

inline const QString kLogoPath = QStringLiteral(":/icons/logo.svg");
// Logical pixels around what a form holds.
inline constexpr int kFormMargin = 24;

inline constexpr int kProductCaption = 1081;  // the title of both

// A label of that objectName; an id of 0 leaves it without a tag.
QLabel* AddLabel(QWidget& parent, const char* name, int caption = 0);

void SetFontScale(QWidget& widget, double scale, QFont::Weight weight = QFont::Normal);

// The program's version: major, minor and revision with points between them.
QString VersionText();

// `lblCopyright`, `lblRights`, `lblVisit` and `lblURL`.
void AddMakersWords(QWidget& form, QBoxLayout& column);

}  // namespace vrx
