// Table locks of the layer: the process's register of the table locks that
// the application took explicitly (so that a search does not lock the same
// table again) and the exclusive lock inside a transaction.
#pragma once

#include <cstdint>
#include <string>

#include "base/shorttext.h"
#include "sqltable/pgconn.h"

inline constexpr int kPGLockSlots = 20;
inline constexpr int kPGLockExclusive = 1;
inline constexpr int kPGLockShare = 2;

// 0 when the table (path or SQL name) has no entry, else the kind of its
// first entry; an entry of kind 0 gives -1.
int PGLockKind(const ShortText& name);
// Adds an entry; an existing one is warned about and kept. With all 20 slots
// taken the program ends with its message (exit status 0).
void PGLockRegister(const ShortText& name, int kind);
// Removes every entry of the table.
void PGLockUnregister(const ShortText& name);
// Empties the register.
void PGLockClearAll();
// Number of entries held.
int PGLockCount();

// Shows text in a box that does not wait, runs sql, hands the statement's code
// to check (when given) while the box still stands, and restores the screen,
// window, cursor and attribute; the code.
[[nodiscard]] int16_t PGRunUnderMessage(const ShortText& text, const std::string& sql, bool wantsTuples,
                                        PGResult& res, void (*check)(int16_t code) = nullptr);
// Shows the waiting message over the screen, runs "LOCK TABLE" in the given
// mode ("EXCLUSIVE" or "SHARE"), hands the statement's code to check (when
// given) while the message still stands, and restores the screen; the code.
[[nodiscard]] int16_t PGLockTableWaiting(const ShortText& path, bool exclusive,
                                         void (*check)(int16_t code) = nullptr);
// Exclusive lock inside a transaction: 1005 at depth 0; a failed lock ends
// the program with its two boxes (exit status 0).
[[nodiscard]] int16_t PGTblLockEx(const ShortText& name);
