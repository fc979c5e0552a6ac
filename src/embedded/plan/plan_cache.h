#pragma once

#include <cstddef>
#include <list>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "embedded/plan/plan.h"
#include "tsql/shape.h"

namespace azcoll::embedded {

/// Plans by the shape of their text; those not used for the longest time make room. A shape may
/// have several plans, for constants that mean something to the plan itself.
class PlanCache {
 public:
  explicit PlanCache(std::size_t capacity) : capacity_(capacity) {}

  /// The plan for a text, or null.
  [[nodiscard]] std::shared_ptr<Plan> find(const tsql::Shape& shape);
  /// Keeps a plan for the texts of a shape whose constants meet the plan's guards. A shape or plan
  /// that is not cacheable, or a shape longer than `kLongestKey`, is not kept.
  void add(const tsql::Shape& shape, std::shared_ptr<Plan> plan);
  /// Forgets all plans; one that is running stays with whoever runs it.
  void clear();
  /// Shapes held.
  [[nodiscard]] std::size_t size() const { return entries_.size(); }

  /// Longest shape that is kept: longer texts are rare and would only take room.
  static constexpr std::size_t kLongestKey = 65536;

 private:
  struct Entry {
    std::string key;
    std::vector<std::shared_ptr<Plan>> plans;
  };
  static constexpr std::size_t kPlansOfAShape = 16;

  std::size_t capacity_;
  std::list<Entry> entries_;  // the one used last in front
  std::unordered_map<std::string_view, std::list<Entry>::iterator> byKey_;
};

}  // namespace azcoll::embedded
