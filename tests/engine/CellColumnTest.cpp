// A cell column keeps every cell at its index, whole, through growth by
// realloc, growth into chunks, copies and moves, and destroys each cell once;
// small vectors count the heap blocks they hold.
#include <gtest/gtest.h>

#include "host/mesh/CellColumn.h"
#include "host/mesh/InlineVec.h"

namespace {

using lb::host::CellColumn;
using lb::host::InlineVec;

// A value with a small vector that stays inline for up to two entries and
// goes to the heap beyond; counts the live objects.
struct Item {
  static inline int live = 0;
  InlineVec<int, 2> v;
  Item() { ++live; }
  Item(const Item& o) : v(o.v) { ++live; }
  Item(Item&& o) noexcept : v(std::move(o.v)) { ++live; }
  ~Item() { --live; }
  void set(int k) {
    v.clear();
    for (int q = 0; q <= k % 4; ++q) v.push_back(k * 10 + q);  // 1 to 4 entries
  }
  bool is(int k) const {
    if (static_cast<int>(v.size()) != k % 4 + 1) return false;
    for (int q = 0; q <= k % 4; ++q)
      if (v[q] != k * 10 + q) return false;
    return true;
  }
};

void expectItems(const CellColumn<Item>& c, int n) {
  ASSERT_EQ(c.size(), static_cast<size_t>(n));
  for (int k = 0; k < n; ++k) EXPECT_TRUE(c[k].is(k)) << "cell " << k;
}

TEST(CellColumn, KeepsEveryCellThroughGrowthCopiesAndMoves) {
  struct Case {
    int made, appended;  // cells made with the column, cells appended after
  } cases[] = {{0, 200}, {5, 300}, {63, 2}, {64, 1}, {100, 150}, {300, 0}};
  for (const Case& t : cases) {
    SCOPED_TRACE(testing::Message() << t.made << " + " << t.appended);
    {
      CellColumn<Item> c(static_cast<size_t>(t.made));
      for (int k = 0; k < t.made; ++k) c[k].set(k);
      for (int k = t.made; k < t.made + t.appended; ++k) {
        if (k % 2) {
          c.emplace_back().set(k);
        } else {
          Item it;
          it.set(k);
          c.push_back(std::move(it));
        }
      }
      const int n = t.made + t.appended;
      expectItems(c, n);
      CellColumn<Item> copy(c);
      expectItems(copy, n);
      CellColumn<Item> moved(std::move(c));
      expectItems(moved, n);
      EXPECT_EQ(c.size(), 0u);
      copy = moved;
      expectItems(copy, n);
      moved = CellColumn<Item>();
      EXPECT_EQ(moved.size(), 0u);
      EXPECT_EQ(Item::live, n);
      // Items 2, 3, 6, 7, ... hold heap blocks; columns of cells that might
      // are dropped with their destructors.
      EXPECT_EQ((InlineVec<int, 2>::anyOnHeap()), n > 2);
    }
    EXPECT_EQ(Item::live, 0);
    EXPECT_FALSE((InlineVec<int, 2>::anyOnHeap())) << "every heap block was given back";
  }
}

}  // namespace
