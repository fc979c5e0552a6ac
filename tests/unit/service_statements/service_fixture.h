#pragma once

#include <cstdint>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "service/service.h"
#include "support/scripted_connection.h"

namespace azcoll::test {

using Lines = std::vector<std::string>;
using Ints = std::vector<int>;

inline constexpr const char* kProcedure = "PC_GetDitteCollegate";

/// What the numbering object was given when it was run.
struct Numbering {
  std::int16_t TipoDocumento = 0;
  Variant Ditta{};
  std::int16_t Modo = 0;
  std::string Sezione{};
  std::int16_t Anno = -1;
  Date Data{};
  std::string Codice{};
  const Connection* Connessione = nullptr;
  std::string StringaConnessione{};
};

/// A platform without a database provider: a fixed today and a numbering object that records.
class ScriptedPlatform final : public Platform {
 public:
  std::shared_ptr<ScriptedConnection> connection = std::make_shared<ScriptedConnection>();
  std::vector<Numbering> numberings;
  std::vector<std::string> numberingLife;  ///< each object's "new", company and "released"
  std::vector<NumerazioneDocumenti::Ingresso> inputs;  ///< of all objects, as they came
  int todays = 0;                                      ///< how often today was looked up
  std::vector<std::pair<std::string, std::int32_t>> numberingStates;  ///< status by company, else 0
  Date now{.year = 2024, .month = 3, .day = 15};

  [[nodiscard]] std::shared_ptr<Connection> newConnection(std::string_view) override {
    return connection;
  }
  [[nodiscard]] Date today() override {
    ++todays;
    return now;
  }
  [[nodiscard]] std::unique_ptr<NumerazioneDocumenti> newNumbering() override {
    numberingLife.emplace_back("new");
    return std::make_unique<Recorder>(*this);
  }

 private:
  class Recorder final : public NumerazioneDocumenti {
   public:
    explicit Recorder(ScriptedPlatform& platform) : platform_{platform} {}
    Recorder(const Recorder&) = delete;
    Recorder(Recorder&&) = delete;
    Recorder& operator=(const Recorder&) = delete;
    Recorder& operator=(Recorder&&) = delete;
    ~Recorder() override { platform_.numberingLife.emplace_back("released"); }
    void imposta(Ingresso ingresso, const Variant& valore) override {
      platform_.inputs.push_back(ingresso);
      NumerazioneDocumenti::imposta(ingresso, valore);
    }
    void ElaboraNumerazione() override {
      const std::string company = Ditta.text();
      platform_.numberingLife.push_back(company);
      platform_.numberings.push_back(Numbering{TipoDocumento, Ditta, Modo, Sezione, Anno, Data,
                                               Codice.text(), Connessione.get(),
                                               StringaConnessione});
      platform_.connection->report({.name = "Numera", .sql = company});
      for (const auto& [ditta, stato] : platform_.numberingStates) {
        stato_ = ditta == company ? stato : stato_;
      }
    }
    [[nodiscard]] std::int32_t Stato() const override { return stato_; }

   private:
    ScriptedPlatform& platform_;
    std::int32_t stato_ = 0;
  };
};

/// A row built column by column.
class Row {
 public:
  Row& set(std::string name, Variant value) {
    for (std::size_t index = 0; index < names_.size(); ++index) {
      if (names_[index] == name) {
        values_[index] = std::move(value);
        return *this;
      }
    }
    names_.push_back(std::move(name));
    values_.push_back(std::move(value));
    return *this;
  }
  [[nodiscard]] ResultSet in(const std::string& table) const {
    return rowSet(names_, values_, table);
  }
  [[nodiscard]] const std::vector<std::string>& names() const { return names_; }
  [[nodiscard]] const std::vector<Variant>& values() const { return values_; }

 private:
  std::vector<std::string> names_;
  std::vector<Variant> values_;
};

/// A service on a scripted connection; the current company is 20 in the year 2024.
class ServiceTest : public ::testing::Test {
 protected:
  ServiceTest() {
    service.CPInput->Connessione = connection;
    service.CPInput->Pvar_Ditta = std::int32_t{20};
    service.CPInput->AnnoSolare = std::int32_t{2024};
  }

  /// Operations of one name.
  [[nodiscard]] std::vector<Operation> named(std::string_view name) const {
    std::vector<Operation> found;
    for (const Operation& operation : connection->operations) {
      if (operation.name == name) {
        found.push_back(operation);
      }
    }
    return found;
  }
  [[nodiscard]] std::size_t count(std::string_view name) const { return named(name).size(); }

  /// What reached the database and the numbering, one line each, in order: the statements as they
  /// are, everything else as its name and its text.
  [[nodiscard]] std::vector<std::string> transcript() const {
    std::vector<std::string> lines;
    for (const Operation& operation : connection->operations) {
      if (operation.name == "Execute" || operation.name == "CommandExecute") {
        lines.push_back(operation.sql);
      } else if (operation.name.ends_with("Trans")) {
        lines.push_back(operation.name);
      } else if (operation.name == "Open" || operation.name == "OpenWithSource" ||
                 operation.name == "UpdateBatch" || operation.name == "Numera") {
        lines.push_back(operation.name + " " + operation.sql);
      }
    }
    return lines;
  }
  /// The lines of the transcript that begin with `prefix`.
  [[nodiscard]] std::vector<std::string> lines(std::string_view prefix) const {
    std::vector<std::string> found;
    for (std::string& line : transcript()) {
      if (line.starts_with(prefix)) {
        found.push_back(std::move(line));
      }
    }
    return found;
  }

  [[nodiscard]] std::string errore() const { return service.Errore.text(); }

  std::shared_ptr<ScriptedPlatform> platform = std::make_shared<ScriptedPlatform>();
  std::shared_ptr<ScriptedConnection> connection = platform->connection;
  CLSCO_AZIENDECOLL service{platform};
};

/// Customer 100 of company 20, which is linked to the main company 10 together with 30 and 40. The
/// intermediary 7 and the branch 2 exist everywhere; agent 33 is 91 in company 10.
class DuplicationTest : public ServiceTest {
 protected:
  DuplicationTest() {
    service.CPInput->Pvar_CliFor = std::int32_t{100};
    group("10", {30, 40}, "30, 40");
    connection->answerPrefix("SELECT * FROM CG40_ANADITTAINTER", rowSet({"X"}, {1}));
    connection->answerPrefix("SELECT * FROM CG31_ANADITTASEDI", rowSet({"X"}, {1}));
    connection->answerPrefix(" SELECT     DST", rowSet({"IDAGENTE"}, {std::int32_t{91}}));
    script();
  }

  /// The procedure names `main` (none when "") and hands out `targets` and `list`.
  void group(const std::string& main, const std::vector<std::int32_t>& targets,
             const std::string& list, const Variant& indTipoCont = std::int16_t{0}) {
    connection->onProcedure = [=](Parameters& parameters) {
      const bool whole = parameters.item("@EscludiDittaPrincipale").value().toInt16() == 0;
      ProcedureAnswer answer{rowSet({"DITTA", "PRINCIPALE", "CG86_INDTIPOCONT"}, {}),
                             {{"@DitteCollegate", Variant{list}}}};
      if (whole && !main.empty()) {
        answer.rows.values = {Variant{std::stoi(main)}, Variant{std::int16_t{1}}, indTipoCont};
      }
      for (const std::int32_t target : targets) {
        for (const Variant& value : {Variant{target}, Variant{std::int16_t{0}}, indTipoCont}) {
          answer.rows.values.push_back(value);
        }
      }
      return answer;
    };
  }

  /// A master row with every column filled.
  static Row filledMaster() {
    Row row;
    row.set("CG44_DITTA_CG18", std::int32_t{20}).set("CG44_TIPOCF", std::int16_t{0});
    row.set("CG44_CLIFOR", std::int32_t{100}).set("CG44_CODICE_CG16", std::int32_t{5001});
    row.set("CG44_GRUPPO_CG10", std::int16_t{3}).set("CG44_CONTO_CG24", "C240");
    row.set("CG44_CONTOR_CG24", "R240").set("CG44_CODPAG_CG62", "P60");
    row.set("CG44_GGSCADFIX", std::int16_t{15}).set("CG44_CODABI_CG12", std::int32_t{1005});
    row.set("CG44_CODCAB_CG13", std::int32_t{3200}).set("CG44_TIPOCF_CG40", std::int16_t{0});
    row.set("CG44_INTERMEDIO_CG40", std::int32_t{7}).set("CG44_CODICE_CG08", "IT");
    row.set("CG44_CODICE_CG28", "I22").set("CG44_IDAGENTE_MG17", std::int32_t{33});
    row.set("CG44_CODSEDE_CG31", std::int16_t{2}).set("CG44_IDMEDIA_CG99", std::int32_t{88});
    row.set("CG44_FLGATTIVO", std::int16_t{1});
    return row;
  }

  /// Answers the read of the source row (whatever its code) with `master`.
  void script() { connection->answerPrefix("SELECT * FROM CG44_CLIFOR", master.in("CG44_CLIFOR")); }
  /// Makes a code taken in some company of the group.
  void take(const std::string& code) {
    connection->answer(
        "SELECT CG44_CLIFOR FROM CG44_CLIFOR WHERE CG44_DITTA_CG18 IN(30, 40, 10) AND "
        "CG44_TIPOCF = 0 AND CG44_CLIFOR = " +
            code,
        rowSet({"CG44_CLIFOR"}, {std::stoi(code)}));
  }

  /// Expects the full text of the only statement that begins with `prefix`.
  void expectOnly(std::string_view prefix, const std::string& text) const {
    EXPECT_EQ(lines(prefix), std::vector<std::string>{text});
  }
  void expectSuccess() const {
    EXPECT_EQ(service.Stato, Variant{std::int16_t{0}});
    EXPECT_TRUE(service.Errore.isEmpty());
    EXPECT_EQ(count("CommitTrans"), 1U);
    EXPECT_EQ(count("RollbackTrans"), 0U);
  }

  Row master = filledMaster();
};

/// Opening of every statement that writes a master row.
inline constexpr std::string_view kMasterInsert =
    "INSERT INTO CG44_CLIFOR (CG44_DITTA_CG18, CG44_TIPOCF, CG44_CLIFOR, CG44_CODICE_CG16, "
    "CG44_GRUPPO_CG10, CG44_CONTO_CG24, CG44_CONTOR_CG24, CG44_CODPAG_CG62, CG44_GGSCADFIX, "
    "CG44_CODABI_CG12, CG44_CODCAB_CG13, CG44_TIPOCF_CG40, CG44_INTERMEDIO_CG40, "
    "CG44_CODICE_CG08, CG44_CODICE_CG28, CG44_IDAGENTE_MG17, CG44_CODSEDE_CG31, "
    "CG44_IDMEDIA_CG99, CG44_FLGATTIVO) VALUES (";

}  // namespace azcoll::test
