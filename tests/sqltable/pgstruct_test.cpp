// Copies, clones, renames and type changes of whole tables.
#include <string>

#include "sqltest.h"

namespace {

class StructureTest : public CatalogueTest {
 protected:
  // dane\src: key (a), index on b, composite po_cb (c, b), three rows.
  static void MakeSource() {
    ASSERT_EQ(CreateTable("dane\\src", {{"a", "I"}, {"b", "A5"}, {"c", "N"}}), 0);
    const int16_t a[1] = {1}, b[1] = {2}, cb[2] = {3, 2};
    ASSERT_EQ(PGKeyAdd("dane\\src", 1, a, 0), 0);
    ASSERT_EQ(PGKeyAdd("dane\\src", 1, b, 1), 0);
    int h = 0;
    ASSERT_EQ(PGKeyMap("dane\\src", 2, cb, "po_cb", h), 0);
    const int16_t ix[1] = {static_cast<int16_t>(h)};
    ASSERT_EQ(PGKeyAdd("dane\\src", 1, ix, 3), 0);
    PGKeyRelease(h);
    ASSERT_TRUE(Psql("INSERT INTO dane_src (a,b,c) VALUES (3,'z',1.5),(1,'x',2),(2,'y',0)"));
  }
};

TEST_F(StructureTest, CloneIdxGivesAnEmptyTwinWithTheSameIndexes) {
  MakeSource();
  ASSERT_EQ(PGTblCloneIdx("dane\\src", "dane\\dst"), 0) << PGLastOp.Str();
  EXPECT_EQ(CatalogueOf("DANE_DST"), "A/I/*///0/0/0 B/A5//*/PO_CB/2/1/3 C/N///PO_CB/1/0/3");
  EXPECT_EQ(IndexesOf("dane_dst"),
            "dane_dst_b (b);UNIQUE dane_dst_oidindeks (oid);UNIQUE dane_dst_pkey (a);UNIQUE dane_dst_po_cb (c, b)");
  EXPECT_EQ(Scalar("SELECT count(*) FROM dane_dst"), "0");
  EXPECT_EQ(PGOpenTableCount(), 0);  // the source was closed
  EXPECT_EQ(PGTblCloneIdx("dane\\none", "dane\\dst"), 0);  // an unknown source clones as nothing
}

TEST_F(StructureTest, CopyBringsRowsWithFreshIdsInTheirOrder) {
  MakeSource();
  ASSERT_EQ(CreateTable("dane\\dst", {{"x", "I"}}), 0);  // replaced whole
  ASSERT_EQ(PGTblCopy("dane\\src", "dane\\dst"), 0) << PGLastOp.Str();
  EXPECT_EQ(Scalar("SELECT string_agg(concat_ws(':', oid, a, b, c), ' ' ORDER BY oid) FROM dane_dst"),
            "1:3:z:1.5 2:1:x:2 3:2:y:0");
  ASSERT_TRUE(Psql("INSERT INTO dane_dst (a,b,c) VALUES (9,'q',0)"));  // the id sequence goes on
  EXPECT_EQ(Scalar("SELECT max(oid) FROM dane_dst"), "4");
  EXPECT_EQ(PGTblCopy("dane\\none", "dane\\dst"), kPGTableNotFound);
}

TEST_F(StructureTest, AddAppendsRowsAndNeedsBothTables) {
  MakeSource();
  ASSERT_EQ(CreateTable("dane\\dst", {{"a", "I"}, {"b", "A5"}, {"c", "N"}}), 0);
  ASSERT_TRUE(Psql("INSERT INTO dane_dst (a,b,c) VALUES (10,'k',0)"));
  ASSERT_EQ(PGTblAdd("dane\\src", "dane\\dst"), 0) << PGLastOp.Str();
  EXPECT_EQ(Scalar("SELECT string_agg(a::text, ',' ORDER BY oid) FROM dane_dst"), "10,3,1,2");
  EXPECT_EQ(PGTblAdd("dane\\none", "dane\\dst"), kPGTableNotFound);
  EXPECT_EQ(PGTblAdd("dane\\src", "dane\\none"), kPGTableNotFound);
  // A key conflict is the server's refusal.
  const int16_t a[1] = {1};
  ASSERT_EQ(PGKeyAdd("dane\\dst", 1, a, 0), 0);
  EXPECT_EQ(PGTblAdd("dane\\src", "dane\\dst"), kPGSqlFailed);
}

TEST_F(StructureTest, RenameMovesTableIndexesAndCatalogue) {
  MakeSource();
  const int16_t c[1] = {3};
  ASSERT_EQ(PGKeyAdd("dane\\src", 1, c, 1), 0);
  ASSERT_EQ(PGTblRename("dane\\src", "dane\\nowa"), 0) << PGLastOp.Str();
  EXPECT_EQ(IndexesOf("dane_nowa"), "dane_nowa_b (b);dane_nowa_c (c);UNIQUE dane_nowa_oidindeks (oid);"
                                    "UNIQUE dane_nowa_pkey (a);UNIQUE dane_nowa_po_cb (c, b)");
  EXPECT_EQ(Scalar("SELECT count(*) FROM tables_list WHERE nazt='DANE_SRC'"), "0");
  EXPECT_EQ(Scalar("SELECT count(*) FROM tables_list WHERE nazt='DANE_NOWA'"), "3");
  EXPECT_EQ(Scalar("SELECT count(*) FROM dane_nowa"), "3");
  // The old name is free again, indexes included.
  MakeSource();
  EXPECT_EQ(PGTblRename("dane\\src", "dane\\nowa"), kPGSqlFailed);  // the new name is taken
  EXPECT_EQ(PGTblRename("dane\\none", "dane\\x"), kPGSqlFailed);
  // Dropping the key by its new name works.
  EXPECT_EQ(PGKeyDrop("dane\\nowa", 0), 0) << PGLastOp.Str();
}

TEST_F(StructureTest, RenameOfATemporaryTableCopiesIt) {
  PGNextTblTemp = true;
  ASSERT_EQ(CreateTable("tmp_1", {{"a", "I"}}), 0);
  ASSERT_EQ(PGRunQueryNoTup("INSERT INTO tmp_1 (a) VALUES (5)"), 0);
  ASSERT_EQ(PGTblRename("tmp_1", "tmp_2"), 0) << PGLastOp.Str();
  EXPECT_EQ(Scalar("SELECT string_agg(DISTINCT nazt || temp, ',') FROM tables_list"), "TMP_2*");
  PGResult res;
  ASSERT_EQ(PGRunQueryWithTup("SELECT a FROM tmp_2", res), 0);
  EXPECT_EQ(res.Value(0, 0), "5");
  EXPECT_NE(PGRunQueryWithTup("SELECT a FROM tmp_1", res), 0);
}

TEST_F(StructureTest, FldSetTypeChangesColumnAndCatalogue) {
  MakeSource();
  ASSERT_EQ(PGFldSetType("dane\\src", 2, "A30"), 0) << PGLastOp.Str();
  EXPECT_EQ(Scalar("SELECT format_type(atttypid, atttypmod) FROM pg_attribute WHERE attrelid='dane_src'::regclass "
                   "AND attname='b'"),
            "character varying(30)");
  EXPECT_EQ(Scalar("SELECT typp FROM tables_list WHERE nazt='DANE_SRC' AND lp=2"), "A30");
  EXPECT_EQ(PGFldSetType("dane\\src", 2, "Q"), kPGSqlFailed);
  EXPECT_EQ(PGFldSetType("dane\\src", 2, "A2'"), kPGSqlFailed);
  EXPECT_EQ(Scalar("SELECT typp FROM tables_list WHERE nazt='DANE_SRC' AND lp=2"), "A30");
  EXPECT_EQ(PGFldSetType("dane\\src", 4, "I"), kPGBadFieldHandle);
  EXPECT_EQ(PGFldSetType("dane\\src", 0, "I"), kPGBadFieldHandle);
  EXPECT_EQ(PGFldSetType("dane\\src", 3, "X"), 0) << PGLastOp.Str();
}

}  // namespace
