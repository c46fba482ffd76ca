CREATE TABLE KFVersion ([Attribute] TEXT(50) NOT NULL, [Value] TEXT(50) NOT NULL);
INSERT INTO KFVersion VALUES ('MajorNumber', '10');
INSERT INTO KFVersion VALUES ('MinorNumber', '1');
INSERT INTO KFVersion VALUES ('CommSPNumber', '0');
INSERT INTO KFVersion VALUES ('BuildNumber', '640');
INSERT INTO KFVersion VALUES ('CommMajorVersion', '2010');
INSERT INTO KFVersion VALUES ('CommMinorVersion', '1');

CREATE TABLE UpdateTable (
  [ID] LONG NOT NULL,
  [TargetDatabase] TEXT(49) NOT NULL,
  [SourceTable] TEXT(49) NOT NULL,
  [TargetTable] TEXT(49) NOT NULL,
  [DeleteRows] BIT NOT NULL,
  [Recreate] BIT NOT NULL,
  [CreateIfMissing] BIT NOT NULL,
  PRIMARY KEY ([ID]));
INSERT INTO UpdateTable VALUES (10, 'QuillJointsCalculation', 'JointMethods', 'JointMethods', 0, 0, 1);
INSERT INTO UpdateTable VALUES (20, 'QuillJointsCalculation', 'JointRelations', 'InfoTableRelations', 0, 0, 0);

CREATE TABLE JointMethods (
  [MethodId] LONG NOT NULL,
  [Name] TEXT(60) NOT NULL,
  [Price] CURRENCY NOT NULL,
  [Since] DATE NOT NULL,
  [Note] MEMO,
  PRIMARY KEY ([MethodId]));
INSERT INTO JointMethods VALUES (1, 'Maker''s tables', 12.5, '2010-07-01 14:30:00', '');
INSERT INTO JointMethods VALUES (2, 'Component method', 80, '2003-10-31', 'EN 1993-1-8');

CREATE TABLE JointRelations (
  [ID] LONG NOT NULL,
  [TableName] TEXT(50) NOT NULL,
  [ColumnName] TEXT(50) NOT NULL,
  [TypeProperty] TEXT(50) NOT NULL,
  PRIMARY KEY ([ID]));
INSERT INTO JointRelations VALUES (2, 'JointMethods', 'MethodId', 'PrimaryKey');
