#pragma once

#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace azcoll::statements {

/// Companies, links and activities drawn at random from a seed, as statements that fill an empty
/// company database. The same seed gives the same rows everywhere.
class RandomCompanies {
 public:
  explicit RandomCompanies(unsigned seed) : random_(seed) {}

  /// The statements in an order that the foreign keys allow.
  [[nodiscard]] std::vector<std::string> statements();

  /// The text of a statement of the component with other companies, years, activities and sections
  /// in the places of its constants; the shape stays.
  [[nodiscard]] std::string withOtherConstants(const std::string& text);

 private:
  [[nodiscard]] std::uint32_t below(std::uint32_t limit) {
    return static_cast<std::uint32_t>(random_() % limit);
  }
  template <typename Values>
  const auto& anyOf(const Values& values) {
    return values[below(static_cast<std::uint32_t>(std::size(values)))];
  }
  [[nodiscard]] std::string orNull(const std::string& value, std::uint32_t oneIn);
  void addCompany(int company);
  void addLinks();
  void addActivities(int company);
  void addSections(int company);
  void addCustomers(int company);
  [[nodiscard]] std::string otherInteger(const std::string& number);

  std::minstd_rand random_;
  std::vector<std::string> statements_;
  int rows_ = 0;  // of CG86_AZIENDECOLL, whose identities count from 1
};

}  // namespace azcoll::statements
