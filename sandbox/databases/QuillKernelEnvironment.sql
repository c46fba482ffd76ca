-- Folders and switches of the drawing kernel.

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
INSERT INTO InfoTableRelations VALUES (1, 'Environment', 'VariableName', 'PrimaryKey');

CREATE TABLE Environment (
  [VariableName] TEXT(60) NOT NULL,
  [VariableValue] TEXT(255) NOT NULL,
  PRIMARY KEY ([VariableName]));
INSERT INTO Environment VALUES ('KernelCache', '64');
INSERT INTO Environment VALUES ('KernelTolerance', '0.001');

-- Nothing tells a key for this one.
CREATE TABLE SearchFolders (
  [Purpose] TEXT(30) NOT NULL,
  [Folder] TEXT(255) NOT NULL,
  [Depth] SMALLINT NOT NULL);
INSERT INTO SearchFolders VALUES ('Blocks', 'C:\Drawings\Blocks', 2);
INSERT INTO SearchFolders VALUES ('Blocks', 'C:\Old\Blocks', 2);
INSERT INTO SearchFolders VALUES ('Fonts', 'C:\Old\Fonts', 0);
