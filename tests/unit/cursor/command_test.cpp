#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "cursor/native_connection.h"
#include "fake_connection.h"

namespace azcoll::cursor {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// A connection with one procedure, which gives the customers and doubles what it is given.
class ProcedureConnection final : public FakeConnection {
 public:
  [[nodiscard]] std::shared_ptr<NativeProcedure> findProcedure(std::string_view name) override {
    log.push_back("find " + std::string{name});
    return std::make_shared<Doubling>(*this);
  }

  std::vector<std::string> log;

 private:
  class Doubling final : public NativeProcedure {
   public:
    explicit Doubling(ProcedureConnection& connection)
        : NativeProcedure{{{"@Input", ParameterDirection::Input},
                           {"@Output", ParameterDirection::Output}}},
          connection_{connection} {}

    ExecutionResult call(std::vector<Variant>& values, int timeoutSeconds) override {
      connection_.log.push_back("call " + values.at(0).text() + " within " +
                                std::to_string(timeoutSeconds));
      const std::int32_t doubled = 2 * values.at(0).toInt32();
      values = {Variant{"not an output"}, Variant{doubled}};
      ExecutionResult result = resultOf(customers());
      result.recordsAffected = 5;
      return result;
    }

   private:
    ProcedureConnection& connection_;
  };
};

class Commands : public testing::Test {
 protected:
  std::shared_ptr<ProcedureConnection> connection = std::make_shared<ProcedureConnection>();
  std::shared_ptr<Command> command = connection->newCommand();
  std::int64_t affected = 0;

  void SetUp() override {
    command->setActiveConnection(connection);
    command->setCommandText("P");
    command->setCommandType(CommandOption::StoredProcedure);
  }
};

TEST_F(Commands, CallAProcedureAndTakeItsOutputs) {
  command->setCommandTimeout(7);
  command->parameters().item("@input").setValue(Variant{21});
  const auto rows = command->execute(affected, CommandOption::Unspecified);
  ASSERT_NE(rows, nullptr);
  EXPECT_EQ(rows->recordCount(), 3);
  EXPECT_EQ(affected, 5);
  EXPECT_EQ(command->parameters().item("@Output").value(), Variant{42});
  EXPECT_EQ(command->parameters().item(0).value(), Variant{21}) << "an input stays as it was set";
  EXPECT_THAT(connection->log, ElementsAre("find P", "call 21 within 7"));
}

TEST_F(Commands, AskForTheParametersOnceAndAgainForAnotherText) {
  EXPECT_EQ(command->parameters().count(), 2U);
  EXPECT_EQ(command->parameters().item(1).direction(), ParameterDirection::Output);
  command->setCommandText("Q");
  EXPECT_EQ(command->parameters().count(), 2U);
  EXPECT_THAT(connection->log, ElementsAre("find P", "find Q"));
}

TEST_F(Commands, RefuseAParameterThatTheProcedureDoesNotDeclare) {
  EXPECT_EQ(failureOf([&] { static_cast<void>(command->parameters().item("@X")); }),
            "Elemento non trovato nella raccolta: @X");
  EXPECT_EQ(failureOf([&] { static_cast<void>(command->parameters().item(2)); }),
            "Elemento non trovato nella raccolta: 2");
}

TEST_F(Commands, KeepAParameterReadableAfterTheyLetGoOfTheConnection) {
  Parameter& output = command->parameters().item("@Output");
  command->parameters().item("@Input").setValue(Variant{4});
  static_cast<void>(command->execute(affected, CommandOption::Unspecified));
  const std::weak_ptr<ProcedureConnection> watched = connection;
  command->setActiveConnection(nullptr);
  connection.reset();
  EXPECT_TRUE(watched.expired());
  EXPECT_EQ(output.value(), Variant{8});
  EXPECT_EQ(failureOf([&] { static_cast<void>(command->parameters().count()); }),
            "Connessione mancante");
}

TEST_F(Commands, RunATextOnTheirConnection) {
  EXPECT_EQ(command->execute(affected, CommandOption::Text), nullptr);
  EXPECT_THAT(connection->log, IsEmpty());
}

TEST_F(Commands, RefuseAConnectionOfAnotherProvider) {
  const auto other = std::make_shared<FakeConnection>();
  other->providerName = "other";
  for (const std::shared_ptr<Connection>& each :
       {std::shared_ptr<Connection>{std::make_shared<ForeignConnection>()},
        std::shared_ptr<Connection>{other}}) {
    EXPECT_EQ(failureOf([&] { command->setActiveConnection(each); }),
              "Connessione di un altro fornitore");
  }
}

}  // namespace
}  // namespace azcoll::cursor
