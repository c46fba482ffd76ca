-- The update of spring 2010, to 10.1. See docs/patch-tables.md, which walks through it.

CREATE TABLE KFVersion (
  [Attribute] TEXT(50) NOT NULL,
  [Value] TEXT(50) NOT NULL,
  PRIMARY KEY ([Attribute]));
INSERT INTO KFVersion VALUES ('MajorNumber', '10');
INSERT INTO KFVersion VALUES ('MinorNumber', '1');
INSERT INTO KFVersion VALUES ('CommMajorVersion', '2010');
INSERT INTO KFVersion VALUES ('CommMinorVersion', '1');
INSERT INTO KFVersion VALUES ('CommSPNumber', '0');
INSERT INTO KFVersion VALUES ('BuildNumber', '640');

-- Settings come as one table for each language, bolts and materials with one column for each.
CREATE TABLE Info (
  [Name] TEXT(50) NOT NULL,
  [Value] MEMO NOT NULL,
  [Type] TEXT(255) NOT NULL);
INSERT INTO Info VALUES ('SettingTexts',
  'SettingTexts;SettingTextsFR;SettingTextsNL;SettingTextsDE;SettingTextsEN;SettingTextsEN;SettingTextsEN;SettingTextsEN;SettingTextsFR;SettingTextsEN;SettingTextsEN;SettingTextsEN;SettingTextsEN;SettingTextsEN;SettingTextsEN;SettingTextsEN;SettingTextsEN;SettingTextsEN;SettingTextsEN;SettingTextsEN;SettingTextsEN;SettingTextsEN',
  'LanguageDependentTables');
INSERT INTO Info VALUES ('Bolts',
  'Name;NameFR;NameNL;NameDE;NameEN;NameEN;NameEN;NameEN;NameFR;NameEN;NameEN;NameEN;NameEN;NameEN;NameEN;NameEN;NameEN;NameEN;NameEN;NameEN;NameEN;NameEN',
  'LanguageDependent');
INSERT INTO Info VALUES ('Materials',
  'Description;DescriptionFR;DescriptionNL;DescriptionDE;DescriptionEN;DescriptionEN;DescriptionEN;DescriptionEN;DescriptionFR;DescriptionEN;DescriptionEN;DescriptionEN;DescriptionEN;DescriptionEN;DescriptionEN;DescriptionEN;DescriptionEN;DescriptionEN;DescriptionEN;DescriptionEN;DescriptionEN;DescriptionEN',
  'LanguageDependent');

CREATE TABLE UpdateTable (
  [ID] LONG NOT NULL,
  [TargetDatabase] TEXT(49) NOT NULL,
  [SourceTable] TEXT(49) NOT NULL,
  [TargetTable] TEXT(49) NOT NULL,
  [DeleteRows] BIT NOT NULL,
  [Recreate] BIT NOT NULL,
  [CreateIfMissing] BIT NOT NULL,
  [Remark] TEXT(255) NOT NULL,
  PRIMARY KEY ([ID]));
INSERT INTO UpdateTable VALUES (10, 'QuillDetails', 'Bolts', 'Bolts', 0, 0, 0,
  'merge by Code: two rows change, two are new');
INSERT INTO UpdateTable VALUES (20, 'QuillBase', 'Materials', 'Materials', 0, 0, 0,
  'merge by MaterialId, description in the language of the installation');
INSERT INTO UpdateTable VALUES (30, 'QuillGratings', 'WithdrawnGratings', 'Gratings', 1, 0, 0,
  'remove the rows listed, by Code');
INSERT INTO UpdateTable VALUES (40, 'QuillJointsCalculation', 'JointMethods', 'JointMethods', 0, 0,
  1, 'a new table');
INSERT INTO UpdateTable VALUES (50, 'QuillJointsCalculation', 'JointRelations',
  'InfoTableRelations', 0, 0, 0, 'runs first: the key of the new table');
INSERT INTO UpdateTable VALUES (60, 'QuillProfiles2010', 'NewSections*', 'Sections', 0, 0, 0,
  'NewSectionsHE and NewSectionsIPE, one after the other');
INSERT INTO UpdateTable VALUES (70, 'QuillSettings', 'SettingTexts', 'SettingTexts', 0, 0, 0,
  'the table of the language of the installation');

CREATE TABLE Bolts (
  [Code] TEXT(20) NOT NULL,
  [Name] TEXT(80) NOT NULL,
  [NameFR] TEXT(80) NOT NULL,
  [NameNL] TEXT(80) NOT NULL,
  [NameDE] TEXT(80) NOT NULL,
  [NameEN] TEXT(80) NOT NULL,
  [Diameter] DOUBLE NOT NULL,
  [Grade] TEXT(10) NOT NULL,
  [Standard] TEXT(30) NOT NULL,
  [Preloaded] BIT NOT NULL,
  PRIMARY KEY ([Code]));
INSERT INTO Bolts VALUES ('M16-10.9', 'HV M16', 'Boulon HR M16', 'Voorspanbout M16',
  'HV-Schraube M16', 'Preloaded bolt M16', 16.0, '10.9', 'EN 14399-4', 1);
INSERT INTO Bolts VALUES ('M20-10.9', 'HV M20', 'Boulon HR M20', 'Voorspanbout M20',
  'HV-Schraube M20', 'Preloaded bolt M20', 20.0, '10.9', 'EN 14399-4', 1);
INSERT INTO Bolts VALUES ('M24-10.9', 'HV M24', 'Boulon HR M24', 'Voorspanbout M24',
  'HV-Schraube M24', 'Preloaded bolt M24', 24.0, '10.9', 'EN 14399-4', 1);
INSERT INTO Bolts VALUES ('M27-10.9', 'HV M27', 'Boulon HR M27', 'Voorspanbout M27',
  'HV-Schraube M27', 'Preloaded bolt M27', 27.0, '10.9', 'EN 14399-4', 1);

CREATE TABLE Materials (
  [MaterialId] LONG NOT NULL,
  [Name] TEXT(30) NOT NULL,
  [Description] TEXT(100) NOT NULL,
  [DescriptionFR] TEXT(100) NOT NULL,
  [DescriptionNL] TEXT(100) NOT NULL,
  [DescriptionDE] TEXT(100) NOT NULL,
  [DescriptionEN] TEXT(100) NOT NULL,
  [Density] DOUBLE NOT NULL,
  [Yield] DOUBLE NOT NULL,
  PRIMARY KEY ([MaterialId]));
INSERT INTO Materials VALUES (3, 'S355J2+N', 'structural steel', 'Acier de construction, normalisé',
  'Constructiestaal, genormaliseerd', 'Baustahl, normalgeglüht', 'Structural steel, normalised',
  7850.0, 355.0);
INSERT INTO Materials VALUES (4, 'S460M', 'structural steel', 'Acier à grains fins',
  'Fijnkorrelig staal', 'Feinkornbaustahl', 'Fine-grain steel', 7850.0, 460.0);
INSERT INTO Materials VALUES (30, 'C30/37', 'concrete', 'Béton', 'Beton', 'Beton', 'Concrete',
  2400.0, 20.0);

CREATE TABLE WithdrawnGratings (
  [Code] TEXT(20) NOT NULL,
  PRIMARY KEY ([Code]));
INSERT INTO WithdrawnGratings VALUES ('OLD-25/2');
INSERT INTO WithdrawnGratings VALUES ('OLD-25/3');

CREATE TABLE JointMethods (
  [MethodId] LONG NOT NULL,
  [Name] TEXT(60) NOT NULL,
  [Standard] TEXT(30) NOT NULL,
  [Since] DATE NOT NULL,
  PRIMARY KEY ([MethodId]));
INSERT INTO JointMethods VALUES (1, 'Komponentenmethode', 'EN 1993-1-8', '1/7/2010');
INSERT INTO JointMethods VALUES (2, 'Typisierte Anschlüsse', 'DSTV', '1/10/1978');

CREATE TABLE JointRelations (
  [ID] LONG NOT NULL,
  [TableName] TEXT(50) NOT NULL,
  [ColumnName] TEXT(50) NOT NULL,
  [TypeProperty] TEXT(50) NOT NULL,
  PRIMARY KEY ([ID]));
INSERT INTO JointRelations VALUES (2, 'JointMethods', 'MethodId', 'PrimaryKey');

CREATE TABLE NewSectionsHE (
  [Code] TEXT(20) NOT NULL,
  [Name] TEXT(60) NOT NULL,
  [NameFR] TEXT(60) NOT NULL,
  [NameNL] TEXT(60) NOT NULL,
  [NameDE] TEXT(60) NOT NULL,
  [NameEN] TEXT(60) NOT NULL,
  [Height] DOUBLE NOT NULL,
  [Width] DOUBLE NOT NULL,
  [Mass] DOUBLE NOT NULL,
  PRIMARY KEY ([Code]));
INSERT INTO NewSectionsHE VALUES ('HEB200', 'HEB 200', 'HEB 200', 'HE 200 B', 'HEB 200', 'HE 200 B',
  200.0, 200.0, 61.3);
INSERT INTO NewSectionsHE VALUES ('HEM200', 'HEM 200', 'HEM 200', 'HE 200 M', 'HEM 200', 'HE 200 M',
  220.0, 206.0, 103.0);

CREATE TABLE NewSectionsIPE (
  [Code] TEXT(20) NOT NULL,
  [Name] TEXT(60) NOT NULL,
  [NameFR] TEXT(60) NOT NULL,
  [NameNL] TEXT(60) NOT NULL,
  [NameDE] TEXT(60) NOT NULL,
  [NameEN] TEXT(60) NOT NULL,
  [Height] DOUBLE NOT NULL,
  [Width] DOUBLE NOT NULL,
  [Mass] DOUBLE NOT NULL,
  PRIMARY KEY ([Code]));
INSERT INTO NewSectionsIPE VALUES ('IPE240', 'IPE 240', 'IPE 240', 'IPE 240', 'IPE 240', 'IPE 240',
  240.0, 120.0, 30.7);
INSERT INTO NewSectionsIPE VALUES ('IPE270', 'IPE 270', 'IPE 270', 'IPE 270', 'IPE 270', 'IPE 270',
  270.0, 135.0, 36.1);

CREATE TABLE SettingTextsFR (
  [SettingName] TEXT(60) NOT NULL,
  [Caption] TEXT(120) NOT NULL,
  PRIMARY KEY ([SettingName]));
INSERT INTO SettingTextsFR VALUES ('Drawing.Scale', 'Échelle');
INSERT INTO SettingTextsFR VALUES ('Drawing.ShowHoles', 'Montrer les trous');

CREATE TABLE SettingTextsNL (
  [SettingName] TEXT(60) NOT NULL,
  [Caption] TEXT(120) NOT NULL,
  PRIMARY KEY ([SettingName]));
INSERT INTO SettingTextsNL VALUES ('Drawing.Scale', 'Schaal');
INSERT INTO SettingTextsNL VALUES ('Drawing.ShowHoles', 'Gaten tonen');

CREATE TABLE SettingTextsDE (
  [SettingName] TEXT(60) NOT NULL,
  [Caption] TEXT(120) NOT NULL,
  PRIMARY KEY ([SettingName]));
INSERT INTO SettingTextsDE VALUES ('Drawing.Scale', 'Maßstab der Zeichnung');
INSERT INTO SettingTextsDE VALUES ('Drawing.ShowHoles', 'Löcher zeigen');

CREATE TABLE SettingTextsEN (
  [SettingName] TEXT(60) NOT NULL,
  [Caption] TEXT(120) NOT NULL,
  PRIMARY KEY ([SettingName]));
INSERT INTO SettingTextsEN VALUES ('Drawing.Scale', 'Scale of the drawing');
INSERT INTO SettingTextsEN VALUES ('Drawing.ShowHoles', 'Show holes');
