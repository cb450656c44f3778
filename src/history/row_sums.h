#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace vrx {

// How many rows of the view something takes, and how many of them are records.
struct RowSum {
  std::int64_t rows = 0;
  std::int64_t records = 0;
};

// Sums over a list that change and answer in O(log n): a binary indexed tree. The list holds what
// each entry takes before BuildSums and the tree from then on.
void BuildSums(std::span<RowSum> list);
void AddToSums(std::span<RowSum> tree, std::size_t entry, RowSum change);
RowSum TotalOf(std::span<const RowSum> tree);

// The entry that a row lies in. `row` counts from 0, below the total, and becomes the place inside
// the entry.
std::size_t FindRow(std::span<const RowSum> tree, std::int64_t& row);

}  // namespace vrx
