// A warehouse with its tables, the kinds catalogue and goods headers written
// straight through the table layer, for the payments' tests.
#pragma once

#include <unistd.h>

#include <functional>
#include <string>
#include <vector>

#include "base/dates.h"
#include "documents/payments.h"
#include "master/tables.h"
#include "sqltable/pgrecord.h"
#include "sqltable/pgwrite.h"
#include "sqltable/sqltest.h"

class PaymentsTest : public CatalogueTest {
 protected:
  static constexpr int32_t kWarehouse = 1;
  static constexpr int16_t kKP = 101;      // cash in from a customer
  static constexpr int16_t kRefund = 102;  // money back to a customer
  static constexpr int16_t kKW = 103;      // cash out to a supplier

  void SetUp() override {
    CatalogueTest::SetUp();
    CreateFirmTables();
    CreateWarehouseTables(false, kWarehouse);
    // Goods kinds with their contractor letter and sign, then payment kinds.
    ASSERT_TRUE(Psql("INSERT INTO DANE_DOK_PLAT (typ_dok,nazwa,typ_kontrahenta,konto,konto_przeciwstawne,"
                     "czy_przychod,znak_dok,zablokowany,druk_dodatkowy,instrukcja_ksieg,rezerwa) VALUES "
                     "(2,'Faktura','O','','','T','A','N','N','',0),(3,'Korekta','O','','','N','A','N','N','',0),"
                     "(4,'Faktura VAT','O','','','T','A','N','N','',0),(6,'Zakup','d','','','N','A','N','N','',0),"
                     "(12,'BO','O','','','T','A','N','N','',0),(14,'WZ','O','','','T','A','N','N','',0),"
                     "(101,'KP','O','','100','T','KP','N','N','',0),(102,'Zwrot','W','','100','N','ZW','N','N','',0),"
                     "(103,'KW','d','','100','N','KW','N','N','',0)"));
  }
  static int32_t Day(int y, int m, int d) { return EncodeDaySerial(y, m, d); }
  static int32_t Code(int year, int32_t n) { return ((year - 1996) << 24) | n; }

  // A goods header through PGRecAppend; source kind 0 for a root.
  static DocRef Header(int16_t kind, int32_t n, Real total, int32_t contractor, Real discount = 0,
                       const DocRef& source = {}, bool deposit = false, int32_t warehouse = kWarehouse) {
    const DocRef key{kind, Code(2024, n), ShortText("A")};
    int16_t tbl = 0, rec = 0;
    EXPECT_EQ(PGTblOpen(WarehouseTablePath(warehouse, "naglowki"), tbl, 0, 0), 0);
    EXPECT_EQ(PGRecBufOpen(tbl, rec), 0);
    using C = NaglowkiCol;
    EXPECT_EQ(PGPutShort(rec, C::typ_dok, kind), 0);
    EXPECT_EQ(PGPutLong(rec, C::nr_dok, key.coded), 0);
    EXPECT_EQ(PGPutAlpha(rec, C::znak_dok, key.mark), 0);
    EXPECT_EQ(PGPutDate(rec, C::data_dok, Day(2024, 3, 1)), 0);
    EXPECT_EQ(PGPutShort(rec, C::typ_dok_zrodl, source.kind), 0);
    EXPECT_EQ(PGPutLong(rec, C::nr_dok_zrodl, source.coded), 0);
    EXPECT_EQ(PGPutAlpha(rec, C::znak_dok_zrodl, source.mark), 0);
    EXPECT_EQ(PGPutExt(rec, C::suma_dok, total), 0);
    EXPECT_EQ(PGPutLong(rec, C::nr_kontrahenta, contractor), 0);
    EXPECT_EQ(PGPutAlpha(rec, C::czy_depozyt, ShortText(deposit ? "T" : "N")), 0);
    EXPECT_EQ(PGPutExt(rec, C::rab_kwot, discount), 0);
    EXPECT_EQ(PGRecAppend(tbl, rec), 0) << PGLastOp.Str();
    (void)PGRecBufClose(rec);
    (void)PGTblClose(tbl);
    return key;
  }
  // A line of a header with part of it in deposit.
  static void Line(const DocRef& doc, int32_t position, Real inDeposit) {
    ASSERT_TRUE(Psql("INSERT INTO DANE_1_SPECYFIK (typ_dok,nr_dok,znak_dok,pozycja,ilosc,ilosc_w_depozycie) VALUES (" +
                     std::to_string(doc.kind) + "," + std::to_string(doc.coded) + ",'A'," +
                     std::to_string(position) + ",5," + std::to_string(static_cast<double>(inDeposit)) + ")"));
  }
  // A payment of kind for the document, entered the way the screen enters it.
  static PaymentResult Pay(int16_t kind, const DocRef& doc, Real amount, DocRef* key = nullptr) {
    return PayIn(kWarehouse, Day(2024, 3, 5), Settings(), kind, doc, amount, key);
  }
  // The same in a warehouse, on a date, under settings.
  static PaymentResult PayIn(int32_t warehouse, int32_t date, const PaymentSettings& s, int16_t kind,
                             const DocRef& doc, Real amount, DocRef* key = nullptr) {
    PaymentRow row;
    row.key = {kind, 0, ShortText("K")};
    row.date = date;
    row.source = doc;
    row.amount = amount;
    const PaymentResult r = SavePayment(warehouse, row, s);
    if (key) *key = row.key;
    return r;
  }
  static PaymentSettings Settings() { return PaymentSettings{}; }
  // Runs operator(i) for i in 0..n-1 in n processes with their own
  // connections, all let go at once; the exit statuses (the operator's
  // result, -1 for a process that did not end normally) in the order of i.
  static std::vector<int> RunOperators(int n, const std::function<int(int)>& op) {
    int go[2];
    if (pipe(go) != 0) return {};
    std::vector<pid_t> children;
    for (int i = 0; i < n; ++i) {
      const pid_t pid = fork();
      if (pid == 0) {
        ConnectChild();
        char byte = 0;
        if (read(go[0], &byte, 1) != 1) _exit(4);
        _exit(op(i));
      }
      children.push_back(pid);
    }
    for (int i = 0; i < n; ++i) EXPECT_EQ(write(go[1], "g", 1), 1);
    std::vector<int> statuses;
    for (pid_t pid : children) statuses.push_back(pid > 0 ? ExitStatus(pid) : -1);
    close(go[0]);
    close(go[1]);
    return statuses;
  }
  static Real BalanceOf(const DocRef& d) { return ComputeBalance(kWarehouse, d, Settings()).value; }
};
