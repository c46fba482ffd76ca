-- The first service pack of 10.1, autumn 2010. Its build number is lower than that of the update
-- of spring, and yet it is the newer one: the service pack counts first.

CREATE TABLE KFVersion (
  [Attribute] TEXT(50) NOT NULL,
  [Value] TEXT(50) NOT NULL,
  PRIMARY KEY ([Attribute]));
INSERT INTO KFVersion VALUES ('MajorNumber', '10');
INSERT INTO KFVersion VALUES ('MinorNumber', '1');
INSERT INTO KFVersion VALUES ('CommMajorVersion', '2010');
INSERT INTO KFVersion VALUES ('CommMinorVersion', '1');
INSERT INTO KFVersion VALUES ('CommSPNumber', '1');
INSERT INTO KFVersion VALUES ('BuildNumber', '96');

CREATE TABLE Info (
  [Name] TEXT(50) NOT NULL,
  [Value] MEMO NOT NULL,
  [Type] TEXT(255) NOT NULL);
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
INSERT INTO UpdateTable VALUES (10, 'QuillRules', 'DesignRules', 'DesignRules', 0, 0, 0,
  'merge by RuleId');
INSERT INTO UpdateTable VALUES (20, 'QuillControlStructure', 'Menus', 'Menus', 0, 1, 0,
  'drop the table and make it anew, with one column more');
INSERT INTO UpdateTable VALUES (30, 'QuillBase', 'Materials', 'Materials', 0, 0, 0,
  'a correction of what spring brought');
INSERT INTO UpdateTable VALUES (40, 'NVCMapping2010', 'SectionMapping', 'SectionMapping', 0, 0, 0,
  'merge by Section and Program');
INSERT INTO UpdateTable VALUES (50, 'QuillDetails', 'WithdrawnBolts', 'Bolts', 1, 0, 0,
  'remove the rows listed, by Code');
INSERT INTO UpdateTable VALUES (60, 'QuillKernelEnvironment', 'Environment', 'Environment', 0, 0, 0,
  'merge by VariableName; two rows fail, since an empty text is written as NULL');
INSERT INTO UpdateTable VALUES (70, 'QuillKernelEnvironment', 'OldFolders', 'SearchFolders', 1, 0,
  0, 'remove the rows listed, by all columns, since the table has no key');
INSERT INTO UpdateTable VALUES (80, 'QuillBitmaps', 'NewBitmaps*', 'Bitmaps', 0, 0, 0,
  'the tables were left out of the patch: the step fails');

CREATE TABLE DesignRules (
  [RuleId] LONG NOT NULL,
  [Title] TEXT(80) NOT NULL,
  [Expression] MEMO NOT NULL,
  [Severity] BYTE NOT NULL,
  [Active] BIT NOT NULL,
  [ChangedOn] DATE NOT NULL,
  PRIMARY KEY ([RuleId]));
INSERT INTO DesignRules VALUES (200, 'Schweißnahtdicke',
  'Throat >= 3 AND Throat <= 0.7 * MinThickness', 1, 1, '27/9/2010');
INSERT INTO DesignRules VALUES (320, 'Klemmlänge',
  'GripLength <= 5 * Diameter -- the maker''s limit', 2, 1, '27/9/2010');

CREATE TABLE Menus (
  [MenuId] LONG NOT NULL,
  [ParentId] LONG NOT NULL,
  [Place] SMALLINT NOT NULL,
  [Command] TEXT(60) NOT NULL,
  [Shortcut] TEXT(20) NOT NULL,
  PRIMARY KEY ([MenuId]));
INSERT INTO Menus VALUES (1, 0, 1, 'KF_FILE', 'Alt+F');
INSERT INTO Menus VALUES (2, 0, 2, 'KF_DRAW', 'Alt+D');
INSERT INTO Menus VALUES (21, 2, 1, 'KF_BEAM', 'Ctrl+B');
INSERT INTO Menus VALUES (22, 2, 2, 'KF_PLATE', 'Ctrl+P');
INSERT INTO Menus VALUES (24, 2, 3, 'KF_BOLT', 'Ctrl+O');
INSERT INTO Menus VALUES (25, 2, 4, 'KF_WELD', 'Ctrl+W');

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
INSERT INTO Materials VALUES (30, 'C30/37', 'concrete', 'Béton', 'Beton', 'Beton', 'Concrete',
  2500.0, 20.0);

CREATE TABLE SectionMapping (
  [Section] TEXT(20) NOT NULL,
  [Program] TEXT(30) NOT NULL,
  [ForeignName] TEXT(60) NOT NULL,
  PRIMARY KEY ([Section], [Program]));
INSERT INTO SectionMapping VALUES ('HEB200', 'NC', 'HE200B');
INSERT INTO SectionMapping VALUES ('L80X8', 'NC', 'L80X8');

CREATE TABLE WithdrawnBolts (
  [Code] TEXT(20) NOT NULL,
  PRIMARY KEY ([Code]));
INSERT INTO WithdrawnBolts VALUES ('W3/4-A325');

CREATE TABLE Environment (
  [VariableName] TEXT(60) NOT NULL,
  [VariableValue] TEXT(255) NOT NULL,
  PRIMARY KEY ([VariableName]));
INSERT INTO Environment VALUES ('KernelCache', '128');
INSERT INTO Environment VALUES ('KernelThreads', '1');
INSERT INTO Environment VALUES ('KernelTolerance', '');
INSERT INTO Environment VALUES ('KernelLog', '');

CREATE TABLE OldFolders (
  [Purpose] TEXT(30) NOT NULL,
  [Folder] TEXT(255) NOT NULL,
  [Depth] SMALLINT NOT NULL);
INSERT INTO OldFolders VALUES ('Blocks', 'C:\Old\Blocks', 2);
INSERT INTO OldFolders VALUES ('Fonts', 'C:\Old\Fonts', 1);
