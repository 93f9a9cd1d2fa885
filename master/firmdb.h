// The firm's database as every program of the firm opens it: the one
// connection of the process, and on a new database the catalogue, the
// users' list with the System Manager and the firm's tables.
#pragma once

// Connects with the settings of conn_parm.cfg and makes what a new database
// lacks. The firm's tables are made only when none of them is there, since
// making them empties them. Any failure is the layer's message and the end
// of the program (CheckDBError).
void OpenFirmDatabase();
