#pragma once

#include <QPagedPaintDevice>
#include <cstdint>
#include <span>

#include "platform/operator.h"
#include "report/report.h"

namespace vrx {

// A document of more sheets is printed only after a question.
inline constexpr std::int64_t kMostSheetsUnasked = 50;

// Columns that fit on one page only in smaller letters than these are unreadable.
inline constexpr double kSmallestLetterPoints = 5;

// Asks what the operator has to decide before the reports go to the device as one document: a
// report whose letters would be unreadable is offered on pages side by side, and a long document is
// named with its number of sheets. A report that is to be printed side by side is changed
// accordingly. False: nothing is to be printed. Throws what the rows throw.
bool MayPrint(std::span<Report> reports, const QPagedPaintDevice& device, Operator& op);

}  // namespace vrx
