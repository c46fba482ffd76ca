-- Design rules that the add-on checks while a structure is drawn.

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
INSERT INTO InfoTableRelations VALUES (1, 'DesignRules', 'RuleId', 'PrimaryKey');

CREATE TABLE DesignRules (
  [RuleId] LONG NOT NULL,
  [Title] TEXT(80) NOT NULL,
  [Expression] MEMO NOT NULL,
  [Severity] BYTE NOT NULL,
  [Active] BIT NOT NULL,
  [ChangedOn] DATE NOT NULL,
  PRIMARY KEY ([RuleId]));
INSERT INTO DesignRules VALUES (100, 'Randabstand der Schraube',
  'EdgeDistance >= 1.2 * HoleDiameter', 2, 1, '9/3/2007');
INSERT INTO DesignRules VALUES (110, 'Lochabstand', 'Pitch >= 2.2 * HoleDiameter', 2, 1,
  '9/3/2007');
INSERT INTO DesignRules VALUES (200, 'Schweißnahtdicke',
  'Throat >= 3 AND Throat <= 0.7 * Thickness', 1, 1, '14/11/2008');
INSERT INTO DesignRules VALUES (310, 'Kopfplatte eben', 'Flatness(EndPlate) <= 0.002 * Width', 1, 0,
  '2/2/2009');
