#include <string>
#include <vector>

#include "service_fixture.h"

namespace azcoll::test {
namespace {

Variant decimal(const char* text) { return *Decimal::parse(text); }

/// A column of the sales data: a value, what is written for it and what is written for a missing
/// one.
struct Column {
  std::string name;
  Variant value;
  std::string written;
  std::string missing;
};

/// Every column after the three of the key, in the order in which they are written. One date column
/// holds a text that is no date: it is written as an empty literal.
const std::vector<Column>& columns() {
  static const std::vector<Column> list{
      {"MG19_MACROAREA", "T1", "N'T1'", "Null"},
      {"MG19_AREA", "T2", "N'T2'", "Null"},
      {"MG19_ZONA", "T3", "N'T3'", "Null"},
      {"MG19_MACROCAT", "T4", "N'T4'", "Null"},
      {"MG19_CATEG", "T5", "N'T5'", "Null"},
      {"MG19_SOTTOCAT", "T6", "N'T6'", "Null"},
      {"MG19_RAGGRCF1", "T7", "N'T7'", "Null"},
      {"MG19_RAGGRCF2", "T8", "N'T8'", "Null"},
      {"MG19_RAGGCRF3", "T9", "N'T9'", "Null"},
      {"MG19_CODICLFATT", std::int32_t{1010}, "1010", "Null"},
      {"MG19_INDCLIFAT", std::int32_t{1011}, "1011", "Null"},
      {"MG19_FLGDATICLFAT", std::int32_t{1012}, "1012", "Null"},
      {"MG19_CODDOCUM_MG3G", "T13", "N'T13'", "Null"},
      {"MG19_TIPOCLXDOC", std::int32_t{1014}, "1014", "Null"},
      {"MG19_INDDESDOCEST", std::int32_t{1015}, "1015", "Null"},
      {"MG19_LINGUA_MG52", "T16", "N'T16'", "Null"},
      {"MG19_INDSTSCADEST", std::int32_t{1017}, "1017", "Null"},
      {"MG19_SC1PERCOR", decimal("12.50"), "12.50", "Null"},
      {"MG19_SC2PERCOR", decimal("0.00"), "0.00", "Null"},
      {"MG19_SC3PERCOR", decimal("-3.1"), "-3.1", "Null"},
      {"MG19_SCIMPCOR", decimal("0.125"), "0.125", "Null"},
      {"MG19_MAGPERCOR", std::int32_t{1022}, "1022", "Null"},
      {"MG19_MAGIMPCOR", std::int64_t{5000000000}, "5000000000", "Null"},
      {"MG19_SCPERPIEDE", std::int32_t{1024}, "1024", "Null"},
      {"MG19_FLGSPEINC", std::int32_t{1025}, "1025", "Null"},
      {"MG19_FLGSPBOL", std::int32_t{1026}, "1026", "Null"},
      {"MG19_INDSPESECUM", std::int32_t{1027}, "1027", "Null"},
      {"MG19_SCAGLSPBANC", std::int32_t{1028}, "1028", "Null"},
      {"MG19_SPESEF1", "T29", "N'T29'", "Null"},
      {"MG19_SPESEF2", "T30", "N'T30'", "Null"},
      {"MG19_FLGESCLSPEPOR", std::int32_t{1031}, "1031", "Null"},
      {"MG19_INDCLIBLOC", std::int32_t{1032}, "1032", "Null"},
      {"MG19_CODLIVBLOC", "T33", "N'T33'", "Null"},
      {"MG19_DATABLOCCO", Date{.year = 2021, .month = 3, .day = 4}, "'20210304'", "Null"},
      {"MG19_NOTEBLOC", "L'azienda è 'chiusa'", "N'L'azienda è 'chiusa''", "Null"},
      {"MG19_CODPREVRAGB", "T36", "N'T36'", "Null"},
      {"MG19_CODDESTPREV", "T37", "N'T37'", "Null"},
      {"MG19_TESTOF1", "T38", "N'T38'", "Null"},
      {"MG19_INDTESTOF1", std::int32_t{1039}, "1039", "Null"},
      {"MG19_TESTOF2", "  due  ", "N'  due  '", "Null"},
      {"MG19_INDTESTOF2", std::int32_t{1041}, "1041", "Null"},
      {"MG19_DATACREAZ", Date{.year = 2019, .month = 1, .day = 2}, "'20190102'", "''"},
      {"MG19_DATAULTVAR",
       Date{.year = 2020, .month = 12, .day = 31, .hour = 23, .minute = 59, .second = 58},
       "'20201231 23:59:58'", "''"},
      {"MG19_DATADISMIS", Date{.year = 2022, .month = 2, .day = 28, .hour = 7, .minute = 5},
       "'20220228 07:05:00'", "Null"},
      {"MG19_DATAULTDOC", "31/12/2022", "'20221231'", "Null"},
      {"MG19_DATAULTFAT", "2023-06-01 10:20:30", "'20230601 10:20:30'", "Null"},
      {"MG19_DATAULTORD", "30/02/2023", "''", "Null"},
      {"MG19_DATAULTCALSP", Date{.year = 1900, .month = 1, .day = 1}, "'19000101'", "Null"},
      {"MG19_LISPIUART_LI26", std::int32_t{0}, "N'0'", "Null"},
      {"MG19_LISTMAG", std::int32_t{1050}, "1050", "Null"},
      {"MG19_PUNLIS99PRE", std::int32_t{1051}, "1051", "Null"},
      {"MG19_FLGPRZCAMP", std::int32_t{1052}, "1052", "Null"},
      {"MG19_INDARRL96", std::int32_t{1053}, "1053", "Null"},
      {"MG19_INDARRINFAT", std::int16_t{-1}, "-1", "Null"},
      {"MG19_IMPDAARROT", std::int32_t{1055}, "1055", "Null"},
      {"MG19_IMPARROTPREC", std::int32_t{1056}, "1056", "Null"},
      {"MG19_CODRIFNUM", std::int32_t{1057}, "1057", "Null"},
      {"MG19_CODRIFALF", "T58", "N'T58'", "Null"},
      {"MG19_INDGESFIDO", std::int32_t{1059}, "1059", "Null"},
      {"MG19_FIDOAZIENDALE", decimal("99999999999999999999.9900"), "99999999999999999999.9900",
       "Null"},
      {"MG19_FIDOFACTORING", std::int32_t{1061}, "1061", "Null"},
      {"MG19_IDMEDIA_CG99", std::int32_t{1062}, "1062", "Null"},
  };
  return list;
}

/// The statement for company `company`, with the values that `text` picks.
std::string statement(const std::string& company, const std::string& code,
                      std::string Column::*text) {
  std::string names = "MG19_DITTA_CG18, MG19_TIPOCF_CG44, MG19_CLIFOR_CG44";
  std::string values = company + ", 0, " + code;
  for (const Column& column : columns()) {
    names += ", " + column.name;
    values += ", " + column.*text;
  }
  return "INSERT INTO MG19_CLIFORVA (" + names + ") VALUES (" + values + ")";
}

class SalesValuesTest : public DuplicationTest {
 protected:
  SalesValuesTest() {
    sales.set("MG19_DITTA_CG18", 20).set("MG19_TIPOCF_CG44", std::int16_t{0});
    sales.set("MG19_CLIFOR_CG44", 100);
    for (const Column& column : columns()) {
      sales.set(column.name, column.value);
    }
  }
  void fillWith(const Variant& value) {
    for (const Column& column : columns()) {
      sales.set(column.name, value);
    }
  }
  void run() {
    connection->answerPrefix("SELECT * FROM MG19_CLIFORVA", sales.in("MG19_CLIFORVA"));
    service.DuplicaCliFor();
  }

  Row sales;
};

TEST_F(SalesValuesTest, EveryFilledColumnIsWrittenByItsRule) {
  run();
  expectOnly("INSERT INTO MG19", statement("10", "100", &Column::written));
  expectSuccess();
}

TEST_F(SalesValuesTest, OpensWithTheFirstColumnsOfTheTable) {
  run();
  EXPECT_TRUE(lines("INSERT INTO MG19")
                  .at(0)
                  .starts_with("INSERT INTO MG19_CLIFORVA (MG19_DITTA_CG18, MG19_TIPOCF_CG44, "
                               "MG19_CLIFOR_CG44, MG19_MACROAREA, MG19_AREA, MG19_ZONA, "
                               "MG19_MACROCAT, MG19_CATEG, MG19_SOTTOCAT, MG19_RAGGRCF1, "
                               "MG19_RAGGRCF2, MG19_RAGGCRF3, "));
}

TEST_F(SalesValuesTest, NullColumnsAreWrittenAsNullButForTheTwoDatesAlwaysWritten) {
  fillWith(kNull);
  run();
  expectOnly("INSERT INTO MG19", statement("10", "100", &Column::missing));
  expectSuccess();
}

TEST_F(SalesValuesTest, EmptyTextsCountAsMissing) {
  fillWith("");
  run();
  expectOnly("INSERT INTO MG19", statement("10", "100", &Column::missing));
}

TEST_F(SalesValuesTest, OnlyTheFirstRowIsCopied) {
  ResultSet rows = sales.in("MG19_CLIFORVA");
  const std::vector<Variant> first = rows.values;
  rows.values.insert(rows.values.end(), first.begin(), first.end());
  connection->answerPrefix("SELECT * FROM MG19_CLIFORVA", rows);
  service.DuplicaCliFor();
  EXPECT_EQ(lines("INSERT INTO MG19").size(), 1U);
}

TEST_F(SalesValuesTest, AreNotWrittenFromTheMainCompany) {
  service.CPInput->Pvar_Ditta = std::int32_t{10};
  run();
  EXPECT_TRUE(lines("INSERT INTO MG19").empty());
  EXPECT_TRUE(lines("SELECT * FROM MG19").empty());
  expectSuccess();
}

}  // namespace
}  // namespace azcoll::test
