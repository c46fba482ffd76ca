CREATE TABLE KFVersion ([Attribute] TEXT(50) NOT NULL, [Value] TEXT(50) NOT NULL);
INSERT INTO KFVersion VALUES ('MajorNumber', '10');
INSERT INTO KFVersion VALUES ('MinorNumber', '1');
INSERT INTO KFVersion VALUES ('CommSPNumber', '0');
INSERT INTO KFVersion VALUES ('BuildNumber', '640');
INSERT INTO KFVersion VALUES ('CommMajorVersion', '2010');
INSERT INTO KFVersion VALUES ('CommMinorVersion', '1');

CREATE TABLE UpdateTable (
  [ID] LONG NOT NULL,
  [TargetDatabase] TEXT(49) NOT NULL,
  [SourceTable] TEXT(49) NOT NULL,
  [TargetTable] TEXT(49) NOT NULL,
  [DeleteRows] BIT NOT NULL,
  [Recreate] BIT NOT NULL,
  [CreateIfMissing] BIT NOT NULL,
  PRIMARY KEY ([ID]));
INSERT INTO UpdateTable VALUES (10, 'QuillAddition', 'Additions', 'Additions', 0, 0, 0);

CREATE TABLE Additions (
  [Code] TEXT(20) NOT NULL,
  [Description] TEXT(80) NOT NULL,
  [Mass] DOUBLE,
  [Remark] TEXT(40));
INSERT INTO Additions VALUES ('ANK-16', 'Anchor rod M16', 0.79, 'galvanised');
INSERT INTO Additions VALUES ('ANK-20', 'Anchor rod M20', NULL, NULL);
INSERT INTO Additions VALUES ('ANK-24', 'Anchor rod M24', 1.78, '');
INSERT INTO Additions VALUES ('ANK-30', '', 2.80, 'black');
INSERT INTO Additions VALUES ('ANK-36', 'Anchor rod M36', 4.10, 'black');
