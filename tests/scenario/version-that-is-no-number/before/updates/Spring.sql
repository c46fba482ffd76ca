CREATE TABLE KFVersion (
  [Attribute] TEXT(50) NOT NULL PRIMARY KEY,
  [Value] TEXT(50) NOT NULL);
INSERT INTO KFVersion VALUES
  ('MajorNumber', '1'), ('MinorNumber', '1'), ('CommSPNumber', '2b'),
  ('BuildNumber', '7a'), ('CommMajorVersion', '2010'), ('CommMinorVersion', '-3');
