-- Parts of other makers that the user has switched on. They have replaced it by one of their own,
-- which is newer than any update.

CREATE TABLE KFVersion (
  [Attribute] TEXT(50) NOT NULL,
  [Value] TEXT(50) NOT NULL,
  PRIMARY KEY ([Attribute]));
INSERT INTO KFVersion VALUES ('MajorNumber', '10');
INSERT INTO KFVersion VALUES ('MinorNumber', '2');
INSERT INTO KFVersion VALUES ('CommMajorVersion', '2010');
INSERT INTO KFVersion VALUES ('CommMinorVersion', '2');
INSERT INTO KFVersion VALUES ('CommSPNumber', '0');
INSERT INTO KFVersion VALUES ('BuildNumber', '710');

CREATE TABLE KFProjectsVersion (
  [Attribute] TEXT(255) NOT NULL,
  [Value] TEXT(255) NOT NULL,
  PRIMARY KEY ([Attribute]));
INSERT INTO KFProjectsVersion VALUES ('SteelGrades', '3');
INSERT INTO KFProjectsVersion VALUES ('BoltSets', '2');
INSERT INTO KFProjectsVersion VALUES ('WeldClasses', '1');

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
