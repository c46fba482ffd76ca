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
  (1, 'Parts', 'Id', 'PrimaryKey');

CREATE TABLE Parts (
  [Id] LONG NOT NULL PRIMARY KEY,
  [Name] TEXT(30));
INSERT INTO Parts VALUES
  (1, 'old');
