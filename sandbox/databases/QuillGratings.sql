-- Gratings for walkways.

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

CREATE TABLE InfoTableRelations (
  [ID] LONG NOT NULL,
  [TableName] TEXT(50) NOT NULL,
  [ColumnName] TEXT(50) NOT NULL,
  [TypeProperty] TEXT(50) NOT NULL,
  PRIMARY KEY ([ID]));
INSERT INTO InfoTableRelations VALUES (1, 'Gratings', 'Code', 'PrimaryKey');

CREATE TABLE Gratings (
  [Code] TEXT(20) NOT NULL,
  [Mesh] TEXT(20) NOT NULL,
  [BearingBar] TEXT(20) NOT NULL,
  [Mass] DOUBLE NOT NULL,
  PRIMARY KEY ([Code]));
INSERT INTO Gratings VALUES ('SP-30/2', '34x38', '30x2', 21.5);
INSERT INTO Gratings VALUES ('SP-30/3', '34x38', '30x3', 30.1);
INSERT INTO Gratings VALUES ('P-30/2', '33x33', '30x2', 22.9);
INSERT INTO Gratings VALUES ('OLD-25/2', '40x40', '25x2', 17.2);
