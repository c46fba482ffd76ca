#!/usr/bin/env bash
# Works on a new database with isql, by a connection string and by a data source of its own, and
# compares what isql prints.
# usage: isql_client.sh FOLDER_OF_ODBCINST_INI
set -euo pipefail

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cp "$1/odbcinst.ini" "$work/odbcinst.ini"
database=$work/bolts.mdb
: >"$database"
printf '[Bolts]\nDriver = Kestrel ODBC Driver\nDBQ = %s\n' "$database" >"$work/odbc.ini"
export ODBCSYSINI=$work ODBCINI=$work/odbc.ini LC_ALL=C.UTF-8

# run NAME ISQL_ARGUMENT... sends its input to isql and keeps the output, errors included.
run() {
  local name=$1
  shift
  LD_PRELOAD=${SANITIZER_LIBRARY:-} isql "$@" -b -v -d'|' >"$work/$name" 2>&1 ||
    printf 'isql failed: %s\n' $? >>"$work/$name"
}

# expect NAME compares the output of that run with the input.
expect() {
  local name=$1
  diff -u - "$work/$name" || { echo "isql printed something else: $name"; exit 1; }
}

request="DRIVER={Kestrel ODBC Driver};DBQ=$database;UID=;PWD="

run created "$request" -k <<'SQL'
CREATE TABLE [Bolts] ([Name] TEXT(20) PRIMARY KEY, [Length] LONG, [Note] MEMO, [Since] DATETIME)
INSERT INTO [Bolts] VALUES ('M16', 60, '007', '9/3/2007')
INSERT INTO [Bolts] VALUES ('Größe', NULL, '1e5', '2007-03-09 01:02:03')
UPDATE [Bolts] SET [Length]=65 WHERE [Name]='m16'
CREATE TABLE [Materials] ([Name] TEXT(20))
SQL
expect created </dev/null

run selected "$request" -k <<'SQL'
SELECT * FROM [Bolts] ORDER BY [Name]
SQL
expect selected <<'TEXT'
Größe||1e5|2007-03-09 01:02:03
M16|65|007|2007-03-09 00:00:00
TEXT

run changed Bolts <<'SQL'
DELETE FROM [Bolts] WHERE [Name]='größe'
SELECT [Name] FROM [Bolts]
SQL
expect changed <<'TEXT'
M16
TEXT

run tables Bolts <<'SQL'
help
SQL
cut -d'|' -f3,4 "$work/tables" >"$work/table_names"
expect table_names <<'TEXT'
Bolts|TABLE
Materials|TABLE
TEXT

run columns Bolts <<'SQL'
help Bolts
SQL
cut -d'|' -f4,5,7 "$work/columns" >"$work/column_types"
expect column_types <<'TEXT'
Name|-9|20
Length|4|10
Note|-10|1073741823
Since|93|19
TEXT

# isql is a program of ODBC 2, to which the manager gives the states of that time.
run refused Bolts <<'SQL'
SELECT * FROM [Absent]
SQL
grep -qE '42S02|S0002' "$work/refused" ||
  { cat "$work/refused"; echo 'isql shows no SQLSTATE'; exit 1; }

run absent "DRIVER={Kestrel ODBC Driver};DBQ=$work/absent.mdb" -k </dev/null
grep -q 'isql failed' "$work/absent" || { echo 'isql connects to a missing file'; exit 1; }
[ ! -e "$work/absent.mdb" ] || { echo 'isql made the missing file'; exit 1; }

[ "$(cd "$work" && ls bolts.mdb*)" = bolts.mdb ] || { ls "$work"; exit 1; }
