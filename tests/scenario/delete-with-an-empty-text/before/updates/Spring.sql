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
  (10, 'QuillBase', 'Parts', 'Parts', 1, 0, 0);

CREATE TABLE Parts (
  [Code] TEXT(10));
INSERT INTO Parts VALUES
  (''),
  ('A');
