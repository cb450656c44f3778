#include "history/row_sums.h"

#include <bit>

namespace vrx {

namespace {

std::size_t LowestBit(std::size_t number) { return number & (~number + 1); }

void AddTo(RowSum& sum, RowSum change) {
  sum.rows += change.rows;
  sum.records += change.records;
}

}  // namespace

// The tree counts from 1: its nth element sums up the LowestBit(n) entries that end with the nth.

void BuildSums(std::span<RowSum> list) {
  for (std::size_t n = 1; n <= list.size(); ++n) {
    const std::size_t above = n + LowestBit(n);
    if (above <= list.size()) {
      AddTo(list[above - 1], list[n - 1]);
    }
  }
}

void AddToSums(std::span<RowSum> tree, std::size_t entry, RowSum change) {
  for (std::size_t n = entry + 1; n <= tree.size(); n += LowestBit(n)) {
    AddTo(tree[n - 1], change);
  }
}

RowSum TotalOf(std::span<const RowSum> tree) {
  RowSum total;
  for (std::size_t n = tree.size(); n > 0; n -= LowestBit(n)) {
    AddTo(total, tree[n - 1]);
  }
  return total;
}

std::size_t FindRow(std::span<const RowSum> tree, std::int64_t& row) {
  std::size_t before = 0;
  for (std::size_t step = std::bit_floor(tree.size()); step > 0; step /= 2) {
    const std::size_t next = before + step;
    if (next <= tree.size() && tree[next - 1].rows <= row) {
      before = next;
      row -= tree[next - 1].rows;
    }
  }
  return before;
}

}  // namespace vrx
