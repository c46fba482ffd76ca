-- The menus of the add-on.

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
INSERT INTO InfoTableRelations VALUES (1, 'Menus', 'MenuId', 'PrimaryKey');

CREATE TABLE Menus (
  [MenuId] LONG NOT NULL,
  [ParentId] LONG NOT NULL,
  [Place] SMALLINT NOT NULL,
  [Command] TEXT(60) NOT NULL,
  PRIMARY KEY ([MenuId]));
INSERT INTO Menus VALUES (1, 0, 1, 'KF_FILE');
INSERT INTO Menus VALUES (2, 0, 2, 'KF_DRAW');
INSERT INTO Menus VALUES (21, 2, 1, 'KF_BEAM');
INSERT INTO Menus VALUES (22, 2, 2, 'KF_PLATE');
INSERT INTO Menus VALUES (23, 2, 3, 'KF_OLDBOLT');
