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
  (10, 'QuillBase', 'A', 'InfoTableRelations', 0, 0, 0),
  (20, 'QuillBase', 'B', 'InfoTableRelations', 0, 0, 0),
  (30, 'QuillBase', 'C', 'InfoTableRelations', 0, 0, 0);

CREATE TABLE A (
  [ID] LONG NOT NULL,
  [TableName] TEXT(50),
  [ColumnName] TEXT(50),
  [TypeProperty] TEXT(50));
INSERT INTO A VALUES
  (1, 'A', 'Id', 'Unique');

CREATE TABLE B (
  [ID] LONG NOT NULL,
  [TableName] TEXT(50),
  [ColumnName] TEXT(50),
  [TypeProperty] TEXT(50));
INSERT INTO B VALUES
  (2, 'B', 'Id', 'Unique');

CREATE TABLE C (
  [ID] LONG NOT NULL,
  [TableName] TEXT(50),
  [ColumnName] TEXT(50),
  [TypeProperty] TEXT(50));
INSERT INTO C VALUES
  (3, 'C', 'Id', 'Unique');
