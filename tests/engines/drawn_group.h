#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "engines/dice.h"

namespace azcoll::test {

/// Companies, links, activities, customers and all that belongs to them, drawn at random: also what
/// the suite would not write but the schema allows. Companies without VAT data, main companies that
/// are linked themselves, links without accounting type, texts with apostrophes, accents and
/// trailing blanks, codes that are taken elsewhere, documents that stand against a deletion.
class DrawnGroup {
 public:
  static constexpr int kCompanies = 6;         ///< numbered from 1
  static constexpr int kFirstCustomer = 100;   ///< code of the first customer or supplier
  static constexpr int kCustomersPerKind = 6;  ///< codes that a company may hold of each kind

  explicit DrawnGroup(std::uint32_t seed) : seed_{seed}, dice_{seed} {}

  /// The statements that replace every row of the database.
  [[nodiscard]] std::vector<std::string> statements();

 private:
  void add(std::string statement) { statements_.push_back(std::move(statement)); }
  void addGeneralData();
  void addVatData(int company);
  void addPlaces(int company);
  void addRegisters(int company);
  void addNumbering(int company);
  void addCustomers(int company, int kind);
  void addSalesData(const std::string& key);
  void addSubRows(const std::string& key);
  [[nodiscard]] std::string text(int percentNull);
  [[nodiscard]] std::string date(int percentNull);

  std::uint32_t seed_;
  Dice dice_;
  std::vector<std::string> statements_;
};

}  // namespace azcoll::test
