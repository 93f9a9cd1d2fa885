// Control tables: small tables of codes in use (a one-character kind, a
// number and a name of up to 15 characters, the first fields in this key
// order) that document saving asks "is this number or name still free?"
// many times. Two of them at a time are mirrored in process memory.
//
// Contract:
// - A mirror is loaded on the first question, and again after any write of
//   this process to the table (controlStale) or when another process has
//   published a change of it (the table's change counter il_zm moved since
//   the load). Reading the counter is the one round trip of a question.
// - A process has two mirror slots of at most 500,000 entries. A third table,
//   or a larger one, gets the system's message once and from then on asks
//   the server for every question: slower, never wrong.
// - A database failure goes to CheckDBError, which ends the program.
#pragma once

#include <cstdint>

#include "base/shorttext.h"

inline constexpr int kPGControlSlots = 2;
inline constexpr int32_t kPGControlMaxEntries = 500000;

// One mirrored row: 24 bytes.
struct PGControlEntry {
  char kind = ' ';
  int32_t number = 0;
  char name[16] = {};  // Mazovia, at most 15 bytes, terminated
};
static_assert(sizeof(PGControlEntry) == 24);

// (Re)loads the mirror of an open table, taking a free slot when it has none.
// Without a free slot or with too many rows it shows why, and the table's
// questions go to the server from then on.
void PGControlLoad(int16_t tbl);
// True when no row has this kind and number. rec is a record buffer of the
// table, used (and overwritten) when the question goes to the server.
[[nodiscard]] bool PGControlHasNumber(char kind, int32_t number, int16_t tbl, int16_t rec);
// True when no row has this kind and name (compared on its first 15 bytes).
[[nodiscard]] bool PGControlHasName(char kind, const ShortText& name, int16_t tbl, int16_t rec);
// The handle whose mirror a slot (1..2) holds, 0 when it is free.
int16_t PGControlSlotOwner(int slot);
