#!/usr/bin/env bash
# Shows that sandbox/compare-databases finds every kind of difference, and none where there is none.
# ODBCSYSINI has to name the driver. usage: compare_databases.sh SOURCE_FOLDER
set -euo pipefail

sandbox=$1/sandbox
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

# make STATE DATABASE reads the statements.
make() {
  mkdir -p "$folder/$1/$(dirname "$2")"
  cat >"$folder/text.sql"
  "$sandbox/make-database" "$folder/text.sql" "$folder/$1/$2"
}

# expect TEXT: what the comparison prints.
expect() {
  local found
  found=$("$sandbox/compare-databases" "$folder/before" "$folder/after")
  diff <(printf '%s\n' "$1") <(printf '%s\n' "$found") || exit 1
}

make before sub/Parts.mdb <<'END'
CREATE TABLE KFVersion ([Attribute] TEXT(50), [Value] TEXT(50));
INSERT INTO KFVersion VALUES ('MajorNumber', '1');
INSERT INTO KFVersion VALUES ('MinorNumber', '2');
INSERT INTO KFVersion VALUES ('CommSPNumber', '3');
INSERT INTO KFVersion VALUES ('BuildNumber', '4');
INSERT INTO KFVersion VALUES ('CommMajorVersion', '5');
INSERT INTO KFVersion VALUES ('CommMinorVersion', '6');
CREATE TABLE Bolts ([Code] TEXT(9), [Size] DOUBLE, [Old] MEMO, PRIMARY KEY ([Code]));
INSERT INTO Bolts VALUES ('b', 1.5, NULL);
INSERT INTO Bolts VALUES ('a', 2, 'it''s');
INSERT INTO Bolts VALUES ('c', 3, 'kept');
CREATE TABLE Dropped ([Id] LONG);
INSERT INTO Dropped VALUES (1);
CREATE TABLE Keyless ([Id] LONG, [Since] DATE);
INSERT INTO Keyless VALUES (1, '9/3/2007');
INSERT INTO Keyless VALUES (1, '9/3/2007');
INSERT INTO Keyless VALUES (2, '9/3/2007');
CREATE TABLE Rekeyed ([Id] LONG, [Other] LONG, PRIMARY KEY ([Id]));
INSERT INTO Rekeyed VALUES (1, 7);
CREATE TABLE Same ([Id] LONG);
INSERT INTO Same VALUES (1);
END
make before Bare.mdb <<'END'
CREATE TABLE Same ([Id] LONG);
END
cp -a "$folder/before" "$folder/after"
expect 'Bare.mdb  without a version, unchanged
sub/Parts.mdb  5.6 (1.2.3.4), unchanged'

make after sub/Parts.mdb <<'END'
CREATE TABLE KFVersion ([Attribute] TEXT(50), [Value] TEXT(50));
INSERT INTO KFVersion VALUES ('MajorNumber', '1');
INSERT INTO KFVersion VALUES ('MinorNumber', '2');
INSERT INTO KFVersion VALUES ('CommSPNumber', '3');
INSERT INTO KFVersion VALUES ('BuildNumber', '5');
INSERT INTO KFVersion VALUES ('CommMajorVersion', '5');
INSERT INTO KFVersion VALUES ('Else', '0');
CREATE TABLE Bolts ([Code] TEXT(9), [Size] REAL, [New] BIT, PRIMARY KEY ([Code]));
INSERT INTO Bolts VALUES ('a', 2, 1);
INSERT INTO Bolts VALUES ('c', 4, 0);
INSERT INTO Bolts VALUES ('d', NULL, NULL);
CREATE TABLE Keyless ([Id] LONG, [Since] DATE);
INSERT INTO Keyless VALUES (1, '9/3/2007');
INSERT INTO Keyless VALUES (2, '2007-03-09 08:30:00');
CREATE TABLE Made ([Id] LONG, [Name] TEXT(9), PRIMARY KEY ([Id]));
INSERT INTO Made VALUES (2, 'two');
CREATE TABLE Rekeyed ([Id] LONG, [Other] LONG, [Third] LONG, PRIMARY KEY ([Id], [Third]));
INSERT INTO Rekeyed VALUES (1, 7, 9);
CREATE TABLE Same ([Id] LONG);
INSERT INTO Same VALUES (1);
END
expect "Bare.mdb  without a version, unchanged
sub/Parts.mdb  5.6 (1.2.3.4) -> 5.none (1.2.3.5)
  table Bolts
    column taken away: Size DOUBLE
    column taken away: Old MEMO
    new column: Size REAL
    new column: New BIT
    changed  Code 'a': New 1
    deleted  Code 'b', Size 1.5, Old NULL
    changed  Code 'c': Size 3.0 -> 4.0, New 0
    added    Code 'd', Size NULL, New NULL
  table Dropped dropped, 1 rows
  table KFVersion
    added    Attribute 'Else', Value '0'
  table Keyless
    deleted  Id 1, Since 2007-03-09
    deleted  Id 2, Since 2007-03-09
    added    Id 2, Since 2007-03-09 08:30:00
  new table Made: Id LONG, Name TEXT(9); key: Id
    added    Id 2, Name 'two'
  table Rekeyed
    new column: Third LONG
    key: Id -> Id, Third
    deleted  Id 1, Other 7
    added    Id 1, Other 7, Third 9"

cp "$folder/after/Bare.mdb" "$folder/after/Third.mdb"
if "$sandbox/compare-databases" "$folder/before" "$folder/after" >/dev/null 2>&1; then
  printf 'A file that only one folder has was not noticed\n'
  exit 1
fi
