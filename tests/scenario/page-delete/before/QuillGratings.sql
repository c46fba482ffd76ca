CREATE TABLE KFVersion ([Attribute] TEXT(50) NOT NULL, [Value] TEXT(50) NOT NULL);
INSERT INTO KFVersion VALUES ('MajorNumber', '10');
INSERT INTO KFVersion VALUES ('MinorNumber', '0');
INSERT INTO KFVersion VALUES ('CommSPNumber', '0');
INSERT INTO KFVersion VALUES ('BuildNumber', '512');
INSERT INTO KFVersion VALUES ('CommMajorVersion', '2010');
INSERT INTO KFVersion VALUES ('CommMinorVersion', '0');

CREATE TABLE InfoTableRelations (
  [ID] LONG NOT NULL,
  [TableName] TEXT(50) NOT NULL,
  [ColumnName] TEXT(50) NOT NULL,
  [TypeProperty] TEXT(50) NOT NULL,
  PRIMARY KEY ([ID]));
INSERT INTO InfoTableRelations VALUES (1, 'Gratings', 'Code', 'PrimaryKey');

CREATE TABLE Gratings (
  [Code] TEXT(20) NOT NULL,
  [Mass] DOUBLE NOT NULL,
  PRIMARY KEY ([Code]));
INSERT INTO Gratings VALUES ('SP-30', 21.5);
INSERT INTO Gratings VALUES ('OLD-25', 17.2);

CREATE TABLE Spans (
  [Code] TEXT(20) NOT NULL,
  [Length] DOUBLE NOT NULL,
  [Remark] TEXT(40));
INSERT INTO Spans VALUES ('SP-30', 1.5, 'indoors');
INSERT INTO Spans VALUES ('SP-30', 1.2345678, 'indoors');
INSERT INTO Spans VALUES ('SP-30', 2, NULL);
INSERT INTO Spans VALUES ('OLD-25', 1.5, 'indoors');
