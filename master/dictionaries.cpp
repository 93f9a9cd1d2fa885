// Dictionaries and VAT groups without screens.
#include "master/dictionaries.h"

#include <iterator>

#include "base/codepage.h"
#include "base/mazovia.h"
#include "base/numbers.h"
#include "base/text.h"
#include "master/columns.h"
#include "master/tables.h"
#include "sqltable/dbapp.h"
#include "sqltable/pgnav.h"
#include "sqltable/pgwrite.h"

namespace {

const DictionaryDef kDictionaries[] = {
    {"vat"_mz, "dane\\pola_ind\\vat"},
    {"sww"_mz, "dane\\pola_ind\\sww"},
    {"forma płatności"_mz, "dane\\pola_ind\\forma_p"},
    {"rabat dla odb."_mz, "dane\\pola_ind\\rabat"},
    {"przeliczniki w."_mz, "dane\\przelicr"},
    {"przel.dla odb."_mz, "dane\\pola_ind\\przel_od"},
    {"komentarze"_mz, "dane\\pola_ind\\komentar"},
    {"zakr.ind."_mz, "dane\\pola_ind\\zakr_ind"},
    {"zd.gospod."_mz, "dane\\pola_ind\\zd_gosp"},
    {"popularne trasy"_mz, "dane\\poptrasy"},
};

// Rows that bound a field in its dictionary; never deleted.
const ShortText kBoundDescription = "nieusuwalna dana pomocn."_mz;
const ShortText kCashForm = " gotówką"_mz;

// A dictionary open in key order with one record buffer, the exclusive lock
// and its transaction (rolled back unless committed); released on every path.
class LockedDictionary {
 public:
  explicit LockedDictionary(const ShortText& path) : path_(path) {
    LockTableExcl(path_);
    Check(OpenTable(path_, tbl_, 0));
    Check(PGRecBufOpen(tbl_, rec_));
  }
  ~LockedDictionary() {
    if (rec_ != 0) (void)PGRecBufClose(rec_);
    if (tbl_ != 0) (void)PGTblClose(tbl_);
    if (!done_) (void)PGTransRollback();
    PGLockUnregister(path_);
  }
  LockedDictionary(const LockedDictionary&) = delete;
  LockedDictionary& operator=(const LockedDictionary&) = delete;
  void Commit() {
    (void)PGTransCommit();
    done_ = true;
  }
  // Places the table on the row of key: true when found.
  bool Seek(const ShortText& key) {
    Check(PGPutAlpha(rec_, SlownikCol::indeks, key));
    return Check(PGSrchKey(tbl_, rec_, 1, 0), kPGRecordNotFound) == 0;
  }
  int32_t Count() {
    int32_t n = 0;
    Check(PGTblNRecs(tbl_, n));
    return n;
  }
  void Fill(const DictionaryEntry& e) {
    Check(PGPutAlpha(rec_, SlownikCol::indeks, e.indeks));
    Check(PGPutAlpha(rec_, SlownikCol::opis, e.opis));
    Check(PGPutAlpha(rec_, SlownikCol::czy_byl_obrot, e.czyBylObrot.Empty() ? ShortText("N") : e.czyBylObrot));
  }
  DictionaryEntry Read() {
    DictionaryEntry e;
    Check(PGRecGet(tbl_, rec_));
    Check(PGGetAlpha(rec_, SlownikCol::indeks, e.indeks));
    Check(PGGetAlpha(rec_, SlownikCol::opis, e.opis));
    Check(PGGetAlpha(rec_, SlownikCol::czy_byl_obrot, e.czyBylObrot));
    return e;
  }
  int16_t tbl() const { return tbl_; }
  int16_t rec() const { return rec_; }
  static int16_t Check(int16_t code, int16_t accepted = 0) {
    if (code != 0 && code != accepted) CheckDBError(code);
    return code;
  }

 private:
  ShortText path_;
  int16_t tbl_ = 0, rec_ = 0;
  bool done_ = false;
};

bool IsVat(const ShortText& path) { return path == ShortText(kVatDictionary); }
ShortText Key(const ShortText& text) { return TrimRightAll(text, ' '); }

}  // namespace

std::span<const DictionaryDef> Dictionaries() { return kDictionaries; }

const DictionaryDef* DictionaryByPath(const ShortText& path) {
  for (const DictionaryDef& d : kDictionaries)
    if (path == ShortText(d.path)) return &d;
  return nullptr;
}

Real VatRateNumber(const ShortText& group) {
  const ShortText text = TrimBoth(TrimRightAll(group, ' '), ' ');
  if (text.Empty() || NumericCheck(text, false) != 0) return 0;
  return TextToRealLoose(text);
}

bool VatRateMeansNoVat(Real rate) { return rate == 0 || rate == -100; }

ShortText DictionaryDeleteRefusal(const ShortText& path, const DictionaryEntry& entry) {
  const ShortText key = Key(entry.indeks);
  if (path == ShortText("dane\\przelicr") && key == ShortText("+"))
    return "Kasowanie tego przelicznika nie jest możliwe ze względu@na możliwość uszkodzenia poprawności działania programu."_mz;
  if (path == ShortText("dane\\pola_ind\\forma_p") && entry.indeks == kCashForm)
    return "Kasowanie takiej formy płatności nie jest możliwe ze względu@na możliwość uszkodzenia poprawności działania programu."_mz;
  if (IsVat(path) && key == ShortText(kExemptGroup))
    return "Kasowanie grupy zwolnionej z VAT nie jest możliwe ze względu@na możliwość uszkodzenia poprawności działania programu."_mz;
  if (Key(entry.opis) == kBoundDescription)
    return "Skasowanie tej danej nie jest możliwe ze względu@na możliwość uszkodzenia poprawności działania programu."_mz;
  return ShortText();
}

int16_t DictionaryEnsure(const ShortText& path) {
  bool exists = false;
  (void)PGTblExist(path, exists);
  return exists ? 0 : CreateTableFrom(path, kSlownikDef);
}

int16_t DictionaryRead(const ShortText& path, std::vector<DictionaryEntry>& rows) {
  int16_t tbl = 0, rec = 0;
  int16_t code = OpenTable(path, tbl, 0);
  if (code == 0) code = PGRecBufOpen(tbl, rec);
  for (int16_t move = code == 0 ? PGRecFirst(tbl) : code; code == 0 && move == 0; move = PGRecNext(tbl)) {
    DictionaryEntry e;
    code = PGRecGet(tbl, rec);
    if (code == 0) code = PGGetAlpha(rec, SlownikCol::indeks, e.indeks);
    if (code == 0) code = PGGetAlpha(rec, SlownikCol::opis, e.opis);
    if (code == 0) code = PGGetAlpha(rec, SlownikCol::czy_byl_obrot, e.czyBylObrot);
    rows.push_back(e);
  }
  if (rec != 0) (void)PGRecBufClose(rec);
  if (tbl != 0) (void)PGTblClose(tbl);
  return code;
}

int16_t DictionaryCount(const ShortText& path, int64_t& count) {
  count = 0;
  PGResult res;
  const int16_t code = PGRunQueryWithTup("SELECT count(*) FROM " + PGSqlName(path).Str(), res);
  if (code == 0 && res.Rows() == 1) count = static_cast<int64_t>(TextToRealLoose(ShortText(res.Value(0, 0))));
  return code;
}

int16_t DictionaryReadFrom(const ShortText& path, const ShortText& start, int limit,
                           std::vector<DictionaryEntry>& rows) {
  rows.clear();
  std::string bytes = start.Str();
  MazToDbInPlace(bytes.data(), bytes.size());
  PGResult res;
  const int16_t code = PGRunQueryWithTup("SELECT indeks, opis, czy_byl_obrot FROM " + PGSqlName(path).Str() +
                                             " WHERE indeks >= " + PGValueLiteral(PGKind::Text, bytes) +
                                             " ORDER BY indeks LIMIT " + std::to_string(limit),
                                         res);
  for (int r = 0; code == 0 && r < res.Rows(); ++r)
    rows.push_back({DbToMaz(ShortText(res.Value(r, 0))), DbToMaz(ShortText(res.Value(r, 1))),
                    DbToMaz(ShortText(res.Value(r, 2)))});
  return code;
}

DictionaryOutcome DictionaryAdd(const ShortText& path, const DictionaryEntry& entry) {
  LockedDictionary d(path);
  if (IsVat(path) && d.Count() >= kMaxVatGroups) return DictionaryOutcome::kFull;
  if (d.Seek(Key(entry.indeks))) return DictionaryOutcome::kDuplicate;
  d.Fill(entry);
  LockedDictionary::Check(PGRecAppend(d.tbl(), d.rec()));
  d.Commit();
  return DictionaryOutcome::kDone;
}

DictionaryOutcome DictionaryChange(const ShortText& path, const ShortText& oldKey, const DictionaryEntry& entry) {
  const bool renamed = Key(oldKey) != Key(entry.indeks);
  if (IsVat(path) && renamed && Key(oldKey) == ShortText(kExemptGroup)) return DictionaryOutcome::kRefused;
  LockedDictionary d(path);
  if (renamed && d.Seek(Key(entry.indeks))) return DictionaryOutcome::kDuplicate;
  if (!d.Seek(Key(oldKey))) return DictionaryOutcome::kGone;
  (void)d.Read();
  d.Fill(entry);
  LockedDictionary::Check(PGRecUpdate(d.tbl(), d.rec()));
  d.Commit();
  return DictionaryOutcome::kDone;
}

DictionaryOutcome DictionaryDelete(const ShortText& path, const ShortText& key) {
  LockedDictionary d(path);
  if (!d.Seek(Key(key))) return DictionaryOutcome::kGone;
  if (!DictionaryDeleteRefusal(path, d.Read()).Empty()) return DictionaryOutcome::kRefused;
  LockedDictionary::Check(PGRecDelete(d.tbl()));
  d.Commit();
  return DictionaryOutcome::kDone;
}

DictionaryOutcome VatGroupAdd(const ShortText& group, const ShortText& description) {
  return DictionaryAdd(ShortText(kVatDictionary), DictionaryEntry{group, description, ShortText("N")});
}

int16_t VatHasExemptGroup(bool& has) {
  std::vector<DictionaryEntry> rows;
  const int16_t code = DictionaryRead(ShortText(kVatDictionary), rows);
  has = false;
  for (const DictionaryEntry& e : rows) has = has || Key(e.indeks) == ShortText(kExemptGroup);
  return code;
}

DictionaryOutcome VatAddExemptGroup() { return VatGroupAdd(ShortText(kExemptGroup), "TOWARY ZWOLNIONE Z VAT"_mz); }
