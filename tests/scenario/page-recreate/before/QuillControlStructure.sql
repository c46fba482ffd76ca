CREATE TABLE KFVersion ([Attribute] TEXT(50) NOT NULL, [Value] TEXT(50) NOT NULL);
INSERT INTO KFVersion VALUES ('MajorNumber', '10');
INSERT INTO KFVersion VALUES ('MinorNumber', '0');
INSERT INTO KFVersion VALUES ('CommSPNumber', '0');
INSERT INTO KFVersion VALUES ('BuildNumber', '512');
INSERT INTO KFVersion VALUES ('CommMajorVersion', '2010');
INSERT INTO KFVersion VALUES ('CommMinorVersion', '0');

CREATE TABLE InfoTableRelations (
  [ID] LONG NOT NULL,
  [TableName] TEXT(50) NOT NULL,
  [ColumnName] TEXT(50) NOT NULL,
  [TypeProperty] TEXT(50) NOT NULL,
  PRIMARY KEY ([ID]));
INSERT INTO InfoTableRelations VALUES (1, 'Menus', 'MenuId', 'PrimaryKey');
INSERT INTO InfoTableRelations VALUES (2, 'RecentFiles', 'Place', 'PrimaryKey');
INSERT INTO InfoTableRelations VALUES (3, 'Toolbars', 'BarId', 'PrimaryKey');

CREATE TABLE Menus ([MenuId] LONG NOT NULL, [Command] TEXT(60) NOT NULL, PRIMARY KEY ([MenuId]));
INSERT INTO Menus VALUES (1, 'KF_FILE');
INSERT INTO Menus VALUES (23, 'KF_OLDBOLT');

CREATE TABLE RecentFiles ([Place] LONG NOT NULL, [Path] TEXT(255), PRIMARY KEY ([Place]));
INSERT INTO RecentFiles VALUES (1, 'C:\Drawings\Bridge.dwg');

CREATE TABLE Toolbars ([BarId] LONG NOT NULL, [Title] TEXT(60), PRIMARY KEY ([BarId]));
INSERT INTO Toolbars VALUES (1, 'My own bar');
