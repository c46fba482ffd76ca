CREATE TABLE KFVersion ([Attribute] TEXT(50) NOT NULL, [Value] TEXT(50) NOT NULL);
INSERT INTO KFVersion VALUES ('MajorNumber', '10');
INSERT INTO KFVersion VALUES ('MinorNumber', '1');
INSERT INTO KFVersion VALUES ('CommSPNumber', '0');
INSERT INTO KFVersion VALUES ('BuildNumber', '640');
INSERT INTO KFVersion VALUES ('CommMajorVersion', '2010');
INSERT INTO KFVersion VALUES ('CommMinorVersion', '1');

CREATE TABLE UpdateTable (
  [ID] LONG NOT NULL,
  [TargetDatabase] TEXT(49) NOT NULL,
  [SourceTable] TEXT(49) NOT NULL,
  [TargetTable] TEXT(49) NOT NULL,
  [DeleteRows] BIT NOT NULL,
  [Recreate] BIT NOT NULL,
  [CreateIfMissing] BIT NOT NULL,
  PRIMARY KEY ([ID]));
INSERT INTO UpdateTable VALUES (10, 'QuillGratings', 'WithdrawnGratings', 'Gratings', 1, 0, 0);
INSERT INTO UpdateTable VALUES (20, 'QuillGratings', 'WithdrawnSpans', 'Spans', 1, 0, 0);

CREATE TABLE WithdrawnGratings ([Code] TEXT(20) NOT NULL);
INSERT INTO WithdrawnGratings VALUES ('OLD-25');
INSERT INTO WithdrawnGratings VALUES ('OLD-20');

CREATE TABLE WithdrawnSpans (
  [Code] TEXT(20) NOT NULL,
  [Length] DOUBLE NOT NULL,
  [Remark] TEXT(40) NOT NULL);
INSERT INTO WithdrawnSpans VALUES ('SP-30', 1.5, 'indoors');
INSERT INTO WithdrawnSpans VALUES ('SP-30', 1.2345678, 'indoors');
INSERT INTO WithdrawnSpans VALUES ('SP-30', 2, '');
