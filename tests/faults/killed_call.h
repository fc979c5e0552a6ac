#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <ostream>
#include <set>
#include <string>
#include <vector>

#include "service/service.h"
#include "support/method.h"

/// Calls in a process that is killed in the middle of them, on a file and on a server.
namespace azcoll::test {

/// A method that is called for a customer of company 5.
struct Job {
  const char* name;
  Method method;
  int code;
};

inline void PrintTo(const Job& job, std::ostream* out) { *out << job.name; }

/// The companies of the example's group.
inline const std::set<std::string> kGroup{"5", "10", "12", "15"};

/// T-SQL for a customer 777 that the whole group has, with an intermediary in company 5 alone.
[[nodiscard]] std::string customerOfTheWholeGroup();

/// Calls `method` for a customer of `company` in 2025. The call's `Stato`.
Variant callOn(const std::shared_ptr<Connection>& connection, Method method, int company, int code);

/// The names of the operations that a whole call consists of.
[[nodiscard]] std::vector<std::string> operationsOf(const std::shared_ptr<Connection>& connection,
                                                    const Job& job);

/// Runs the call in a process of its own, on a connection that `open` makes there, and kills the
/// process before operation `step`, or after it when `done`. How the process ended: minus SIGKILL.
[[nodiscard]] int killedAt(const std::function<std::shared_ptr<Connection>()>& open, const Job& job,
                           std::size_t step, bool done);

}  // namespace azcoll::test
