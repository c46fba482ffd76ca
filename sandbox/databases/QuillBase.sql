-- Materials. The description is kept in the language of the installation.

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
INSERT INTO InfoTableRelations VALUES (1, 'Materials', 'MaterialId', 'PrimaryKey');

CREATE TABLE Materials (
  [MaterialId] LONG NOT NULL,
  [Name] TEXT(30) NOT NULL,
  [Description] TEXT(100) NOT NULL,
  [Density] DOUBLE NOT NULL,
  [Yield] DOUBLE NOT NULL,
  PRIMARY KEY ([MaterialId]));
INSERT INTO Materials VALUES (1, 'S235JR', 'Baustahl', 7850.0, 235.0);
INSERT INTO Materials VALUES (2, 'S275JR', 'Baustahl', 7850.0, 275.0);
INSERT INTO Materials VALUES (3, 'S355J2', 'Baustahl, schweißgeeignet', 7850.0, 355.0);
INSERT INTO Materials VALUES (20, 'EN AW-6082', 'Aluminium', 2700.0, 250.0);
