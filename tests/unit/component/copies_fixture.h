#pragma once

#include <map>

#include "unit/component/fixture.h"

namespace azcoll::testing {

/// Columns of a master row, as the copies list them.
inline const std::vector<std::string>& masterColumns() {
  static const std::vector<std::string> names{
      "CG44_DITTA_CG18",      "CG44_TIPOCF",       "CG44_CLIFOR",      "CG44_CODICE_CG16",
      "CG44_GRUPPO_CG10",     "CG44_CONTO_CG24",   "CG44_CONTOR_CG24", "CG44_CODPAG_CG62",
      "CG44_GGSCADFIX",       "CG44_CODABI_CG12",  "CG44_CODCAB_CG13", "CG44_TIPOCF_CG40",
      "CG44_INTERMEDIO_CG40", "CG44_CODICE_CG08",  "CG44_CODICE_CG28", "CG44_IDAGENTE_MG17",
      "CG44_CODSEDE_CG31",    "CG44_IDMEDIA_CG99", "CG44_FLGATTIVO"};
  return names;
}

/// A column of the sales data, a value of it and how the copy writes that value.
struct SalesValue {
  std::string name;
  Variant value;
  std::string written;
};

/// The 65 columns in the order in which they are copied. Every value differs from the others.
inline std::vector<SalesValue> salesValues() {
  const auto number = [](const char* text) { return Variant{*Decimal::parse(text)}; };
  const auto day = [](int year, int month, int dayOfMonth) {
    return Variant{*Date::of(year, month, dayOfMonth)};
  };
  return {
      {"MG19_DITTA_CG18", std::int32_t{5}, "10"},
      {"MG19_TIPOCF_CG44", std::int16_t{0}, "0"},
      {"MG19_CLIFOR_CG44", std::int32_t{120}, "120"},
      {"MG19_MACROAREA", "MA", "N'MA'"},
      {"MG19_AREA", "AR", "N'AR'"},
      {"MG19_ZONA", "Forlì", "N'Forlì'"},
      {"MG19_MACROCAT", "MC", "N'MC'"},
      {"MG19_CATEG", "CA", "N'CA'"},
      {"MG19_SOTTOCAT", "SC", "N'SC'"},
      {"MG19_RAGGRCF1", "R1", "N'R1'"},
      {"MG19_RAGGRCF2", "R2", "N'R2'"},
      {"MG19_RAGGCRF3", "R3", "N'R3'"},
      {"MG19_CODICLFATT", std::int32_t{13}, "13"},
      {"MG19_INDCLIFAT", std::int16_t{14}, "14"},
      {"MG19_FLGDATICLFAT", std::int16_t{1}, "1"},
      {"MG19_CODDOCUM_MG3G", "FT", "N'FT'"},
      {"MG19_TIPOCLXDOC", std::int16_t{17}, "17"},
      {"MG19_INDDESDOCEST", std::int16_t{18}, "18"},
      {"MG19_LINGUA_MG52", "IT", "N'IT'"},
      {"MG19_INDSTSCADEST", std::int16_t{20}, "20"},
      {"MG19_SC1PERCOR", number("21.50"), "21.50"},
      {"MG19_SC2PERCOR", number("-22.00"), "-22.00"},
      {"MG19_SC3PERCOR", number("0.00"), "0.00"},
      {"MG19_SCIMPCOR", number("24.1230"), "24.1230"},
      {"MG19_MAGPERCOR", number("25"), "25"},
      {"MG19_MAGIMPCOR", number("922337203685477.5807"), "922337203685477.5807"},
      {"MG19_SCPERPIEDE", number("27.7"), "27.7"},
      {"MG19_FLGSPEINC", std::int16_t{0}, "0"},
      {"MG19_FLGSPBOL", std::int16_t{-1}, "-1"},
      {"MG19_INDSPESECUM", std::int16_t{30}, "30"},
      {"MG19_SCAGLSPBANC", std::int16_t{31}, "31"},
      {"MG19_SPESEF1", "S1", "N'S1'"},
      {"MG19_SPESEF2", "S2", "N'S2'"},
      {"MG19_FLGESCLSPEPOR", std::int16_t{34}, "34"},
      {"MG19_INDCLIBLOC", std::int16_t{35}, "35"},
      {"MG19_CODLIVBLOC", "LB", "N'LB'"},
      {"MG19_DATABLOCCO", day(2024, 2, 29), "'20240229'"},
      {"MG19_NOTEBLOC", "nota, con virgola", "N'nota, con virgola'"},
      {"MG19_CODPREVRAGB", "PR", "N'PR'"},
      {"MG19_CODDESTPREV", "DP", "N'DP'"},
      {"MG19_TESTOF1", " blank ", "N' blank '"},
      {"MG19_INDTESTOF1", std::int16_t{42}, "42"},
      {"MG19_TESTOF2", "T2", "N'T2'"},
      {"MG19_INDTESTOF2", std::int16_t{44}, "44"},
      {"MG19_DATACREAZ", *Date::of(2020, 1, 15, 9, 30, 5), "'20200115 09:30:05'"},
      {"MG19_DATAULTVAR", day(1999, 12, 31), "'19991231'"},
      {"MG19_DATADISMIS", *Date::of(2025, 1, 1, 0, 0, 1), "'20250101 00:00:01'"},
      {"MG19_DATAULTDOC", day(2024, 5, 10), "'20240510'"},
      {"MG19_DATAULTFAT", day(2024, 5, 11), "'20240511'"},
      {"MG19_DATAULTORD", day(2024, 5, 12), "'20240512'"},
      {"MG19_DATAULTCALSP", day(2024, 5, 13), "'20240513'"},
      {"MG19_LISPIUART_LI26", "LI", "N'LI'"},
      {"MG19_LISTMAG", std::int16_t{53}, "53"},
      {"MG19_PUNLIS99PRE", std::int16_t{54}, "54"},
      {"MG19_FLGPRZCAMP", std::int16_t{55}, "55"},
      {"MG19_INDARRL96", std::int16_t{56}, "56"},
      {"MG19_INDARRINFAT", std::int16_t{57}, "57"},
      {"MG19_IMPDAARROT", number("0.0500"), "0.0500"},
      {"MG19_IMPARROTPREC", number("59.0001"), "59.0001"},
      {"MG19_CODRIFNUM", std::int32_t{60}, "60"},
      {"MG19_CODRIFALF", "RA", "N'RA'"},
      {"MG19_INDGESFIDO", std::int16_t{62}, "62"},
      {"MG19_FIDOAZIENDALE", number("63.0000"), "63.0000"},
      {"MG19_FIDOFACTORING", number("0.0001"), "0.0001"},
      {"MG19_IDMEDIA_CG99", std::int32_t{65}, "65"},
  };
}

/// Text of the statement that copies sales data written as `values` say.
inline std::string salesStatement(const std::vector<SalesValue>& values) {
  std::string columns;
  std::string written;
  for (const SalesValue& column : values) {
    columns += (columns.empty() ? "" : ", ") + column.name;
    written += (written.empty() ? "" : ", ") + column.written;
  }
  return "INSERT INTO MG19_CLIFORVA (" + columns + ") VALUES (" + written + ")";
}

/// Text of a statement that writes a master row with the values `written`.
inline std::string masterStatement(const std::string& written) {
  return "INSERT INTO CG44_CLIFOR (CG44_DITTA_CG18, CG44_TIPOCF, CG44_CLIFOR, CG44_CODICE_CG16, "
         "CG44_GRUPPO_CG10, CG44_CONTO_CG24, CG44_CONTOR_CG24, CG44_CODPAG_CG62, CG44_GGSCADFIX, "
         "CG44_CODABI_CG12, CG44_CODCAB_CG13, CG44_TIPOCF_CG40, CG44_INTERMEDIO_CG40, "
         "CG44_CODICE_CG08, CG44_CODICE_CG28, CG44_IDAGENTE_MG17, CG44_CODSEDE_CG31, "
         "CG44_IDMEDIA_CG99, CG44_FLGATTIVO) VALUES (" +
         written + ")";
}

/// Customer 120 of company 5, in the group of the main company 10 with the companies 12 and 15.
class CopiesTest : public ComponentTest {
 protected:
  CopiesTest() {
    group(10, {5, 12, 15});
    in().Pvar_CliFor = std::int32_t{120};
    master = {std::int32_t{5},
              std::int16_t{0},
              std::int32_t{120},
              std::int32_t{3005},
              std::int32_t{2},
              "0401120",
              "0401999",
              "BB30",
              std::int16_t{15},
              std::int32_t{1030},
              std::int32_t{14200},
              std::int16_t{0},
              std::int32_t{7},
              "AT",
              "E15",
              std::int32_t{501},
              std::int32_t{3},
              std::int32_t{808},
              std::int16_t{1}};
    connection->answerPrefix(" SELECT     DST.MG17_IDAGENTE",
                             rowSet({"IDAGENTE"}, {std::int32_t{510}}));
    present("CG40_ANADITTAINTER");
    present("CG31_ANADITTASEDI");
    script();
  }

  /// A read of `table` finds a row everywhere.
  void present(const std::string& table) const {
    connection->answerPrefix("SELECT * FROM " + table, rowSet({"X"}, {std::int16_t{1}}));
  }
  void set(const std::string& column, Variant value) {
    for (std::size_t i = 0; i < masterColumns().size(); ++i) {
      if (masterColumns()[i] == column) {
        master[i] = std::move(value);
        script();
        return;
      }
    }
    ADD_FAILURE() << "no column " << column;
  }
  void script() const {
    connection->answerPrefix("SELECT * FROM CG44_CLIFOR", rowSet(masterColumns(), master));
  }
  void sales(const std::vector<SalesValue>& row) const {
    std::vector<std::string> names;
    std::vector<Variant> values;
    for (const SalesValue& column : row) {
      names.push_back(column.name);
      values.push_back(column.value);
    }
    connection->answerPrefix("SELECT * FROM MG19_CLIFORVA", rowSet(names, values));
  }
  /// Inserts of `table`, in order.
  [[nodiscard]] Lines inserts(const std::string& table) const {
    Lines texts;
    for (const Operation& operation : connection->operations) {
      if (operation.sql.starts_with("INSERT INTO " + table + " ")) {
        texts.push_back(operation.sql);
      }
    }
    return texts;
  }

  std::vector<Variant> master;
};

}  // namespace azcoll::testing
