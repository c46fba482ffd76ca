CREATE TABLE KFProjectsVersion (
  [Attribute] TEXT(255) NOT NULL,
  [Value] TEXT(255) NOT NULL,
  PRIMARY KEY ([Attribute]));
INSERT INTO KFProjectsVersion VALUES ('SteelGrades', '3');
INSERT INTO KFProjectsVersion VALUES ('WeldClasses', '1');

CREATE TABLE UpdateTable (
  [ID] LONG NOT NULL,
  [TargetDatabase] TEXT(49) NOT NULL,
  [SourceTable] TEXT(49) NOT NULL,
  [TargetTable] TEXT(49) NOT NULL,
  [DeleteRows] BIT NOT NULL,
  [Recreate] BIT NOT NULL,
  [CreateIfMissing] BIT NOT NULL,
  PRIMARY KEY ([ID]));
INSERT INTO UpdateTable VALUES (10, 'QuillProject', 'Defaults', 'Defaults', 0, 0, 0);
INSERT INTO UpdateTable VALUES (20, 'QuillCurrentProject', 'Defaults', 'Defaults', 0, 0, 0);

CREATE TABLE Defaults ([Name] TEXT(60) NOT NULL, [Setting] TEXT(255) NOT NULL);
INSERT INTO Defaults VALUES ('Material', 'S355J2');
