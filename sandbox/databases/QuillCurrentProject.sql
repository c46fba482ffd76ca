-- The model that the user works on: <data folder>\Kernel\Data\model.mdb.

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
INSERT INTO KFProjectsVersion VALUES ('SteelGrades', '3');
INSERT INTO KFProjectsVersion VALUES ('BoltSets', '2');
INSERT INTO KFProjectsVersion VALUES ('WeldClasses', '1');

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
INSERT INTO InfoTableRelations VALUES (1, 'ModelSettings', 'SettingName', 'PrimaryKey');
INSERT INTO InfoTableRelations VALUES (2, 'Members', 'MemberId', 'PrimaryKey');

CREATE TABLE ModelSettings (
  [SettingName] TEXT(60) NOT NULL,
  [SettingValue] TEXT(255) NOT NULL,
  PRIMARY KEY ([SettingName]));
INSERT INTO ModelSettings VALUES ('Title', 'Brücke Süd');
INSERT INTO ModelSettings VALUES ('Standard', 'DIN 18800');

CREATE TABLE Members (
  [MemberId] LONG NOT NULL,
  [Section] TEXT(20) NOT NULL,
  [Material] TEXT(30) NOT NULL,
  [Length] DOUBLE NOT NULL,
  PRIMARY KEY ([MemberId]));
INSERT INTO Members VALUES (1, 'HEA200', 'S235JR', 4200.0);
INSERT INTO Members VALUES (2, 'HEA200', 'S235JR', 4200.0);
INSERT INTO Members VALUES (3, 'IPE240', 'S355J2', 6000.0);
INSERT INTO Members VALUES (4, 'L80X8', 'S235JR', 1870.5);
