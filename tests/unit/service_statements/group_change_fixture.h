#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "service_fixture.h"

namespace azcoll::test {

/// Customer 100 of company 20, whose group has the companies 10, 30 and 40 as well.
class GroupChangeTest : public ServiceTest {
 protected:
  GroupChangeTest() {
    service.CPInput->Pvar_CliFor = std::int32_t{100};
    companies({10, 30, 40});
  }

  /// The procedure gives these companies; the accounting type of the first row is `first`, that of
  /// the others `others`.
  void companies(const std::vector<std::int32_t>& codes, const Variant& first = std::int16_t{0},
                 const Variant& others = std::int16_t{0}) {
    connection->onProcedure = [=](Parameters&) {
      ProcedureAnswer answer{rowSet({"DITTA", "PRINCIPALE", "CG86_INDTIPOCONT"}, {}), {}};
      for (const std::int32_t code : codes) {
        const Variant type = code == codes.front() ? first : others;
        for (const Variant& value : {Variant{code}, Variant{std::int16_t{0}}, type}) {
          answer.rows.values.push_back(value);
        }
      }
      return answer;
    };
  }
  void failProcedure(Failure failure, const std::string& description) {
    connection->onProcedure = [this, failure, description](Parameters&) -> ProcedureAnswer {
      connection->raise(failure, description, kProcedure);
    };
  }

  static std::map<std::string, Variant> given(const Operation& command) {
    return {command.parameters.begin(), command.parameters.end()};
  }
  /// The flag that the procedure gets from a call that does not change it.
  Variant duplicationFlag() {
    connection->onProcedure = [](Parameters&) { return ProcedureAnswer{}; };
    (void)service.GetDittaPrincipale();
    return given(named("CommandExecute").back())["@GestioneDuplicazioneCliFor"];
  }
  /// Names of everything that reached the connection, in order.
  [[nodiscard]] Lines operationNames() const {
    Lines names;
    for (const Operation& operation : connection->operations) {
      names.push_back(operation.name);
    }
    return names;
  }
  void expectState(std::int16_t stato, const std::string& message) const {
    EXPECT_EQ(service.Stato, Variant{stato});
    EXPECT_EQ(service.Errore, Variant{message});
  }
  void expectSilentSuccess() const {
    EXPECT_EQ(service.Stato, Variant{std::int16_t{0}});
    EXPECT_TRUE(service.Errore.isEmpty());
  }
  [[nodiscard]] std::size_t transactionSteps() const {
    return count("BeginTrans") + count("CommitTrans") + count("RollbackTrans");
  }
};

}  // namespace azcoll::test
