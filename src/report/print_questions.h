#pragma once

#include <QPagedPaintDevice>
#include <cstdint>
#include <span>

#include "platform/operator.h"
#include "report/report.h"

namespace vrx {

// A longer document is printed only after a question.
inline constexpr std::int64_t kMostSheetsUnasked = 50;

// Smaller letters are unreadable.
inline constexpr double kSmallestLetterPoints = 5;

// Asks the operator's decisions before the reports go to the device as one document. Offers pages
// side by side for a report whose letters would be unreadable, and changes the report if accepted.
// Asks for confirmation of a long document. Returns whether to print. Throws what the rows throw.
[[nodiscard]] bool MayPrint(std::span<Report> reports, const QPagedPaintDevice& device,
                            Operator& op);

}  // namespace vrx
