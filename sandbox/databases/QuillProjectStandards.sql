-- Standards that a project can follow. This database has never had a version of its own for
-- projects.

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
INSERT INTO InfoTableRelations VALUES (1, 'Standards', 'Code', 'PrimaryKey');

CREATE TABLE Standards (
  [Code] TEXT(30) NOT NULL,
  [Title] TEXT(120) NOT NULL,
  [Withdrawn] BIT NOT NULL,
  PRIMARY KEY ([Code]));
INSERT INTO Standards VALUES ('DIN 18800', 'Stahlbauten', 0);
INSERT INTO Standards VALUES ('EN 1993-1-8', 'Eurocode 3, Anschlüsse', 0);
INSERT INTO Standards VALUES ('NEN 6770', 'Staalconstructies', 1);
