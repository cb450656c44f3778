#pragma once

#include "exchange/imported_data.h"

namespace vrx {

// Fills `Calculated_Ing%OfBatch` of the batch rows, and of the feed rows each ingredient's share of
// what went to the pen. Cost goes with the rows filled, whatever the transaction numbers. Throws
// ParseError where a total, a weight or an ingredient ID cannot be used; cells written before stay.
void ComputeShares(ImportedData& table);

}  // namespace vrx
