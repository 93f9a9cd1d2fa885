// The DBF copy of an analysis result.
#pragma once

#include "base/shorttext.h"

// The DBF file of the turnover result: "obrotydb.dbf" in the user's directory.
ShortText TurnoverDbfPath();
// Copies the rows of the turnover result table (ordered by item) into a new
// dBASE 3 file; the file is complete or absent. 0, or the DBF layer's code
// (told to the operator).
int SaveTurnoverDbf();
