-- The pictures beside the menus.

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
INSERT INTO InfoTableRelations VALUES (1, 'Bitmaps', 'Command', 'PrimaryKey');

CREATE TABLE Bitmaps (
  [Command] TEXT(60) NOT NULL,
  [FileName] TEXT(255) NOT NULL,
  [Width] SMALLINT NOT NULL,
  [Height] SMALLINT NOT NULL,
  PRIMARY KEY ([Command]));
INSERT INTO Bitmaps VALUES ('KF_BEAM', 'beam.bmp', 32, 32);
INSERT INTO Bitmaps VALUES ('KF_PLATE', 'plate.bmp', 32, 32);
INSERT INTO Bitmaps VALUES ('KF_FILE', 'file.bmp', 16, 16);
