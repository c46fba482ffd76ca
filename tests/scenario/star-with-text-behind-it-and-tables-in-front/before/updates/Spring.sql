CREATE TABLE KFVersion (
  [Attribute] TEXT(50) NOT NULL PRIMARY KEY,
  [Value] TEXT(50) NOT NULL);
INSERT INTO KFVersion VALUES
  ('MajorNumber', '1'), ('MinorNumber', '1'), ('CommSPNumber', '0'),
  ('BuildNumber', '0'), ('CommMajorVersion', '2010'), ('CommMinorVersion', '1');

CREATE TABLE UpdateTable (
  [ID] LONG NOT NULL PRIMARY KEY,
  [TargetDatabase] TEXT(49),
  [SourceTable] TEXT(49),
  [TargetTable] TEXT(49),
  [DeleteRows] BIT NOT NULL,
  [Recreate] BIT NOT NULL,
  [CreateIfMissing] BIT NOT NULL);
INSERT INTO UpdateTable VALUES
  (10, 'QuillBase', 'Ab*Cd', 'Parts', 0, 0, 0);

CREATE TABLE AbNuts (
  [Id] LONG NOT NULL,
  [Name] TEXT(30));
INSERT INTO AbNuts VALUES
  (1, 'begin');

CREATE TABLE NutsAb (
  [Id] LONG NOT NULL,
  [Name] TEXT(30));
INSERT INTO NutsAb VALUES
  (1, 'end');

CREATE TABLE AbCd (
  [Id] LONG NOT NULL,
  [Name] TEXT(30));
INSERT INTO AbCd VALUES
  (1, 'both');
