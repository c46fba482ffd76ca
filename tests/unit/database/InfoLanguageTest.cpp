#include "database/InfoTable.h"

#include "tests/unit/database/DatabaseMachine.h"
#include "tests/unit/foundation/Texts.h"

namespace {

constexpr int32_t French = 1036;   // place 1
constexpr int32_t Dutch = 1043;    // place 2
constexpr int32_t German = 1031;   // place 3
constexpr int32_t Italian = 1040;  // of no place, so 4

// An info table of these rows in this language.
std::unique_ptr<InfoTable> InfoOf(int32_t language, std::initializer_list<InfoRow> rows)
{
  auto info = std::make_unique<InfoTable>(*UnconnectedDatabase());
  info->languageId = language;
  for (const InfoRow& row : rows)
    info->rows.Append(row);
  return info;
}

InfoRow TableRow(const wchar_t* table, const wchar_t* variants)
{
  return {table, variants, L"LanguageDependentTables"};
}

InfoRow ColumnRow(const wchar_t* table, const wchar_t* columns)
{
  return {table, columns, L"LanguageDependent"};
}

// The answer, or "none".
std::string Resolve(const InfoTable& info, const wchar_t* table)
{
  QulString answer;
  return info.ResolveTableName(table, answer) ? TextOf(answer) : "none";
}

std::string Alternate(const InfoTable& info, const wchar_t* column)
{
  QulString answer;
  return info.FindAlternateColumn(L"Parts", column, answer) ? TextOf(answer) : "none";
}

std::string Alternate(int32_t language, const wchar_t* value, const wchar_t* column)
{
  return Alternate(*InfoOf(language, {ColumnRow(L"Parts", value)}), column);
}

Lines Collected(const InfoTable& info)
{
  QulArray<QulString> columns;
  info.CollectAlternateColumns(L"Parts", columns);
  return TextsOf(columns);
}

Lines Collected(const wchar_t* value)
{
  return Collected(*InfoOf(French, {ColumnRow(L"Parts", value)}));
}

class LanguageTable : public DatabaseMachine
{
};
class LanguageColumn : public DatabaseMachine
{
};
class OtherLanguageColumns : public DatabaseMachine
{
};
class LanguageRow : public DatabaseMachine
{
};

}  // namespace

TEST_F(LanguageRow, IsOfItsTypeAndTableInAnyCase)
{
  const struct
  {
    InfoRow row;
    const wchar_t* table;
    bool columns;
    bool tables;
  } cases[] = {{{L"Parts", L"", L"LanguageDependent"}, L"Parts", true, false},
               {{L"Parts", L"", L"LanguageDependentTables"}, L"Parts", false, true},
               {{L"PARTS", L"", L"languagedependent"}, L"parts", true, false},
               {{L"PARTS", L"", L"LANGUAGEDEPENDENTTABLES"}, L"parts", false, true},
               {{L"Parts", L"", L"LanguageDependent"}, L"Part", false, false},
               {{L"Parts", L"", L"LanguageDependent"}, L"Parts2", false, false},
               {{L"Parts", L"", L"LanguageDependentTable"}, L"Parts", false, false},
               {{L"Parts", L"", L""}, L"Parts", false, false},
               {{L"Parts", L"", L"LanguageDependent"}, nullptr, false, false},
               {{L"", L"", L"LanguageDependent"}, nullptr, true, false},
               {{L"", L"", L"LanguageDependentTables"}, nullptr, false, true},
               {{L"", L"", L"LanguageDependent"}, L"", true, false}};
  int number = 0;
  for (const auto& one : cases) {
    EXPECT_EQ(one.row.IsLanguageDependent(one.table), one.columns) << number;
    EXPECT_EQ(one.row.IsLanguageDependentTable(one.table), one.tables) << number;
    ++number;
  }
}

TEST_F(LanguageTable, IsTheEntryAtThePlaceOfTheLanguage)
{
  const auto info = InfoOf(Dutch, {TableRow(L"Texts", L"Base;Fr;Nl;De")});
  EXPECT_EQ(Resolve(*info, L"Texts"), "Nl");
  EXPECT_EQ(Resolve(*InfoOf(German, {TableRow(L"Texts", L"Base;Fr;Nl;De")}), L"Texts"), "De");
}

TEST_F(LanguageTable, IsFoundInAnyCase)
{
  EXPECT_EQ(Resolve(*InfoOf(French, {TableRow(L"TEXTS", L"Base;Fr")}), L"texts"), "Fr");
}

TEST_F(LanguageTable, OfATableWithoutARowIsNoneAndLeavesTheAnswer)
{
  const auto info = InfoOf(French, {TableRow(L"Texts", L"Base;Fr"), ColumnRow(L"Parts", L"A;B")});
  QulString answer(L"before");
  EXPECT_FALSE(info->ResolveTableName(L"Parts", answer));
  EXPECT_EQ(TextOf(answer), "before");
}

TEST_F(LanguageTable, OfFewerVariantsThanThePlaceIsThereAndLeavesTheAnswer)
{
  QulString answer(L"before");
  EXPECT_TRUE(InfoOf(Dutch, {TableRow(L"Texts", L"Base;Fr")})->ResolveTableName(L"Texts", answer));
  EXPECT_EQ(TextOf(answer), "before");
  EXPECT_EQ(Resolve(*InfoOf(Dutch, {TableRow(L"Texts", L"Base;Fr")}), L"Texts"), "");
}

TEST_F(LanguageTable, OfAsManyVariantsAsThePlaceIsThereAndLeavesTheAnswer)
{
  constexpr int32_t canadianFrench = 3084;  // place 8, as many as an array takes at first
  EXPECT_EQ(Resolve(*InfoOf(canadianFrench, {TableRow(L"Texts", L"0;1;2;3;4;5;6;7")}), L"Texts"),
            "");
  EXPECT_EQ(Resolve(*InfoOf(canadianFrench, {TableRow(L"Texts", L"0;1;2;3;4;5;6;7;8")}), L"Texts"),
            "8");
}

TEST_F(LanguageTable, OfAnEmptyListIsThereAndLeavesTheAnswer)
{
  EXPECT_EQ(Resolve(*InfoOf(French, {TableRow(L"Texts", L"")}), L"Texts"), "");
}

TEST_F(LanguageTable, OfAnEmptyEntryAtTheEndIsThereWithoutAnAnswer)
{
  EXPECT_EQ(Resolve(*InfoOf(Dutch, {TableRow(L"Texts", L"Base;Fr;")}), L"Texts"), "");
}

TEST_F(LanguageTable, IsCountedWithoutEmptyPlaces)
{
  EXPECT_EQ(Resolve(*InfoOf(French, {TableRow(L"Texts", L"A;;C")}), L"Texts"), "C");
  EXPECT_EQ(Resolve(*InfoOf(French, {TableRow(L"Texts", L";A;C")}), L"Texts"), "C");
}

TEST_F(LanguageTable, IsThatOfTheFirstRowAlone)
{
  const auto info =
      InfoOf(Dutch, {TableRow(L"Texts", L"Base;Fr"), TableRow(L"Texts", L"Base;Fr;Nl")});
  EXPECT_EQ(Resolve(*info, L"Texts"), "");
}

TEST_F(LanguageTable, OfAnUnknownLanguageIsTheEntryAtPlaceFour)
{
  EXPECT_EQ(Resolve(*InfoOf(Italian, {TableRow(L"Texts", L"0;1;2;3;4;5")}), L"Texts"), "4");
}

TEST_F(LanguageTable, WithoutALanguageIsTheEntryAtPlaceTen)
{
  EXPECT_EQ(Resolve(*InfoOf(9, {TableRow(L"Texts", L"0;1;2;3;4;5;6;7;8;9;10;11")}), L"Texts"),
            "10");
}

TEST_F(LanguageTable, HasTheLastEntryOfTheHighestPlace)
{
  const wchar_t* const twentyTwo = L"a;b;c;d;e;f;g;h;i;j;k;l;m;n;o;p;q;r;s;t;u;v";
  EXPECT_EQ(Resolve(*InfoOf(1038, {TableRow(L"Texts", twentyTwo)}), L"Texts"), "v");
}

TEST_F(LanguageColumn, IsTheOneAtTheSamePositionInTheLanguagesEntry)
{
  const wchar_t* const value = L"X,Y/UNIQUE;X_1,Y_1;X_2,Y_2";
  EXPECT_EQ(Alternate(Dutch, value, L"Y"), "Y_2");
  EXPECT_EQ(Alternate(Dutch, value, L"X"), "X_2");
  EXPECT_EQ(Alternate(French, value, L"Y"), "Y_1");
}

TEST_F(LanguageColumn, IsFoundInAnyCase)
{
  EXPECT_EQ(Alternate(French, L"Name;Nom", L"NAME"), "Nom");
}

TEST_F(LanguageColumn, OfAColumnThatIsNoBaseColumnIsNone)
{
  EXPECT_EQ(Alternate(French, L"X,Y;X_1,Y_1", L"Z"), "none");
  EXPECT_EQ(Alternate(French, L"X,Y;X_1,Y_1", L"X_1"), "none");
  EXPECT_EQ(Alternate(French, L"X,Y;X_1,Y_1", L""), "none");
}

TEST_F(LanguageColumn, HasAMarkerOfCapitalsAnywhereInItsBaseName)
{
  EXPECT_EQ(Alternate(French, L"/UNIQUEX;A", L"X"), "A");
  EXPECT_EQ(Alternate(French, L"X/UNIQUE/UNIQUE;A", L"X"), "A");
  EXPECT_EQ(Alternate(French, L"X/UNIQUE;A", L"X/UNIQUE"), "none");
}

TEST_F(LanguageColumn, IsNoneBehindAMarkerInSmallLetters)
{
  EXPECT_EQ(Alternate(French, L"Y/unique;A", L"Y"), "none");
  EXPECT_EQ(Alternate(French, L"Y/unique;A", L"Y/unique"), "A");
}

TEST_F(LanguageColumn, KeepsAMarkerInTheLanguagesEntry)
{
  EXPECT_EQ(Alternate(French, L"Y;A/UNIQUE", L"Y"), "A/UNIQUE");
}

// Eight entries fill the memory of the list: what lies behind them can't be read.
TEST_F(LanguageColumn, IsNoneIfTheListEndsJustBeforeTheLanguage)
{
  constexpr int32_t CanadianFrench = 3084;  // place 8
  EXPECT_EQ(Alternate(CanadianFrench, L"X;A;B;C;D;E;F;G", L"X"), "none");
  EXPECT_EQ(Alternate(CanadianFrench, L"X;A;B;C;D;E;F;G;H", L"X"), "H");
  const auto info = InfoOf(CanadianFrench, {TableRow(L"Parts", L"P;A;B;C;D;E;F;G")});
  EXPECT_EQ(Resolve(*info, L"Parts"), "");
}

TEST_F(LanguageColumn, IsNoneIfTheListEndsBeforeTheLanguage)
{
  EXPECT_EQ(Alternate(Dutch, L"X;X_1", L"X"), "none");
  EXPECT_EQ(Alternate(Dutch, L"", L"X"), "none");
  EXPECT_EQ(Alternate(Dutch, L";;", L"X"), "none");
}

TEST_F(LanguageColumn, IsNoneIfTheLanguagesEntryHasFewerColumns)
{
  EXPECT_EQ(Alternate(French, L"X,Y;X_1", L"Y"), "none");
  EXPECT_EQ(Alternate(French, L"X,Y;X_1", L"X"), "X_1");
  EXPECT_EQ(Alternate(French, L"X,Y;,", L"Y"), "none");
}

TEST_F(LanguageColumn, IsCountedWithoutEmptyPlaces)
{
  EXPECT_EQ(Alternate(French, L"X,,Y;;X_1,,,Y_1", L"Y"), "Y_1");
  EXPECT_EQ(Alternate(French, L"X,Y,Z;,Y_1,Z_1", L"X"), "Y_1");
}

TEST_F(LanguageColumn, MayHaveANameOfOneCharacter)
{
  EXPECT_EQ(Alternate(French, L"Name;N", L"Name"), "N");
}

TEST_F(LanguageColumn, IsLookedForInTheNextRowIfOneHasNone)
{
  const wchar_t* const fruitless[] = {L"", L";;", L"Y;Y_1;Y_2", L"X;X_1", L"Y,X;Y_1,X_1;Y_2"};
  for (const wchar_t* value : fruitless) {
    const auto info = InfoOf(Dutch, {ColumnRow(L"Parts", value), ColumnRow(L"Parts", L"X;A;B")});
    EXPECT_EQ(Alternate(*info, L"X"), "B") << Utf8(value);
  }
}

TEST_F(LanguageColumn, IsNoneIfNoRowHasOne)
{
  const auto info =
      InfoOf(Dutch, {ColumnRow(L"Parts", L"Y,X;Y_1,X_1;Y_2"), ColumnRow(L"Parts", L"X;A")});
  EXPECT_EQ(Alternate(*info, L"X"), "none");
}

TEST_F(LanguageColumn, IsThatOfTheFirstRowThatHasOne)
{
  const auto info = InfoOf(French, {ColumnRow(L"Parts", L"X;A"), ColumnRow(L"Parts", L"X;B")});
  EXPECT_EQ(Alternate(*info, L"X"), "A");
}

TEST_F(LanguageColumn, IsThatOfTheFirstBaseColumnOfTheName)
{
  EXPECT_EQ(Alternate(French, L"X,x/UNIQUE;A,B", L"X"), "A");
}

TEST_F(LanguageColumn, IsNotLookedForInOtherRows)
{
  const auto info = InfoOf(
      French,
      {ColumnRow(L"Bolts", L"X;A"), TableRow(L"Parts", L"X;B"), {L"Parts", L"X;C", L"Other"}});
  EXPECT_EQ(Alternate(*info, L"X"), "none");
}

TEST_F(LanguageColumn, ThatIsNoneLeavesTheAnswer)
{
  QulString answer(L"before");
  const auto info = InfoOf(French, {ColumnRow(L"Parts", L"X,Y;X_1")});
  EXPECT_FALSE(info->FindAlternateColumn(L"Parts", L"Y", answer));
  EXPECT_EQ(TextOf(answer), "before");
}

TEST_F(OtherLanguageColumns, AreThoseOfAllEntriesButTheFirst)
{
  EXPECT_EQ(Collected(L"X,Y/UNIQUE;X_1,Y_1;X_2,Y_2"), (Lines{"X_1", "Y_1", "X_2", "Y_2"}));
}

TEST_F(OtherLanguageColumns, AreNoneInAListWithoutLanguages)
{
  EXPECT_TRUE(Collected(L"X,Y").empty());
  EXPECT_TRUE(Collected(L"").empty());
  EXPECT_TRUE(Collected(L";;").empty());
}

TEST_F(OtherLanguageColumns, HaveNamesOfMoreThanOneCharacter)
{
  EXPECT_EQ(Collected(L"X;A,AB,B;C"), (Lines{"AB"}));
}

TEST_F(OtherLanguageColumns, KeepAMarker)
{
  EXPECT_EQ(Collected(L"X;A/UNIQUE"), (Lines{"A/UNIQUE"}));
}

TEST_F(OtherLanguageColumns, AreThoseOfAllRowsOfTheTable)
{
  const auto info = InfoOf(French, {ColumnRow(L"parts", L"X;X_1"), ColumnRow(L"Bolts", L"B;B_1"),
                                    TableRow(L"Parts", L"T;T_1"), ColumnRow(L"Parts", L"Y;Y_1")});
  EXPECT_EQ(Collected(*info), (Lines{"X_1", "Y_1"}));
}

TEST_F(OtherLanguageColumns, StandBehindWhatIsInTheArray)
{
  QulArray<QulString> columns;
  columns.Append(L"before");
  InfoOf(French, {ColumnRow(L"Parts", L"X;X_1")})->CollectAlternateColumns(L"Parts", columns);
  EXPECT_EQ(TextsOf(columns), (Lines{"before", "X_1"}));
}

TEST_F(OtherLanguageColumns, AreListedAsOftenAsTheyStand)
{
  EXPECT_EQ(Collected(L"X,Y;X_1,X_1;X_1"), (Lines{"X_1", "X_1", "X_1"}));
}
