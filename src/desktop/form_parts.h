#pragma once

#include <QFont>
#include <QLabel>
#include <QString>
#include <QWidget>

namespace vrx {

// What the small forms share.

inline const QString kLogoPath = QStringLiteral(":/icons/logo.svg");
inline constexpr int kSpacing = 8;          // logical pixels between controls
inline constexpr double kTitleScale = 1.8;  // of the application's font

// Ids of captions.
inline constexpr int kCopyrightCaption = 1030;
inline constexpr int kVersionCaption = 1050;
inline constexpr int kDescriptionCaption = 1052;
inline constexpr int kProductCaption = 1081;
inline constexpr int kVisitCaption = 1083;
inline constexpr int kPartNoCaption = 1104;
inline constexpr int kRightsCaption = 1105;
inline constexpr int kUrlCaption = 1116;

// A label of that objectName; an id of 0 leaves it without a tag.
QLabel* AddLabel(QWidget& parent, const char* name, int caption = 0);

void SetFontScale(QWidget& widget, double scale, QFont::Weight weight = QFont::Normal);

// The program's version: major, minor and revision with points between them.
QString VersionText();

}  // namespace vrx
