CREATE TABLE KFVersion (
  [Attribute] TEXT(50) NOT NULL PRIMARY KEY,
  [Value] TEXT(50) NOT NULL);
INSERT INTO KFVersion VALUES
  ('MajorNumber', '1'), ('MinorNumber', '1'), ('CommSPNumber', '0'),
  ('BuildNumber', '0'), ('CommMajorVersion', '2010'), ('CommMinorVersion', '1');

CREATE TABLE Info (
  [Name] TEXT(50) NOT NULL,
  [Value] MEMO NOT NULL,
  [Type] TEXT(255) NOT NULL);
INSERT INTO Info VALUES
  ('Texts', 'Texts;TextsFr;TextsFr;TextsFr;TextsNl;TextsFr;TextsFr;TextsFr;TextsFr;TextsFr;TextsDe', 'LanguageDependentTables');

CREATE TABLE UpdateTable (
  [ID] LONG NOT NULL PRIMARY KEY,
  [TargetDatabase] TEXT(49),
  [SourceTable] TEXT(49),
  [TargetTable] TEXT(49),
  [DeleteRows] BIT NOT NULL,
  [Recreate] BIT NOT NULL,
  [CreateIfMissing] BIT NOT NULL);
INSERT INTO UpdateTable VALUES
  (10, 'QuillBase', 'Texts', 'Texts', 0, 0, 0);

CREATE TABLE Texts (
  [Id] LONG NOT NULL,
  [Name] TEXT(30));
INSERT INTO Texts VALUES
  (1, 'base');

CREATE TABLE TextsFr (
  [Id] LONG NOT NULL,
  [Name] TEXT(30));
INSERT INTO TextsFr VALUES
  (1, 'Boulon');

CREATE TABLE TextsNl (
  [Id] LONG NOT NULL,
  [Name] TEXT(30));
INSERT INTO TextsNl VALUES
  (1, 'Bout');

CREATE TABLE TextsDe (
  [Id] LONG NOT NULL,
  [Name] TEXT(30));
INSERT INTO TextsDe VALUES
  (1, 'Schraube');
