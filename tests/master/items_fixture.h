// Catalogue rows for the item suites: unit "szt", supplier 7, gross prices
// worked out from the net ones by the VAT group.
#pragma once

#include <gtest/gtest.h>

#include "master/items.h"
#include "sqltable/pgconn.h"

inline ItemData Item(const ShortText& name, const char* vat = "23", Real buyNet = 10, Real saleNet = 15) {
  ItemData item;
  item.name = name;
  item.vat = ShortText(vat);
  item.unit = "szt";
  item.supplier = 7;
  item.buyNet = buyNet;
  item.buyGross = GrossFromNet(buyNet, item.vat);
  item.saleNet = saleNet;
  item.saleGross = GrossFromNet(saleNet, item.vat);
  return item;
}

// Adds the item with its opening stock in the warehouse (0: no stock row); its number.
inline int32_t AddItemRow(ItemData item, Real quantity = 0, int32_t warehouse = 1) {
  StockRow stock;
  stock.quantity = quantity;
  ShortText refusal;
  EXPECT_EQ(ItemAdd(item, ItemRules{}, warehouse, stock, refusal), 0) << PGLastOp.Str();
  EXPECT_TRUE(refusal.Empty()) << refusal.Str();
  return item.number;
}
