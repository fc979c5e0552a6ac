#include "automation/module.h"

#include <mutex>
#include <utility>

namespace azcoll::automation {
namespace {

std::atomic<long> uses{0};

struct Loaded {
  std::mutex mutex;
  std::shared_ptr<const Classes> classes;
};

Loaded& loaded() {
  static Loaded instance;
  return instance;
}

}  // namespace

Classes::Classes() {
  for (std::size_t index = 0; index < infos_.size(); ++index) {
    infos_[index] = library_.classNamed(kClassNames[index]);
  }
}

std::shared_ptr<const Classes> classes() {
  Loaded& current = loaded();
  const std::lock_guard guard{current.mutex};
  if (!current.classes) {
    current.classes = std::make_shared<const Classes>();
  }
  return current.classes;
}

ModuleUse::ModuleUse() { lock(true); }
ModuleUse::~ModuleUse() { lock(false); }

void ModuleUse::lock(bool on) { uses += on ? 1 : -1; }

bool ModuleUse::none() {
  if (uses != 0) {
    return false;
  }
  Loaded& current = loaded();
  const std::lock_guard guard{current.mutex};
  current.classes.reset();
  return true;
}

long ModuleUse::count() { return uses; }

}  // namespace azcoll::automation
