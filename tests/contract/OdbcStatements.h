#ifndef TESTS_CONTRACT_ODBCSTATEMENTS_H
#define TESTS_CONTRACT_ODBCSTATEMENTS_H

// The statements of the contract tests of ODBC. A driver carries them out; the scripted double is
// told what they give (NativeOdbc.cpp).

inline const wchar_t* const SetupStatements[] = {
    L"CREATE TABLE Parts ([Id] LONG PRIMARY KEY NOT NULL,[Name] TEXT(20),[Used] BIT)",
    L"INSERT INTO [Parts] ([Id],[Name],[Used]) VALUES (1,'Bolt',1)",
    L"INSERT INTO [Parts] ([Id],[Name],[Used]) VALUES (2,NULL,0)",
    L"INSERT INTO [Parts] ([Id],[Name],[Used]) VALUES (3,'\x00E9\x20AC\xD83D\xDE00',0)"};

inline const wchar_t* const SelectParts = L"SELECT * FROM Parts ORDER BY [Id]";
inline const wchar_t* const SelectMissing = L"SELECT * FROM Missing";
inline const wchar_t* const UpdateOfARow = L"UPDATE [Parts] SET [Used]=1 WHERE [Id]=2";
inline const wchar_t* const UpdateOfNoRow = L"UPDATE [Parts] SET [Used]=1 WHERE [Id]=9";
inline const wchar_t* const DeleteOfNoRow = L"DELETE FROM Parts WHERE [Id]=9";

#endif
