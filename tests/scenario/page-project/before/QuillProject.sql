CREATE TABLE KFProjectsVersion (
  [Attribute] TEXT(255) NOT NULL,
  [Value] TEXT(255) NOT NULL,
  PRIMARY KEY ([Attribute]));
INSERT INTO KFProjectsVersion VALUES ('SteelGrades', '2');

CREATE TABLE InfoTableRelations (
  [ID] LONG NOT NULL,
  [TableName] TEXT(50) NOT NULL,
  [ColumnName] TEXT(50) NOT NULL,
  [TypeProperty] TEXT(50) NOT NULL,
  PRIMARY KEY ([ID]));
INSERT INTO InfoTableRelations VALUES (1, 'Defaults', 'Name', 'PrimaryKey');

CREATE TABLE Defaults ([Name] TEXT(60) NOT NULL, [Setting] TEXT(255), PRIMARY KEY ([Name]));
INSERT INTO Defaults VALUES ('Material', 'S235JR');
