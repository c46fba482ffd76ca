-- Bolts and welds, with names in the language of the installation.

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
INSERT INTO InfoTableRelations VALUES (1, 'Bolts', 'Code', 'PrimaryKey');
INSERT INTO InfoTableRelations VALUES (2, 'Welds', 'WeldType', 'PrimaryKey');
INSERT INTO InfoTableRelations VALUES (3, 'Welds', 'Thickness', 'Unique');

CREATE TABLE Bolts (
  [Code] TEXT(20) NOT NULL,
  [Name] TEXT(80) NOT NULL,
  [Diameter] DOUBLE NOT NULL,
  [Grade] TEXT(10) NOT NULL,
  [Standard] TEXT(30) NOT NULL,
  [Preloaded] BIT NOT NULL,
  PRIMARY KEY ([Code]));
INSERT INTO Bolts VALUES ('M12-8.8', 'Sechskantschraube M12', 12.0, '8.8', 'DIN 7990', 0);
INSERT INTO Bolts VALUES ('M16-8.8', 'Sechskantschraube M16', 16.0, '8.8', 'DIN 7990', 0);
INSERT INTO Bolts VALUES ('M16-10.9', 'HV-Schraube M16', 16.0, '10.9', 'DIN 6914', 1);
INSERT INTO Bolts VALUES ('M20-10.9', 'HV-Schraube M20', 20.0, '10.9', 'DIN 6914', 1);
INSERT INTO Bolts VALUES ('W3/4-A325', 'Schraube 3/4 inch', 19.05, 'A325', 'ASTM A325', 1);

CREATE TABLE Welds (
  [WeldType] TEXT(20) NOT NULL,
  [Thickness] DOUBLE NOT NULL,
  [Symbol] TEXT(10) NOT NULL,
  PRIMARY KEY ([WeldType], [Thickness]));
INSERT INTO Welds VALUES ('Kehlnaht', 4.0, 'a4');
INSERT INTO Welds VALUES ('Kehlnaht', 6.0, 'a6');
INSERT INTO Welds VALUES ('HV-Naht', 10.0, 'HV10');
