// Primary keys, secondary, extended and composite indexes, their descriptors, and
// the copies, clones, renames and type changes of whole tables that keep them.
#include <string>

#include "base/codepage.h"
#include "sqltest.h"

namespace {

class KeyTest : public CatalogueTest {
 protected:
  void SetUp() override {
    CatalogueTest::SetUp();
    for (int h = kPGFirstComposite; h <= kPGLastComposite; ++h) PGKeyRelease(h);
  }
  static std::string IndexDef(const std::string& index) {
    return Scalar("SELECT regexp_replace(indexdef, '.* USING btree ', '') FROM pg_indexes WHERE schemaname=current_schema() AND indexname='" +
                  index + "'");
  }
};

TEST_F(KeyTest, PrimaryKeyKeepsTheOldestRowOfEachKey) {
  ASSERT_EQ(CreateTable("dane\\t", {{"a", "I"}, {"b", "A5"}, {"c", "I"}}), 0);
  ASSERT_TRUE(Psql("INSERT INTO dane_t (a,b,c) VALUES (1,'x',1),(1,'x',2),(2,'x',3),(1,'y',4),(2,'x',5),(1,'x',6)"));
  const int16_t key[2] = {1, 2};
  ASSERT_EQ(PGKeyAdd("dane\\t", 2, key, 0), 0) << PGLastOp.Str();
  EXPECT_EQ(Scalar("SELECT string_agg(c::text, ',' ORDER BY c) FROM dane_t"), "1,3,4");
  EXPECT_EQ(CatalogueOf("DANE_T"), "A/I/*///0/0/0 B/A5/*///0/0/0 C/I////0/0/0");
  EXPECT_EQ(IndexesOf("dane_t"), "UNIQUE dane_t_oidindeks (oid);UNIQUE dane_t_pkey (a, b)");
  EXPECT_FALSE(Psql("INSERT INTO dane_t (a,b) VALUES (1,'x')"));
  // A second primary key cannot be made.
  EXPECT_EQ(PGKeyAdd("dane\\t", 1, key, 0), kPGIndexNotCreated);
}

TEST_F(KeyTest, ArgumentsAndFieldsAreChecked) {
  ASSERT_EQ(CreateTable("dane\\t", {{"a", "I"}, {"memo", "M100"}, {"c", "I"}}), 0);
  const int16_t one[1] = {1}, memo[1] = {2}, far[1] = {4}, three[1] = {3};
  EXPECT_EQ(PGKeyAdd("dane\\t", 0, one, 0), kPGArgRange);
  EXPECT_EQ(PGKeyAdd("dane\\none", 1, one, 0), kPGTableNotFound);
  EXPECT_EQ(PGKeyAdd("dane\\t", 1, memo, 0), kPGBlobKey);
  EXPECT_EQ(PGKeyAdd("dane\\t", 1, far, 0), kPGArgRange);
  EXPECT_EQ(PGKeyAdd("dane\\t", 1, three, 1), kPGNoPrimaryKey);  // secondary needs a primary key
  ASSERT_EQ(PGKeyAdd("dane\\t", 1, one, 0), 0);
  EXPECT_EQ(PGKeyAdd("dane\\t", 1, memo, 1), kPGBlobKey);
  EXPECT_EQ(PGKeyAdd("dane\\t", 1, far, 1), kPGArgRange);
  int handle = 0;
  const int16_t withMemo[2] = {3, 2};
  ASSERT_EQ(PGKeyMap("dane\\t", 2, withMemo, "mix", handle), 0);
  const int16_t composite[1] = {static_cast<int16_t>(handle)};
  EXPECT_EQ(PGKeyAdd("dane\\t", 1, composite, 1), kPGBlobKey);
  const int16_t gone[1] = {static_cast<int16_t>(handle + 1)};
  EXPECT_EQ(PGKeyAdd("dane\\t", 1, gone, 1), kPGBadArgument);
  EXPECT_EQ(IndexesOf("dane_t"), "UNIQUE dane_t_oidindeks (oid);UNIQUE dane_t_pkey (a)");
}

TEST_F(KeyTest, SingleFieldIndexesAndTheirKinds) {
  ASSERT_EQ(CreateTable("dane\\t", {{"a", "I"}, {"b", "A5"}, {"c", "I"}}), 0);
  const int16_t a[1] = {1}, b[1] = {2}, c[1] = {3};
  ASSERT_EQ(PGKeyAdd("dane\\t", 1, a, 0), 0);
  ASSERT_EQ(PGKeyAdd("dane\\t", 1, b, 1), 0) << PGLastOp.Str();
  ASSERT_EQ(PGKeyAdd("dane\\t", 1, c, 3), 0);
  // Kind 3 is unique, kind 1 is not.
  EXPECT_EQ(IndexesOf("dane_t"), "dane_t_b (b);UNIQUE dane_t_c (c);UNIQUE dane_t_oidindeks (oid);UNIQUE dane_t_pkey (a)");
  EXPECT_EQ(CatalogueOf("DANE_T"), "A/I/*///0/0/0 B/A5//*//0/1/0 C/I//*//0/3/0");
  EXPECT_EQ(PGKeyAdd("dane\\t", 1, b, 1), kPGIndexNotCreated);  // already there
}

TEST_F(KeyTest, ExtendedTwinsFollowTheTableName) {
  struct Case {
    const char* path;
    int field;
    bool twin;
  } cases[] = {
      {"dane\\kat_tow_", 2, true},   {"dane\\kat_tow_", 20, false}, {"dane\\kat_tow_", 1, false},  // key field
      {"dane\\1\\naglowki", 4, true}, {"dane\\1\\naglowki", 5, false}, {"dane\\naglowki", 4, false},
      {"dane\\7\\kasa____", 4, true}, {"dane\\7\\stany_mg", 4, false}, {"inne\\kat_tow_", 2, false},
  };
  std::vector<PGName> names, types(21, PGName("I"));  // f1..f21, all integers
  for (int f = 1; f <= 21; ++f) names.emplace_back("f" + std::to_string(f));
  for (const Case& c : cases) {
    ASSERT_EQ(PGTblCreate(c.path, 21, names.data(), types.data()), 0);
    const int16_t key[2] = {1, 2};
    const int16_t keyCount = c.field == 2 ? 1 : 2;
    ASSERT_EQ(PGKeyAdd(c.path, keyCount, key, 0), 0);
    const int16_t field[1] = {static_cast<int16_t>(c.field)};
    ASSERT_EQ(PGKeyAdd(c.path, 1, field, 1), 0) << c.path << " " << PGLastOp.Str();
    const std::string table = MazLowCaseText(PGSqlName(c.path)).Str();
    const std::string twin = table + "_f" + std::to_string(c.field) + "_u";
    EXPECT_EQ(Scalar("SELECT count(*) FROM pg_indexes WHERE schemaname=current_schema() AND indexname='" + twin + "'"), c.twin ? "1" : "0")
        << c.path << " field " << c.field;
    if (c.twin) {
      EXPECT_EQ(IndexDef(twin), keyCount == 1 ? "(f2, f1)" : "(f" + std::to_string(c.field) + ", f1, f2)");
    }
    ASSERT_EQ(PGTblDelete(c.path), 0);
  }
}

TEST_F(KeyTest, KeyMapFindsOrMakesDescriptors) {
  ASSERT_EQ(CreateTable("dane\\t", {{"a", "I"}, {"b", "A5"}, {"c", "I"}}), 0);
  const int16_t bc[2] = {2, 3}, cb[2] = {3, 2}, bad[2] = {2, 4};
  int h1 = 0, h2 = 0;
  ASSERT_EQ(PGKeyMap("dane\\t", 2, bc, "po_bc", h1), 0);
  EXPECT_EQ(h1, kPGFirstComposite);
  const PGCompositeIndex* d = PGKeyDescriptor(h1);
  ASSERT_NE(d, nullptr);
  EXPECT_EQ(d->indexName, "PO_BC");
  EXPECT_EQ(d->tablePath, "dane\\t");
  ASSERT_EQ(d->fieldNames.size(), 2u);
  EXPECT_EQ(d->fieldNames[1], "C");
  EXPECT_EQ(PGKeyMap("dane\\t", 2, bc, "po_bc", h2), 0);
  EXPECT_EQ(h2, h1);
  EXPECT_EQ(PGKeyMap("dane\\t", 2, cb, "po_bc", h2), kPGBadArgument);
  EXPECT_EQ(PGKeyMap("dane\\t", 2, cb, "po_cb", h2), 0);
  EXPECT_EQ(h2, kPGFirstComposite + 1);
  EXPECT_EQ(PGKeyMap("dane\\t", 2, bad, "zle", h2), kPGBadArgument);
  EXPECT_EQ(PGLastOp, "PGKeyMap col(4)");
  EXPECT_EQ(PGKeyMap("dane\\t", 0, bc, "nic", h2), kPGArgRange);
  PGKeyRelease(h1);
  EXPECT_EQ(PGKeyDescriptor(h1), nullptr);
  // A thousand descriptors at most.
  for (int i = 0; i < 1000; ++i) {
    int h = 0;
    if (i == 999) {
      EXPECT_EQ(PGKeyMap("dane\\t", 2, bc, PGName("ix" + std::to_string(i)), h), kPGBadArgument);
    } else {
      ASSERT_EQ(PGKeyMap("dane\\t", 2, bc, PGName("ix" + std::to_string(i)), h), 0) << i;
    }
  }
  PGShutdownTables(1);
  EXPECT_EQ(PGKeyDescriptor(kPGFirstComposite + 1), nullptr);
}

TEST_F(KeyTest, CompositeIndexesAreRecordedInOrder) {
  ASSERT_EQ(CreateTable("dane\\t", {{"a", "I"}, {"b", "A5"}, {"c", "I"}, {"d", "D"}}), 0);
  const int16_t a[1] = {1}, dcb[3] = {4, 3, 2};
  ASSERT_EQ(PGKeyAdd("dane\\t", 1, a, 0), 0);
  int h = 0;
  ASSERT_EQ(PGKeyMap("dane\\t", 3, dcb, "po_dcb", h), 0);
  const int16_t ix[1] = {static_cast<int16_t>(h)};
  ASSERT_EQ(PGKeyAdd("dane\\t", 1, ix, 4), 0) << PGLastOp.Str();
  EXPECT_EQ(IndexDef("dane_t_po_dcb"), "(d, c, b)");
  EXPECT_EQ(CatalogueOf("DANE_T"), "A/I/*///0/0/0 B/A5///PO_DCB/3/0/4 C/I///PO_DCB/2/0/4 D/D///PO_DCB/1/0/4");
  ASSERT_TRUE(Psql("INSERT INTO dane_t (a,b,c,d) VALUES (1,'x',1,'2020-01-01')"));
  EXPECT_FALSE(Psql("INSERT INTO dane_t (a,b,c,d) VALUES (2,'x',1,'2020-01-01')"));  // kind 4 is unique
}

TEST_F(KeyTest, DropOneIndexTheCompositeOrAll) {
  ASSERT_EQ(CreateTable("dane\\kat_tow_", {{"a", "I"}, {"b", "A5"}, {"c", "I"}, {"d", "I"}}), 0);
  const int16_t a[1] = {1}, b[1] = {2}, c[1] = {3}, cd[2] = {3, 4};
  ASSERT_EQ(PGKeyAdd("dane\\kat_tow_", 1, a, 0), 0);
  ASSERT_EQ(PGKeyAdd("dane\\kat_tow_", 1, b, 1), 0);
  ASSERT_EQ(PGKeyAdd("dane\\kat_tow_", 1, c, 2), 0);
  int h = 0;
  ASSERT_EQ(PGKeyMap("dane\\kat_tow_", 2, cd, "po_cd", h), 0);
  const int16_t ix[1] = {static_cast<int16_t>(h)};
  ASSERT_EQ(PGKeyAdd("dane\\kat_tow_", 1, ix, 1), 0);
  EXPECT_EQ(IndexesOf("dane_kat_tow_"),
            "dane_kat_tow__b (b);dane_kat_tow__b_u (b, a);dane_kat_tow__c (c);dane_kat_tow__c_u (c, a);"
            "UNIQUE dane_kat_tow__oidindeks (oid);UNIQUE dane_kat_tow__pkey (a);dane_kat_tow__po_cd (c, d)");

  ASSERT_EQ(PGKeyDrop("dane\\kat_tow_", 2), 0) << PGLastOp.Str();
  EXPECT_EQ(CatalogueOf("DANE_KAT_TOW_"), "A/I/*///0/0/0 B/A5////0/0/0 C/I//*/PO_CD/1/2/1 D/I///PO_CD/2/0/1");
  EXPECT_EQ(PGKeyDrop("dane\\kat_tow_", 2), kPGIndexNotFound);
  // Dropping a composite clears typi (here the single index's 2) and leaves typci, as old rows expect.
  ASSERT_EQ(PGKeyDrop("dane\\kat_tow_", h), 0) << PGLastOp.Str();
  EXPECT_EQ(CatalogueOf("DANE_KAT_TOW_"), "A/I/*///0/0/0 B/A5////0/0/0 C/I//*//0/0/1 D/I////0/0/1");
  EXPECT_EQ(PGKeyDrop("dane\\kat_tow_", h), kPGCompositeNotFound);
  EXPECT_EQ(PGKeyDrop("dane\\kat_tow_", h + 1), kPGCompositeNotFound);

  ASSERT_EQ(PGKeyDrop("dane\\kat_tow_", 0), 0) << PGLastOp.Str();
  EXPECT_EQ(IndexesOf("dane_kat_tow_"), "UNIQUE dane_kat_tow__oidindeks (oid)");
  EXPECT_EQ(CatalogueOf("DANE_KAT_TOW_"), "A/I////0/0/0 B/A5////0/0/0 C/I////0/0/0 D/I////0/0/0");
  EXPECT_EQ(PGKeyDrop("dane\\kat_tow_", 0), kPGNoPrimaryKey);
  EXPECT_EQ(PGKeyDrop("dane\\none", 0), kPGTableNotFound);
}

// Copies, clones, renames and type changes of whole tables.
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
