-- Sections. This database keeps the names of all languages beside each other.

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
INSERT INTO Info VALUES ('Sections',
  'Name;NameFR;NameNL;NameDE;NameEN;NameEN;NameEN;NameEN;NameFR;NameEN;NameEN;NameEN;NameEN;NameEN;NameEN;NameEN;NameEN;NameEN;NameEN;NameEN;NameEN;NameEN',
  'LanguageDependent');

CREATE TABLE InfoTableRelations (
  [ID] LONG NOT NULL,
  [TableName] TEXT(50) NOT NULL,
  [ColumnName] TEXT(50) NOT NULL,
  [TypeProperty] TEXT(50) NOT NULL,
  PRIMARY KEY ([ID]));
INSERT INTO InfoTableRelations VALUES (1, 'Sections', 'Code', 'PrimaryKey');

CREATE TABLE Sections (
  [Code] TEXT(20) NOT NULL,
  [Name] TEXT(60) NOT NULL,
  [NameFR] TEXT(60) NOT NULL,
  [NameNL] TEXT(60) NOT NULL,
  [NameDE] TEXT(60) NOT NULL,
  [NameEN] TEXT(60) NOT NULL,
  [Height] DOUBLE NOT NULL,
  [Width] DOUBLE NOT NULL,
  [Mass] DOUBLE NOT NULL,
  PRIMARY KEY ([Code]));
INSERT INTO Sections VALUES ('HEA200', 'HEA 200', 'HEA 200', 'HE 200 A', 'HEA 200', 'HE 200 A',
  190.0, 200.0, 42.3);
INSERT INTO Sections VALUES ('IPE200', 'IPE 200', 'IPE 200', 'IPE 200', 'IPE 200', 'IPE 200', 200.0,
  100.0, 22.4);
INSERT INTO Sections VALUES ('IPE240', 'IPE 240', 'IPE 240', 'IPE 240', 'IPE 240', 'IPE 240', 240.0,
  120.0, 30.7);
INSERT INTO Sections VALUES ('L80X8', 'L 80x8', 'Cornière 80x8', 'Hoekstaal 80x8', 'Winkel 80x8',
  'Angle 80x8', 80.0, 80.0, 9.66);
INSERT INTO Sections VALUES ('U160', 'U 160', 'UPN 160', 'UNP 160', 'U 160', 'Channel 160', 160.0,
  65.0, 18.8);
