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
INSERT INTO UpdateTable VALUES (10, 'QuillControlStructure', 'Menus', 'Menus', 0, 1, 0);
INSERT INTO UpdateTable VALUES (20, 'QuillControlStructure', 'RecentFiles', 'RecentFiles', 0, 1, 1);
INSERT INTO UpdateTable VALUES (30, 'QuillControlStructure', 'Toolbars', 'Toolbars', 0, 0, 1);

CREATE TABLE Menus (
  [MenuId] LONG NOT NULL,
  [Command] TEXT(60) NOT NULL,
  [Shortcut] TEXT(20));
INSERT INTO Menus VALUES (1, 'KF_FILE', 'Alt+F');
INSERT INTO Menus VALUES (24, 'KF_BOLT', 'Ctrl+O');

CREATE TABLE RecentFiles ([Place] LONG NOT NULL, [Path] TEXT(255));
INSERT INTO RecentFiles VALUES (1, 'C:\Samples\Welcome.dwg');

CREATE TABLE Toolbars ([BarId] LONG NOT NULL, [Title] TEXT(60));
INSERT INTO Toolbars VALUES (1, 'Steel');
