#pragma once

#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>

#include "data/connection.h"
#include "support/picture.h"

/// Customers that several processes save at once in companies of one group, on a file and on a
/// server.
namespace azcoll::test {

inline constexpr int kFirstCompany = 200;  ///< the main one of the group
inline constexpr int kCompanies = 8;

/// T-SQL for a further group of eight companies beside the example's.
[[nodiscard]] std::string groupOfEight();

/// What came of the calls of one writer.
struct Saved {
  int unnumbered = 0;     ///< spread, but another writer recorded a number at the same moment
  int refused = 0;        ///< refused by the database: a key that is there already, or a deadlock
  std::string otherwise;  ///< what a call failed with that did not fail so; empty when none did
};

/// Saves `count` customers in one company, each under the next code of that company, and spreads
/// each. A code that another writer took meanwhile is followed by the next one; a call that is
/// refused is not repeated. The customers are saved on one connection of `open` and spread on
/// another: some servers lose the way to a table variable in a session that has checked a foreign
/// key before.
Saved saveNewCustomers(const std::function<std::shared_ptr<Connection>()>& open, int company,
                       int count);

/// The customers of `saveNewCustomers` that are there, by the entry that each has in the registry.
struct FoundCustomer {
  std::set<std::string> companies;
  std::set<std::string> codes;
};
[[nodiscard]] std::map<std::string, FoundCustomer> savedCustomers(Connection& connection);

/// Holds that every customer is in the whole group under one code that no other one has there, or
/// in its own company alone. Returns how many are in the whole group.
int expectWholeOrAlone(const std::map<std::string, FoundCustomer>& customers);

}  // namespace azcoll::test
