-- What users can set, and the words shown for it.

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
INSERT INTO InfoTableRelations VALUES (1, 'Settings', 'SettingName', 'PrimaryKey');
INSERT INTO InfoTableRelations VALUES (2, 'SettingTexts', 'SettingName', 'PrimaryKey');

CREATE TABLE Settings (
  [SettingName] TEXT(60) NOT NULL,
  [SettingValue] TEXT(255) NOT NULL,
  [Kind] BYTE NOT NULL,
  PRIMARY KEY ([SettingName]));
INSERT INTO Settings VALUES ('Drawing.Scale', '20', 1);
INSERT INTO Settings VALUES ('Drawing.ShowBolts', '1', 2);
INSERT INTO Settings VALUES ('Export.Folder', 'C:\Drawings\Export', 3);
INSERT INTO Settings VALUES ('Units.Length', 'mm', 3);

CREATE TABLE SettingTexts (
  [SettingName] TEXT(60) NOT NULL,
  [Caption] TEXT(120) NOT NULL,
  PRIMARY KEY ([SettingName]));
INSERT INTO SettingTexts VALUES ('Drawing.Scale', 'Maßstab');
INSERT INTO SettingTexts VALUES ('Drawing.ShowBolts', 'Schrauben zeigen');
INSERT INTO SettingTexts VALUES ('Export.Folder', 'Ordner für die Ausgabe');
INSERT INTO SettingTexts VALUES ('Units.Length', 'Längeneinheit');
