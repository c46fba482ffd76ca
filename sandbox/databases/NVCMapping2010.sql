-- Names of sections in other programs. It came with a later build, so it is as new as the spring
-- update.

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
INSERT INTO InfoTableRelations VALUES (1, 'SectionMapping', 'Section', 'PrimaryKey');
INSERT INTO InfoTableRelations VALUES (2, 'SectionMapping', 'Program', 'PrimaryKey');

CREATE TABLE SectionMapping (
  [Section] TEXT(20) NOT NULL,
  [Program] TEXT(30) NOT NULL,
  [ForeignName] TEXT(60) NOT NULL,
  PRIMARY KEY ([Section], [Program]));
INSERT INTO SectionMapping VALUES ('HEA200', 'NC', 'HE200A');
INSERT INTO SectionMapping VALUES ('IPE200', 'NC', 'IPE200');
INSERT INTO SectionMapping VALUES ('IPE200', 'Statics', 'I-PE 200');
INSERT INTO SectionMapping VALUES ('L80X8', 'NC', 'L80*8');
