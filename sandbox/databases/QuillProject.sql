-- What a new project starts with.

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

CREATE TABLE KFProjectsVersion (
  [Attribute] TEXT(255) NOT NULL,
  [Value] TEXT(255) NOT NULL,
  PRIMARY KEY ([Attribute]));
INSERT INTO KFProjectsVersion VALUES ('SteelGrades', '2');
INSERT INTO KFProjectsVersion VALUES ('BoltSets', '2');

CREATE TABLE Info (
  [Name] TEXT(50) NOT NULL,
  [Value] MEMO NOT NULL,
  [Type] TEXT(255) NOT NULL);

CREATE TABLE InfoTableRelations (
  [ID] LONG NOT NULL,
  [TableName] TEXT(50) NOT NULL,
  [ColumnName] TEXT(50) NOT NULL,
  [TypeProperty] TEXT(50) NOT NULL,
  PRIMARY KEY ([ID]));
INSERT INTO InfoTableRelations VALUES (1, 'ProjectDefaults', 'DefaultName', 'PrimaryKey');

CREATE TABLE ProjectDefaults (
  [DefaultName] TEXT(60) NOT NULL,
  [DefaultValue] TEXT(255) NOT NULL,
  PRIMARY KEY ([DefaultName]));
INSERT INTO ProjectDefaults VALUES ('Material', 'S235JR');
INSERT INTO ProjectDefaults VALUES ('BoltGrade', '8.8');
INSERT INTO ProjectDefaults VALUES ('Standard', 'DIN 18800');
