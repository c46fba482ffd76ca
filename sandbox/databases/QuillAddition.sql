-- Small parts that are added to a structure by hand.

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
INSERT INTO InfoTableRelations VALUES (1, 'Additions', 'Code', 'PrimaryKey');

CREATE TABLE Additions (
  [Code] TEXT(20) NOT NULL,
  [Description] TEXT(80) NOT NULL,
  [Mass] DOUBLE NOT NULL,
  [Stocked] BIT NOT NULL,
  PRIMARY KEY ([Code]));
INSERT INTO Additions VALUES ('ANK-16', 'Ankerstange M16', 0.79, 1);
INSERT INTO Additions VALUES ('ANK-20', 'Ankerstange M20', 1.24, 1);
INSERT INTO Additions VALUES ('FUT-5', 'Futterblech 5 mm', 0.39, 1);
INSERT INTO Additions VALUES ('KEIL-8', 'Keilscheibe 8 %', 0.06, 0);
