#include "unit/embedded_language/support.h"

// Procedures called through a command.
namespace azcoll::test {
namespace {

class Commands : public testing::Test {
 protected:
  void SetUp() override {
    run(db(), "CREATE TABLE T (ID INT NOT NULL PRIMARY KEY, A INT NULL)");
    run(db(), "INSERT INTO T (ID, A) VALUES (1, 10), (2, 20)");
    run(db(),
        "CREATE PROCEDURE P @ID INT, @D DATETIME = NULL, @V VARCHAR(5) = 'def', @N DECIMAL(9, 2) "
        "= 1.5, @OUT VARCHAR(20) = NULL OUTPUT AS BEGIN SET NOCOUNT ON UPDATE T SET A = A + 1 "
        "SET @OUT = @V + '!' SELECT ID, A, @D AS D, @V AS V, @N AS N FROM T WHERE ID = @ID END");
  }

  Connection& db() { return *connection_; }

  std::shared_ptr<Command> command(const std::string& name) {
    const std::shared_ptr<Command> result = connection_->newCommand();
    result->setActiveConnection(connection_);
    result->setCommandText(name);
    result->setCommandType(CommandOption::StoredProcedure);
    result->setCommandTimeout(30);
    result->setPrepared(true);
    return result;
  }

  static std::shared_ptr<Recordset> execute(Command& command) {
    std::int64_t affected = 0;
    return command.execute(affected, CommandOption::Unspecified);
  }

  Error failure(Command& command) {
    return failureOf([&] { execute(command); });
  }

 private:
  std::shared_ptr<Connection> connection_ = openMemory();
};

TEST_F(Commands, KnowTheParametersOfTheirProcedure) {
  const auto call = command("P");
  Parameters& parameters = call->parameters();
  EXPECT_EQ(parameters.item("@ID").name(), "@ID");
  EXPECT_EQ(parameters.item("@id").direction(), ParameterDirection::Input);
  EXPECT_EQ(parameters.item("@OUT").direction(), ParameterDirection::InputOutput);
  EXPECT_GE(parameters.count(), 5U);
  EXPECT_THROW((void)parameters.item("@NOPE"), Error);
  EXPECT_THROW((void)parameters.item(parameters.count()), Error);
  EXPECT_EQ(parameters.item(parameters.count() - 1).name(), "@OUT");
}

TEST_F(Commands, ReturnRowsAndOutput) {
  const auto call = command("P");
  call->parameters().item("@ID").setValue(std::int32_t{2});
  const auto rows = execute(*call);
  EXPECT_EQ(lines(*rows), Lines{"2|21|NULL|def|1.50"});
  EXPECT_EQ(call->parameters().item("@OUT").value(), Variant("def!"));
}

TEST_F(Commands, TakeAllKindsOfValues) {
  const auto call = command("dbo.P");
  call->parameters().item("@ID").setValue("1");
  call->parameters().item("@D").setValue(*Date::of(2024, 1, 31));
  call->parameters().item("@V").setValue("abcdefgh");
  call->parameters().item("@N").setValue(*Decimal::parse("2.345"));
  EXPECT_EQ(lines(*execute(*call)), Lines{"1|11|31/01/2024|abcde|2.35"});
  EXPECT_EQ(call->parameters().item("@OUT").value(), Variant("abcde!"));
}

TEST_F(Commands, TakeNullForAnswer) {
  const auto call = command("P");
  call->parameters().item("@ID").setValue(std::int16_t{1});
  call->parameters().item("@V").setValue(kNull);
  EXPECT_EQ(lines(*execute(*call)), Lines{"1|11|NULL|NULL|1.50"});
  EXPECT_TRUE(call->parameters().item("@OUT").value().isNull());
}

TEST_F(Commands, RunAgainWithOtherValues) {
  const auto call = command("P");
  call->parameters().item("@ID").setValue(std::int32_t{1});
  EXPECT_EQ(lines(*execute(*call)), Lines{"1|11|NULL|def|1.50"});
  call->parameters().item("@ID").setValue(std::int32_t{2});
  EXPECT_EQ(lines(*execute(*call)), Lines{"2|22|NULL|def|1.50"});
}

TEST_F(Commands, MissTheParametersThatWereNotGiven) {
  const auto call = command("P");
  const Error error = failure(*call);
  EXPECT_EQ(error.info().nativeNumber, 201);
  EXPECT_EQ(error.description(),
            "Procedure or function 'P' expects parameter '@ID', which was not supplied.");
}

TEST_F(Commands, RefuseValuesThatDoNotConvert) {
  const auto call = command("P");
  call->parameters().item("@ID").setValue("abc");
  EXPECT_THROW(execute(*call), Error);
  call->parameters().item("@ID").setValue(std::int64_t{3000000000});
  EXPECT_THROW(execute(*call), Error);
  EXPECT_EQ(lines(db(), "SELECT SUM(A) FROM T"), Lines{"30"});
}

TEST_F(Commands, DoNotKnowProceduresThatAreNotThere) {
  const auto call = command("NESSUNA");
  const Error error = failureOf([&] {
    (void)call->parameters().count();
    execute(*call);
  });
  EXPECT_EQ(error.info().nativeNumber, 2812);
  EXPECT_EQ(error.description(), "Could not find stored procedure 'NESSUNA'.");
  EXPECT_EQ(db().errors().count(), 1U);
}

TEST_F(Commands, NeedAConnection) {
  const auto call = command("P");
  call->parameters().item("@ID").setValue(std::int32_t{1});
  call->setActiveConnection(nullptr);
  EXPECT_THROW(execute(*call), Error);
}

TEST_F(Commands, GiveNoResultWhereThereIsNone) {
  run(db(), "CREATE PROCEDURE N @A INT OUTPUT AS SET @A = 7");
  const auto call = command("N");
  call->parameters().item("@A").setValue(std::int32_t{1});
  EXPECT_EQ(execute(*call), nullptr);
  EXPECT_EQ(call->parameters().item("@A").value(), Variant(std::int32_t{7}));
}

TEST_F(Commands, GiveSeveralResults) {
  run(db(), "CREATE PROCEDURE N AS SELECT 1 SELECT 2");
  const auto first = execute(*command("N"));
  EXPECT_EQ(lines(*first), Lines{"1"});
  const auto second = first->nextRecordset();
  EXPECT_EQ(lines(*second), Lines{"2"});
  EXPECT_EQ(second->nextRecordset(), nullptr);
}

TEST_F(Commands, WorkInTheCallersTransaction) {
  db().beginTrans();
  const auto call = command("P");
  call->parameters().item("@ID").setValue(std::int32_t{1});
  execute(*call);
  db().rollbackTrans();
  EXPECT_EQ(lines(db(), "SELECT SUM(A) FROM T"), Lines{"30"});
}

TEST_F(Commands, FollowAProcedureThatWasMadeAnew) {
  const auto call = command("P");
  call->parameters().item("@ID").setValue(std::int32_t{1});
  execute(*call);
  run(db(), "DROP PROCEDURE P");
  EXPECT_EQ(failure(*call).info().nativeNumber, 2812);
  run(db(), "CREATE PROCEDURE P @ID INT AS SELECT @ID * 2");
  const auto again = command("P");
  again->parameters().item("@ID").setValue(std::int32_t{4});
  EXPECT_EQ(lines(*execute(*again)), Lines{"8"});
}

}  // namespace
}  // namespace azcoll::test
