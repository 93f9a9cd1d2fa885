// The item suites: the firm's tables, warehouses 1 to 3, and catalogue rows
// with unit "szt", supplier 7, gross prices worked out from the net ones by
// the VAT group.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "base/mazovia.h"
#include "contractors_fixture.h"
#include "master/items.h"
#include "master/tables.h"
#include "sqltable/pgconn.h"

constexpr int32_t kWarehouse = 1;
// The refusal of a change that would repeat another item's key or character index.
inline const ShortText kClash =
    "Nie można dokonać korekty w głównym katalogu towarów.@Zapewne istnieje pozycja o takich cechach, jakie aktualnie@nadano zmienianej. Zmiany nie zostaną wprowadzone."_mz;

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

class ItemTablesTest : public ContractorsTest {
 protected:
  void SetUp() override {
    ContractorsTest::SetUp();
    CreateFirmTables();
    for (int32_t w : {1, 2, 3}) AddWarehouse(w);
  }
  static void AddWarehouse(int32_t number) {
    CreateWarehouseTables(false, number);
    ASSERT_TRUE(Psql("INSERT INTO dane_magazyny (nazwa,nazwa_inne,numer,czy_podmiot_gosp) VALUES ('M" +
                     std::to_string(number) + "',''," + std::to_string(number) + ",'Z')"));
  }
  // The item's quantity in the warehouse; -999 without a stock row.
  static Real Quantity(int32_t warehouse, int32_t number) {
    StockRow row;
    bool found = false;
    EXPECT_EQ(StockRead(warehouse, number, row, found), 0);
    return found ? row.quantity : -999;
  }
  // A line of a goods document in a warehouse for the item, on the date.
  static void AddLine(int32_t warehouse, int32_t number, const char* date = "2024-05-10") {
    ASSERT_TRUE(Psql("INSERT INTO dane_" + std::to_string(warehouse) + "_specyfik (typ_dok,nr_dok,znak_dok,pozycja,"
                     "data_dok,nr_towaru,vat,sww,ilosc) VALUES (1,1,'FV'," + std::to_string(number) + ",'" + date + "'," +
                     std::to_string(number) + ",'23','',1)"));
  }
};
