#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include "scenarios/year_copy_model.h"

/// Groups, years and activities drawn at random.
namespace azcoll::test {

/// The same seed gives the same rows and the same calls everywhere. Several activities in one
/// company and of one code, activities without registry entry and entries without activity,
/// companies without VAT management data, links with and without activity.
class RandomActivities {
 public:
  explicit RandomActivities(std::uint32_t seed) : random_(seed) {}

  /// The companies, of which the database has to know before `statements`.
  [[nodiscard]] static std::vector<std::string> companies();
  /// The statements that replace all activities and what belongs to them.
  [[nodiscard]] std::vector<std::string> statements();
  /// A call on the database that holds `rows`.
  [[nodiscard]] YearCopy call(const std::vector<ActivityRow>& rows);

 private:
  /// What several years' rows have in common.
  struct Place {
    int main = 0;
    int linked = 0;
    std::string accounting;
    std::string code;
  };

  [[nodiscard]] std::uint32_t below(std::uint32_t limit) {
    return static_cast<std::uint32_t>(random_() % limit);
  }
  /// True in `percent` of a hundred cases.
  [[nodiscard]] bool in(std::uint32_t percent) { return below(100) < percent; }
  template <typename Values>
  const auto& anyOf(const Values& values) {
    return values[below(static_cast<std::uint32_t>(std::size(values)))];
  }
  [[nodiscard]] std::string orNull(const std::string& value, std::uint32_t percent) {
    return in(percent) ? "NULL" : value;
  }
  [[nodiscard]] std::string codeOf(int company);
  void addManagementData(int company);
  void addRegistry(int company);
  void addOwnActivities(int company, int year);
  void addLinks(int year);
  [[nodiscard]] Place placeOf(int main, int linked);
  void addRow(int kind, int year, const Place& place, bool flagged);

  std::minstd_rand random_;
  std::vector<Place> links_;  ///< of the year before
  std::vector<std::string> statements_;
};

}  // namespace azcoll::test
