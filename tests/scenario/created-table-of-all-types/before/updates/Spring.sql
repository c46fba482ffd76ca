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
  (10, 'QuillBase', 'Parts', 'Parts', 0, 0, 1);

CREATE TABLE Parts (
  [Id] LONG NOT NULL,
  [Text] TEXT(20),
  [Memo] MEMO NOT NULL,
  [Flag] BIT,
  [Byte] BYTE,
  [Short] SMALLINT,
  [Real] REAL,
  [Double] DOUBLE,
  [Numeric] NUMERIC(10,2),
  [Money] CURRENCY,
  [Decimal] DECIMAL(10,2),
  [Date] DATETIME);
INSERT INTO Parts VALUES
  (1, 'text', 'memo', 1, 2, 3, 1.5, 2.5, 3.25, 4.75, 5.5, '2010-03-31');
