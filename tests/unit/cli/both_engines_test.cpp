// The same commands on a server and on the embedded engine print the same and end the same.

#include <regex>

#include "server_test.h"

namespace azcoll::cli {
namespace {

class BothEngines : public ServerTest {
 protected:
  void SetUp() override {
    ServerTest::SetUp();
    if (!IsSkipped()) {
      const Outcome there = azcoll("crea", "--connessione", server_, "--esempio");
      const Outcome here = azcoll("crea", "--connessione", embedded_ + ";Create=True", "--esempio");
      ASSERT_EQ(there.code, ExitCode::Ok) << there.err;
      ASSERT_EQ(here.code, ExitCode::Ok) << here.err;
      EXPECT_EQ(there.err, here.err);
    }
  }

  Outcome onEmbedded(std::vector<std::string> command) const {
    command.insert(command.begin() + 1, {"--connessione", embedded_});
    return azcollWith("", command);
  }

  /// The start of an `errore` is the database's own wording; its end names the method.
  static std::string withoutServersWords(const std::string& text) {
    static const std::regex message{R"re("errore":"(?:[^"\\]|\\.)* in (\w+)")re"};
    return std::regex_replace(text, message, R"("errore":"… in $1")");
  }

  /// Runs the command on both; what it gave on the embedded engine.
  Outcome expectSame(const std::vector<std::string>& command) const {
    const Outcome here = onEmbedded(command);
    std::vector<std::string> there = command;
    there.insert(there.begin() + 1, {"--connessione", server_});
    const Outcome other = azcollWith("", there);
    std::string words;
    for (const std::string& word : command) {
      words += word + " ";
    }
    EXPECT_EQ(withoutServersWords(other.out), withoutServersWords(here.out)) << words;
    EXPECT_EQ(other.err, here.err) << words;
    EXPECT_EQ(other.code, here.code) << words;
    return here;
  }

  Outcome call(const std::string& method, const std::vector<std::string>& fields,
               bool json = true) const {
    std::vector<std::string> command{"esegui", method};
    for (const std::string& field : fields) {
      command.insert(command.end(), {"--imposta", field});
    }
    if (json) {
      command.emplace_back("--json");
    }
    return expectSame(command);
  }

  /// The rows of every table that the calls write.
  void expectSameRows() const {
    for (const char* table : {"CG44_CLIFOR", "MG19_CLIFORVA", "MG22_CLIFORDEST", "CG70_NUMERDOC",
                              "CG40_ANADITTAINTER", "CG31_ANADITTASEDI"}) {
      const std::string order =
          std::string{table} == "CG44_CLIFOR" ? " ORDER BY 1, 2, 3" : " ORDER BY 1, 2, 3, 4";
      expectSame({"sql", "--json", std::string{"SELECT * FROM "} + table + order});
    }
    expectSame({"sql", "--json", "SELECT * FROM CG86_AZIENDECOLL ORDER BY 1"});
  }

  std::string embedded_ = "Provider=embedded;Data Source=" + path("qui.db");
};

TEST_F(BothEngines, GiveTheSameOnTheExample) {
  const Outcome diagnosis = onEmbedded({"diagnosi"});
  const Outcome there = azcoll("diagnosi", "--connessione", server_);
  EXPECT_EQ(diagnosis.code, ExitCode::Ok);
  EXPECT_EQ(there.code, diagnosis.code) << there.out << there.err;
  // But for what each says of rights, the numbers and the verdict are the same.
  EXPECT_EQ(there.out.substr(0, there.out.find(", 7")),
            diagnosis.out.substr(0, diagnosis.out.find(", il file")));
  EXPECT_EQ(there.out.substr(there.out.find('\n')), diagnosis.out.substr(diagnosis.out.find('\n')));

  for (const char* company : {"5", "10", "12", "20", "40"}) {
    for (const char* form : {"--json", "--dot"}) {
      expectSame({"gruppo", "--ditta", company, "--anno", "2025", form});
    }
    expectSame({"gruppo", "--ditta", company, "--anni", "2023-2025"});
    expectSame({"attivita", "--ditta", company, "--anno", "2025"});
    expectSame({"attivita", "--ditta", company, "--anno", "2025", "--json"});
  }
  expectSame({"gruppo", "--ditta", "999", "--anno", "2025"});
}

TEST_F(BothEngines, GiveTheSameForTheMethods) {
  for (const char* method :
       {"DitteCollegate", "DitteCollegatePiuPrincipale", "RecordsetDitteCollegate",
        "RecordsetDitteCollegatePiuPrincipale", "ControllaDittaCollegata",
        "VerificaAnnoIvaEsercizioContabile", "LeggiAttivitàCollegate"}) {
    for (const char* company : {"5", "10", "30"}) {
      call(method, {std::string{"Pvar_Ditta="} + company, "AnnoSolare=2025"});
    }
  }
  EXPECT_EQ(
      call("DuplicaCliFor", {"Pvar_Ditta=5", "Pvar_CliFor=120", "AnnoSolare=2025"}, false).code,
      ExitCode::Ok);
  call("DuplicaCliFor",
       {"Pvar_Ditta=5", "Pvar_CliFor=205", "Pint_TipoCF=Fornitore", "AnnoSolare=2025"});
  call("DuplicaCliFor", {"Pvar_Ditta=5"});
  call("ModificaCliFor", {"Pvar_Ditta=5", "Pvar_CliFor=110", "AnnoSolare=2025"});
  call("EliminaCliFor", {"Pvar_Ditta=5", "Pvar_CliFor=112", "AnnoSolare=2025"});
  expectSameRows();
  call("DuplicaAttività", {"Pvar_Ditta=40", "AnnoSolare=2026", "AnnoSolareDaDuplicare=2025"});
  call("VerificaEsistenzaAttivita", {"Pvar_Ditta=40", "AnnoSolare=2025", "CodiceAttività=9999"});
  expectSameRows();
}

}  // namespace
}  // namespace azcoll::cli
