CREATE TABLE KFVersion ([Attribute] TEXT(50) NOT NULL, [Value] TEXT(50) NOT NULL);
INSERT INTO KFVersion VALUES ('MajorNumber', '10');
INSERT INTO KFVersion VALUES ('MinorNumber', '1');
INSERT INTO KFVersion VALUES ('CommSPNumber', '0');
INSERT INTO KFVersion VALUES ('BuildNumber', '640');
INSERT INTO KFVersion VALUES ('CommMajorVersion', '2010');
INSERT INTO KFVersion VALUES ('CommMinorVersion', '1');

CREATE TABLE Info ([Name] TEXT(50) NOT NULL, [Value] MEMO NOT NULL, [Type] TEXT(255) NOT NULL);
INSERT INTO Info VALUES ('SettingTexts', 'SettingTexts;SettingTextsFR;SettingTextsNL',
  'LanguageDependentTables');
INSERT INTO Info VALUES ('MenuTexts', 'MenuTexts;MenuTextsFR', 'LanguageDependentTables');

CREATE TABLE UpdateTable (
  [ID] LONG NOT NULL,
  [TargetDatabase] TEXT(49) NOT NULL,
  [SourceTable] TEXT(49) NOT NULL,
  [TargetTable] TEXT(49) NOT NULL,
  [DeleteRows] BIT NOT NULL,
  [Recreate] BIT NOT NULL,
  [CreateIfMissing] BIT NOT NULL,
  PRIMARY KEY ([ID]));
INSERT INTO UpdateTable VALUES (10, 'QuillSettings', 'SettingTexts', 'SettingTexts', 0, 0, 0);
INSERT INTO UpdateTable VALUES (20, 'QuillSettings', 'MenuTexts', 'MenuTexts', 0, 0, 0);
INSERT INTO UpdateTable VALUES (30, 'QuillSettings', 'NewUnits*', 'Units', 0, 0, 0);

CREATE TABLE SettingTextsFR ([Name] TEXT(60) NOT NULL, [Caption] TEXT(120) NOT NULL);
INSERT INTO SettingTextsFR VALUES ('Scale', 'Échelle du dessin');

CREATE TABLE SettingTextsNL ([Name] TEXT(60) NOT NULL, [Caption] TEXT(120) NOT NULL);
INSERT INTO SettingTextsNL VALUES ('Scale', 'Schaal van de tekening');

CREATE TABLE MenuTextsFR ([Name] TEXT(60) NOT NULL, [Caption] TEXT(120) NOT NULL);
INSERT INTO MenuTextsFR VALUES ('File', 'Fichier');

CREATE TABLE NewUnitsLength ([Name] TEXT(60) NOT NULL, [Factor] DOUBLE NOT NULL);
INSERT INTO NewUnitsLength VALUES ('inch', 0.0254);

CREATE TABLE NewUnitsForce ([Name] TEXT(60) NOT NULL, [Factor] DOUBLE NOT NULL);
INSERT INTO NewUnitsForce VALUES ('kip', 4448.2216);
