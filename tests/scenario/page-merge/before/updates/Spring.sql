CREATE TABLE KFVersion ([Attribute] TEXT(50) NOT NULL, [Value] TEXT(50) NOT NULL);
INSERT INTO KFVersion VALUES ('MajorNumber', '10');
INSERT INTO KFVersion VALUES ('MinorNumber', '1');
INSERT INTO KFVersion VALUES ('CommSPNumber', '0');
INSERT INTO KFVersion VALUES ('BuildNumber', '640');
INSERT INTO KFVersion VALUES ('CommMajorVersion', '2010');
INSERT INTO KFVersion VALUES ('CommMinorVersion', '1');

CREATE TABLE Info ([Name] TEXT(50) NOT NULL, [Value] MEMO NOT NULL, [Type] TEXT(255) NOT NULL);
INSERT INTO Info VALUES ('Bolts', 'Name;NameFR;NameNL;NameDE', 'LanguageDependent');

CREATE TABLE UpdateTable (
  [ID] LONG NOT NULL,
  [TargetDatabase] TEXT(49) NOT NULL,
  [SourceTable] TEXT(49) NOT NULL,
  [TargetTable] TEXT(49) NOT NULL,
  [DeleteRows] BIT NOT NULL,
  [Recreate] BIT NOT NULL,
  [CreateIfMissing] BIT NOT NULL,
  PRIMARY KEY ([ID]));
INSERT INTO UpdateTable VALUES (10, 'QuillDetails', 'Bolts', 'Bolts', 0, 0, 0);

CREATE TABLE Bolts (
  [Code] TEXT(20) NOT NULL,
  [Name] TEXT(80) NOT NULL,
  [NameFR] TEXT(80) NOT NULL,
  [NameNL] TEXT(80) NOT NULL,
  [NameDE] TEXT(80) NOT NULL,
  [Diameter] DOUBLE NOT NULL,
  PRIMARY KEY ([Code]));
INSERT INTO Bolts VALUES ('M16', 'Bolt M16', 'Boulon M16', 'Bout M16', 'Sechskantschraube M16', 16.0);
INSERT INTO Bolts VALUES ('M24', 'Bolt M24', 'Boulon M24', 'Bout M24', '', 24.0);
