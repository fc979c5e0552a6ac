// The role of schema/permessi.sql on a server: with it every method works, without one of its
// rights some method does not.

#include <algorithm>
#include <cstdint>
#include <gtest/gtest.h>
#include <iostream>
#include <iterator>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "data/text.h"
#include "data/tracing.h"
#include "platform/provider_factory.h"
#include "statements/composed_statements.h"
#include "statements/needed_rights.h"
#include "support/server_login.h"
#include "support/test_database.h"

namespace azcoll::statements {
namespace {

constexpr std::string_view kServiceRole = "azcoll_servizio";

/// The service as a member of the role, in this process's own database on the server under test.
class RoleOnAServer : public testing::Test {
 protected:
  void SetUp() override {
    if (test::serverConnectionString().empty()) {
      GTEST_SKIP() << "AZCOLL_TEST_CONNESSIONE names no server";
    }
    owner_ = test::openExample();
    run(join("IF NOT EXISTS (SELECT 1 FROM sys.database_principals WHERE name = N'",
             std::string{kServiceRole}, "') CREATE ROLE ", std::string{kServiceRole}));
    recordWhatEachCallNeeds();
    for (const auto& [right, calls] : calls_) {
      grant(right.first, right.second);
    }
    login_ = std::make_unique<test::ServerLogin>(test::serverConnectionString());
    login_->join(std::string{kServiceRole});
    service_ = newConnectionFor(login_->connectionString());
    service_->setCursorLocation(CursorLocation::Client);
    service_->open("", "", CommandOption::Unspecified);
  }
  void TearDown() override {
    if (service_) {
      service_->close();
    }
  }

  /// Of every method the calls that need a right which none of its calls before them needed.
  void recordWhatEachCallNeeds() {
    MethodCall current{};
    Rights ofMethod;
    const auto take = [&](const Rights& needed) {
      for (const auto& [object, verbs] : needed) {
        for (const std::string& verb : verbs) {
          if (ofMethod[object].insert(verb).second) {
            calls_[{object, verb}].push_back(current);
          }
        }
      }
    };
    composeEverything({.statement =
                           [&](std::string_view, std::string_view text) {
                             Rights needed;
                             addNeededRights(needed, text);
                             take(needed);
                           },
                       .procedure =
                           [&](std::string_view name) {
                             Rights needed;
                             addProcedureRight(needed, name);
                             take(needed);
                           },
                       .calling =
                           [&](const MethodCall& call) {
                             if (call.method != current.method) {
                               ofMethod.clear();
                             }
                             current = call;
                           }});
  }

  void run(const std::string& statement) {
    std::int64_t affected = 0;
    owner_->execute(statement, affected, CommandOption::Text);
  }
  void grant(const std::string& object, const std::string& verb) {
    try {
      run(join("GRANT ", verb, " ON dbo.", object, " TO ", std::string{kServiceRole}));
    } catch (const Error& error) {
      // Not every server knows reading as a right on a function: there it is run, and reads with
      // its caller's rights.
      EXPECT_EQ(object + " " + verb, "FNCG28_TABCODIVA SELECT") << error.description();
      verbs_[{object, verb}] = "EXECUTE";
      run(join("GRANT EXECUTE ON dbo.", object, " TO ", std::string{kServiceRole}));
      run(join("GRANT SELECT ON dbo.CG28_TABCODIVA TO ", std::string{kServiceRole}));
    }
  }

  /// What the server refuses (SQLSTATE class 42) during a call of the role's member; nothing when
  /// it refuses nothing. What the call leaves open is undone.
  std::string refusalOf(const MethodCall& call) {
    std::string refusal;
    const auto traced =
        std::make_shared<ConnessioneTracciata>(service_, [&](const TraceEntry& entry) {
          procedureCalls_ += entry.operation == "CommandExecute" && !entry.error ? 1 : 0;
          if (refusal.empty() && entry.error && entry.error->sqlState.starts_with("42")) {
            refusal = entry.error->description;
          }
        });
    const std::string handedOut = make(call, traced);
    try {
      traced->rollbackTrans();
    } catch (const Error&) {
      service_->errors().clear();  // none was open
    }
    if (!handedOut.empty()) {
      traced->beginTrans();
      try {
        std::int64_t affected = 0;
        traced->execute(handedOut, affected, CommandOption::Text);
      } catch (const Error&) {
        service_->errors().clear();  // seen by the tracer
      }
      traced->rollbackTrans();
    }
    return refusal;
  }

  /// Whether a call misses the right that was taken. A procedure that may not be executed may not
  /// even be shown, so that its parameters are not there and it is not called.
  bool misses(const MethodCall& call, const std::string& verb) {
    procedureCalls_ = 0;
    const std::string refusal = refusalOf(call);
    return !refusal.empty() || (verb == "EXECUTE" && procedureCalls_ == 0);
  }

  /// Whether this server runs an UPDATE with a FROM clause for somebody without the right to it.
  /// Then no method can show that it needs the right for such a statement.
  bool updatesFromAreNotLookedAt(const std::string& object) {
    std::int64_t affected = 0;
    const auto columns =
        service_->execute(join("SELECT * FROM ", object), affected, CommandOption::Text);
    const std::string last = columns->fields().item(columns->fields().count() - 1).name();
    bool taken = true;
    service_->beginTrans();
    try {
      service_->execute(join("UPDATE ", object, " SET ", last, " = ", last, " FROM ", object),
                        affected, CommandOption::Text);
    } catch (const Error&) {
      taken = false;
    }
    service_->rollbackTrans();
    return taken;
  }

  using Right = std::pair<std::string, std::string>;
  std::shared_ptr<Connection> owner_;
  std::unique_ptr<test::ServerLogin> login_;
  std::shared_ptr<Connection> service_;
  int procedureCalls_ = 0;
  std::map<Right, std::vector<MethodCall>>
      calls_;                           ///< the calls that first needed a right, by method
  std::map<Right, std::string> verbs_;  ///< what stands for a right on this server
};

TEST_F(RoleOnAServer, LosesACallWithEachRightAndNoneWithAll) {
  EXPECT_GT(calls_.size(), 60U);
  for (const auto& [right, calls] : calls_) {
    const auto& [object, verb] = right;
    const std::string granted = verbs_.contains(right) ? verbs_[right] : verb;
    run(join("REVOKE ", granted, " ON dbo.", object, " FROM ", std::string{kServiceRole}));
    const auto missesIt = [&, lost = verb](const MethodCall& call) { return misses(call, lost); };
    bool missed = std::ranges::any_of(calls, missesIt);
    // A statement behind a condition is refused only when it is reached.
    for (auto call = calls.begin(); !missed && call != calls.end(); ++call) {
      missed = std::ranges::any_of(callsOf(*call->method), missesIt);
    }
    if (!missed && verb == "UPDATE" && updatesFromAreNotLookedAt(object)) {
      std::cout << "not provable on this server, which lets everybody run UPDATE ... FROM: " << verb
                << " on " << object << std::endl;
      missed = true;
    }
    EXPECT_TRUE(missed) << "nothing fails without " << verb << " on " << object;
    grant(object, verb);
  }
  for (const MethodEntry& method : kMethods) {
    std::vector<MethodCall> calls = callsOf(method);
    calls.resize(1, calls.front());  // some methods need no right at all
    for (const auto& [right, needing] : calls_) {
      std::ranges::copy_if(needing, std::back_inserter(calls),
                           [&](const MethodCall& call) { return call.method == &method; });
    }
    for (const MethodCall& call : calls) {
      EXPECT_EQ(refusalOf(call), "") << method.name;
    }
  }
}

}  // namespace
}  // namespace azcoll::statements
