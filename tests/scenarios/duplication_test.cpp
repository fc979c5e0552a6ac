// A customer/supplier saved in one company becomes common to the group: what the database holds
// after.

#include "scenarios/company_database.h"

namespace azcoll::test {
namespace {

class Duplication : public CompanyDatabase {
 protected:
  /// Code, active, account, terms, intermediary, branch, agent and media of a customer per company.
  Lines copies(int registryEntry) {
    return rows(
        join("SELECT CG44_DITTA_CG18, CG44_CLIFOR, CG44_FLGATTIVO, CG44_CONTO_CG24, "
             "CG44_CODPAG_CG62, CG44_INTERMEDIO_CG40, CG44_CODSEDE_CG31, CG44_IDAGENTE_MG17, "
             "CG44_IDMEDIA_CG99 FROM CG44_CLIFOR WHERE CG44_CODICE_CG16 = ",
             registryEntry, " ORDER BY CG44_DITTA_CG18"));
  }
};

TEST_F(Duplication, MovesACustomerWhoseCodeIsTakenAndSpreadsIt) {
  duplicate(5, Cliente, 120);

  EXPECT_EQ(service.Stato, Variant{std::int16_t{0}});
  EXPECT_TRUE(service.Errore.isEmpty());
  EXPECT_EQ(service.CPInput->Pvar_CliFor, Variant{122});
  EXPECT_EQ(copies(3005), (Lines{"5|122|1|0401120|BB30|7|3|501|808",   //
                                 "10|122|1|0401120|BB30|7|3|510|808",  //
                                 "12|122|0|NULL|NULL|7|3|NULL|NULL",   //
                                 "15|122|0|NULL|NULL|7|3|NULL|NULL"}));
  EXPECT_FALSE(endOpenTransaction());
}

TEST_F(Duplication, MovesEveryRowOfTheThirteenSubTablesUnchangedButForTheCode) {
  const Lines before = picture();
  duplicate(5, Cliente, 120);
  const Difference change = difference(before, picture());

  for (const std::string_view table : tables::kSubTables) {
    const Lines gone = ofTable(change.gone, table);
    Lines moved;
    for (const std::string& line : gone) {
      ASSERT_TRUE(line.starts_with("5|0|120|")) << table << ": " << line;
      moved.push_back("5|0|122" + line.substr(7));
    }
    Lines come = ofTable(change.come, table);
    // The main company receives the sales data and nothing else of the sub-tables.
    std::erase_if(come, [](const std::string& line) { return line.starts_with("10|"); });
    EXPECT_FALSE(gone.empty()) << table;
    EXPECT_EQ(come, moved) << table;
  }
}

TEST_F(Duplication, WritesNothingBesidesWhatTheCustomerNeeds) {
  const Lines before = picture();
  duplicate(5, Cliente, 120);
  const Difference change = difference(before, picture());

  EXPECT_EQ(ofTable(change.gone, "CG44_CLIFOR").size(), 1U);
  EXPECT_EQ(ofTable(change.come, "CG44_CLIFOR").size(), 4U);
  EXPECT_EQ(ofTable(change.come, "CG40_ANADITTAINTER"),
            (Lines{"10|0|7|Studio dell'Aquila|900", "12|0|7|Studio dell'Aquila|900",
                   "15|0|7|Studio dell'Aquila|900"}));
  EXPECT_EQ(ofTable(change.come, "CG31_ANADITTASEDI"),
            (Lines{"10|3|Via dell'Arco 3|06012|Città di Castello|PG|31",
                   "12|3|Via dell'Arco 3|06012|Città di Castello|PG|31",
                   "15|3|Via dell'Arco 3|06012|Città di Castello|PG|31"}));
  EXPECT_EQ(ofTable(change.gone, "CG70_NUMERDOC"), (Lines{"12|00|0|901|120"}));
  EXPECT_EQ(ofTable(change.come, "CG70_NUMERDOC"), (Lines{"12|00|0|901|122", "15|00|0|901|122"}));
  for (const char* table : {"CG4E_CFCOINTESTATI", "MG17_AGENTI", "CG86_AZIENDECOLL"}) {
    EXPECT_TRUE(ofTable(change.gone, table).empty()) << table;
    EXPECT_TRUE(ofTable(change.come, table).empty()) << table;
  }
}

TEST_F(Duplication, CopiesTheSalesDataWholeIntoTheMainCompanyOnly) {
  const std::string columns = [] {
    std::string list;
    for (const tables::SalesColumn& column : tables::kSalesColumns) {
      if (column.name != "MG19_DITTA_CG18") {
        list += join(list.empty() ? "" : ", ", column.name);
      }
    }
    return list;
  }();
  duplicate(5, Cliente, 120);
  const auto sales = [&](int company) {
    return rows(join("SELECT ", columns, " FROM MG19_CLIFORVA WHERE MG19_DITTA_CG18 = ", company,
                     " AND MG19_TIPOCF_CG44 = 0 AND MG19_CLIFOR_CG44 = 122"));
  };
  ASSERT_EQ(sales(5).size(), 1U);
  EXPECT_EQ(sales(10), sales(5));
  EXPECT_TRUE(sales(12).empty());
  EXPECT_TRUE(sales(15).empty());
}

TEST_F(Duplication, KeepsACodeThatIsFreeEverywhere) {
  const Lines before = picture();
  duplicate(5, Cliente, 130);

  EXPECT_EQ(service.Stato, Variant{std::int16_t{0}});
  EXPECT_EQ(service.CPInput->Pvar_CliFor, Variant{130});
  // The agent 502 has no counterpart in the main company; the intermediary 8 has no description.
  EXPECT_EQ(copies(3003), (Lines{"5|130|1|0401130|RB90|8|1|502|NULL",    //
                                 "10|130|1|0401130|RB90|8|1|NULL|NULL",  //
                                 "12|130|0|NULL|NULL|8|1|NULL|NULL",     //
                                 "15|130|0|NULL|NULL|8|1|NULL|NULL"}));
  const Difference change = difference(before, picture());
  EXPECT_EQ(ofTable(change.come, "CG40_ANADITTAINTER"),
            (Lines{"10|0|8|NULL|NULL", "12|0|8|NULL|NULL", "15|0|8|NULL|NULL"}));
  EXPECT_EQ(ofTable(change.come, "CG31_ANADITTASEDI"),
            (Lines{"15|1|Via Roma 1|47121|Forlì|FC|NULL"}));
  EXPECT_TRUE(ofTable(change.gone, "CG44_CLIFOR").empty());
}

TEST_F(Duplication, WritesAMissingCreationDateAsTheFirstOfJanuary1900) {
  duplicate(5, Cliente, 130);
  EXPECT_EQ(rows("SELECT MG19_DATACREAZ, MG19_DATAULTVAR, MG19_DATADISMIS FROM MG19_CLIFORVA "
                 "WHERE MG19_DITTA_CG18 = 10 AND MG19_CLIFOR_CG44 = 130"),
            (Lines{"01/03/2024|01/01/1900|NULL"}));
}

TEST_F(Duplication, FromTheMainCompanyWritesReducedCopiesOnly) {
  const Lines before = picture();
  duplicate(10, Cliente, 125);

  EXPECT_EQ(service.Stato, Variant{std::int16_t{0}});
  EXPECT_EQ(copies(3007), (Lines{"5|125|0|NULL|NULL|3|1|NULL|NULL",     //
                                 "10|125|1|0401125|RB60|3|1|510|NULL",  //
                                 "12|125|0|NULL|NULL|3|1|NULL|NULL",    //
                                 "15|125|0|NULL|NULL|3|1|NULL|NULL"}));
  EXPECT_TRUE(ofTable(difference(before, picture()).come, "MG19_CLIFORVA").empty());
}

TEST_F(Duplication, ASupplierIsNumberedAsOne) {
  const Lines before = picture();
  duplicate(5, Fornitore, 210);

  EXPECT_EQ(service.Stato, Variant{std::int16_t{0}});
  EXPECT_EQ(service.CPInput->Pvar_CliFor, Variant{211});
  EXPECT_EQ(
      rows("SELECT CG44_DITTA_CG18, CG44_FLGATTIVO FROM CG44_CLIFOR WHERE CG44_TIPOCF = 1 AND "
           "CG44_CLIFOR = 211 ORDER BY CG44_DITTA_CG18"),
      (Lines{"5|1", "10|1", "12|0", "15|0"}));
  EXPECT_EQ(ofTable(difference(before, picture()).come, "CG70_NUMERDOC"),
            (Lines{"10|00|0|902|211", "12|00|0|902|211", "15|00|0|902|211"}));
}

TEST_F(Duplication, ACustomerWithoutSalesDataIntermediaryBranchAndAgentIsCopiedAsItIs) {
  const Lines before = picture();
  duplicate(5, Cliente, 150);

  EXPECT_EQ(service.Stato, Variant{std::int16_t{0}});
  EXPECT_EQ(
      copies(3009),
      (Lines{"5|150|1|NULL|NULL|NULL|NULL|NULL|NULL", "10|150|1|NULL|NULL|NULL|NULL|NULL|NULL",
             "12|150|0|NULL|NULL|NULL|NULL|NULL|NULL", "15|150|0|NULL|NULL|NULL|NULL|NULL|NULL"}));
  const Difference change = difference(before, picture());
  EXPECT_TRUE(ofTable(change.come, "MG19_CLIFORVA").empty());
  EXPECT_TRUE(ofTable(change.come, "CG40_ANADITTAINTER").empty());
}

TEST_F(Duplication, CountsUpPastAThousandTakenCodes) {
  connection->beginTrans();
  for (int code = 120; code < 1120; ++code) {
    if (rows(
            join(
                "SELECT 1 AS X FROM CG44_CLIFOR WHERE CG44_DITTA_CG18 = 15 AND CG44_TIPOCF = 0 AND "
                "CG44_CLIFOR = ",
                code))
            .empty()) {
      run(join(
          "INSERT INTO CG44_CLIFOR (CG44_DITTA_CG18, CG44_TIPOCF, CG44_CLIFOR, CG44_CODICE_CG16, "
          "CG44_FLGATTIVO) VALUES (15, 0, ",
          code, ", 3008, 1)"));
    }
  }
  connection->commitTrans();
  duplicate(5, Cliente, 120);
  EXPECT_EQ(service.Stato, Variant{std::int16_t{0}});
  EXPECT_EQ(service.CPInput->Pvar_CliFor, Variant{1120});
  EXPECT_EQ(copies(3005).size(), 4U);
}

TEST_F(Duplication, ASecondCallFindsItsOwnCodeTakenAndMovesOn) {
  duplicate(5, Cliente, 130);
  service.DuplicaCliFor();

  EXPECT_EQ(service.Stato, Variant{std::int16_t{0}});
  EXPECT_EQ(service.CPInput->Pvar_CliFor, Variant{131});
  EXPECT_EQ(
      rows("SELECT CG44_DITTA_CG18, CG44_CLIFOR FROM CG44_CLIFOR WHERE CG44_CODICE_CG16 = 3003 "
           "ORDER BY CG44_DITTA_CG18, CG44_CLIFOR"),
      (Lines{"5|131", "10|130", "10|131", "12|130", "12|131", "15|130", "15|131"}));
}

TEST_F(Duplication, AGroupWithoutOwnConnectionIsReachedThroughTheConnectionString) {
  // An in-memory database belongs to its connection: a second one starts empty, without the
  // procedure.
  CLSCO_AZIENDECOLL other;
  other.CPInput->StringaConnessione = "Provider=embedded;Data Source=:memory:";
  other.CPInput->Pvar_Ditta = 5;
  other.CPInput->Pvar_CliFor = 120;
  other.DuplicaCliFor();
  EXPECT_EQ(other.Stato, Variant{std::int16_t{0}});
  ASSERT_NE(other.CPInput->Connessione, nullptr);
  EXPECT_TRUE(other.CPInput->Connessione->isOpen());
}

}  // namespace
}  // namespace azcoll::test
