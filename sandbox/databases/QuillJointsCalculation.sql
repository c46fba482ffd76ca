-- Coefficients for the calculation of joints.

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
INSERT INTO InfoTableRelations VALUES (1, 'Joints', 'JointId', 'PrimaryKey');

CREATE TABLE Joints (
  [JointId] LONG NOT NULL,
  [Name] TEXT(60) NOT NULL,
  [Stiffness] REAL NOT NULL,
  [Note] MEMO NOT NULL,
  PRIMARY KEY ([JointId]));
INSERT INTO Joints VALUES (1, 'Kopfplatte, bündig', 1.5, 'nach DIN 18800');
INSERT INTO Joints VALUES (2, 'Kopfplatte, überstehend', 2.25, 'nach DIN 18800');
INSERT INTO Joints VALUES (3, 'Doppelwinkel', 0.5, 'gelenkig');
