#include "embedded/plan/plan_cache.h"

#include <utility>

#include "embedded/plan/guards.h"
#include "tsql/shape.h"

namespace azcoll::embedded {

std::shared_ptr<Plan> PlanCache::find(const tsql::Shape& shape) {
  const auto found = byKey_.find(shape.key);
  if (found == byKey_.end()) {
    return nullptr;
  }
  // The last used stands in front; splicing moves the node and leaves the key, of which the map
  // holds a view, where it is.
  if (found->second != entries_.begin()) {
    entries_.splice(entries_.begin(), entries_, found->second);
  }
  for (const std::shared_ptr<Plan>& plan : found->second->plans) {
    if (guardsHold(plan->guards, shape)) {
      return plan;
    }
  }
  return nullptr;
}

void PlanCache::add(const tsql::Shape& shape, std::shared_ptr<Plan> plan) {
  if (!shape.cacheable || !plan->cacheable || shape.key.size() > kLongestKey) {
    return;
  }
  const auto found = byKey_.find(shape.key);
  if (found != byKey_.end()) {
    auto& plans = found->second->plans;
    // Constants that need ever new plans must not fill the memory.
    if (plans.size() >= kPlansOfAShape) {
      plans.erase(plans.begin());
    }
    plans.push_back(std::move(plan));
    return;
  }
  if (entries_.size() >= capacity_) {
    // First the view, then the text behind it.
    byKey_.erase(entries_.back().key);
    entries_.pop_back();
  }
  entries_.push_front({shape.key, {std::move(plan)}});
  byKey_.emplace(entries_.front().key, entries_.begin());
}

void PlanCache::clear() {
  byKey_.clear();
  entries_.clear();
}

}  // namespace azcoll::embedded
