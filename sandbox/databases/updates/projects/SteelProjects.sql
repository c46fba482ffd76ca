-- A patch for projects. What makes it newer than a database stands in KFProjectsVersion.

CREATE TABLE KFVersion (
  [Attribute] TEXT(50) NOT NULL,
  [Value] TEXT(50) NOT NULL,
  PRIMARY KEY ([Attribute]));
INSERT INTO KFVersion VALUES ('MajorNumber', '10');
INSERT INTO KFVersion VALUES ('MinorNumber', '0');
INSERT INTO KFVersion VALUES ('CommMajorVersion', '2010');
INSERT INTO KFVersion VALUES ('CommMinorVersion', '0');
INSERT INTO KFVersion VALUES ('CommSPNumber', '0');
INSERT INTO KFVersion VALUES ('BuildNumber', '600');

CREATE TABLE KFProjectsVersion (
  [Attribute] TEXT(255) NOT NULL,
  [Value] TEXT(255) NOT NULL,
  PRIMARY KEY ([Attribute]));
INSERT INTO KFProjectsVersion VALUES ('SteelGrades', '3');
INSERT INTO KFProjectsVersion VALUES ('BoltSets', '2');
INSERT INTO KFProjectsVersion VALUES ('WeldClasses', '1');

CREATE TABLE Info (
  [Name] TEXT(50) NOT NULL,
  [Value] MEMO NOT NULL,
  [Type] TEXT(255) NOT NULL);

CREATE TABLE UpdateTable (
  [ID] LONG NOT NULL,
  [TargetDatabase] TEXT(49) NOT NULL,
  [SourceTable] TEXT(49) NOT NULL,
  [TargetTable] TEXT(49) NOT NULL,
  [DeleteRows] BIT NOT NULL,
  [Recreate] BIT NOT NULL,
  [CreateIfMissing] BIT NOT NULL,
  [Remark] TEXT(255) NOT NULL,
  PRIMARY KEY ([ID]));
INSERT INTO UpdateTable VALUES (10, 'QuillProject', 'ProjectDefaults', 'ProjectDefaults', 0, 0, 0,
  'merge by DefaultName');
INSERT INTO UpdateTable VALUES (20, 'QuillProjectStandards', 'Standards', 'Standards', 0, 0, 0,
  'merge by Code');
INSERT INTO UpdateTable VALUES (30, 'QuillCurrentProject', 'ModelSettings', 'ModelSettings', 0, 0,
  0, 'for models older than grades 3');

CREATE TABLE ProjectDefaults (
  [DefaultName] TEXT(60) NOT NULL,
  [DefaultValue] TEXT(255) NOT NULL,
  PRIMARY KEY ([DefaultName]));
INSERT INTO ProjectDefaults VALUES ('Material', 'S355J2');
INSERT INTO ProjectDefaults VALUES ('Coating', 'C3 mittel');

CREATE TABLE Standards (
  [Code] TEXT(30) NOT NULL,
  [Title] TEXT(120) NOT NULL,
  [Withdrawn] BIT NOT NULL,
  PRIMARY KEY ([Code]));
INSERT INTO Standards VALUES ('DIN 18800', 'Stahlbauten', 1);
INSERT INTO Standards VALUES ('EN 1090-2', 'Ausführung von Stahltragwerken', 0);

CREATE TABLE ModelSettings (
  [SettingName] TEXT(60) NOT NULL,
  [SettingValue] TEXT(255) NOT NULL,
  PRIMARY KEY ([SettingName]));
INSERT INTO ModelSettings VALUES ('Standard', 'EN 1993');
