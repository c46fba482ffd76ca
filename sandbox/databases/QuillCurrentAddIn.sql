-- Parts of other makers that the user has switched on.

CREATE TABLE KFVersion (
  [Attribute] TEXT(50) NOT NULL,
  [Value] TEXT(50) NOT NULL,
  PRIMARY KEY ([Attribute]));
INSERT INTO KFVersion VALUES ('MajorNumber', '10');
INSERT INTO KFVersion VALUES ('MinorNumber', '0');
INSERT INTO KFVersion VALUES ('CommMajorVersion', '2010');
INSERT INTO KFVersion VALUES ('CommMinorVersion', '0');
INSERT INTO KFVersion VALUES ('CommSPNumber', '0');
INSERT INTO KFVersion VALUES ('BuildNumber', '512');

CREATE TABLE InfoTableRelations (
  [ID] LONG NOT NULL,
  [TableName] TEXT(50) NOT NULL,
  [ColumnName] TEXT(50) NOT NULL,
  [TypeProperty] TEXT(50) NOT NULL,
  PRIMARY KEY ([ID]));
INSERT INTO InfoTableRelations VALUES (1, 'AddIns', 'AddInName', 'PrimaryKey');

CREATE TABLE AddIns (
  [AddInName] TEXT(60) NOT NULL,
  [Maker] TEXT(60) NOT NULL,
  [Enabled] BIT NOT NULL,
  PRIMARY KEY ([AddInName]));
INSERT INTO AddIns VALUES ('Stairs', 'Norvane', 1);
INSERT INTO AddIns VALUES ('Handrails', 'Norvane', 0);
