CREATE TABLE KFVersion (
  [Attribute] TEXT(50) NOT NULL PRIMARY KEY,
  [Value] TEXT(50) NOT NULL);
INSERT INTO KFVersion VALUES
  ('MajorNumber', '1'), ('MinorNumber', '0'), ('CommSPNumber', '0'),
  ('BuildNumber', '0'), ('CommMajorVersion', '2010'), ('CommMinorVersion', '0');

CREATE TABLE InfoTableRelations (
  [ID] LONG NOT NULL PRIMARY KEY,
  [TableName] TEXT(50) NOT NULL,
  [ColumnName] TEXT(50) NOT NULL,
  [TypeProperty] TEXT(50) NOT NULL);
INSERT INTO InfoTableRelations VALUES
  (1, 'Parts', 'C', 'Unique'),
  (2, 'Parts', 'B', 'primarykey'),
  (3, 'Parts', 'A', 'PrimaryKey');

CREATE TABLE Parts (
  [A] LONG NOT NULL,
  [B] LONG NOT NULL,
  [Name] TEXT(30),
  [C] LONG NOT NULL);
INSERT INTO Parts VALUES
  (1, 2, 'old', 3),
  (1, 2, 'old', 4);
