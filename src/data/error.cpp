#include "data/error.h"

#include <utility>

#include "data/error_list.h"
#include "data/messages.h"
#include "data/text.h"

namespace azcoll {

Error::Error(std::string_view description) {
  info_.description = description;
  info_.source = "AZCOLLSRV";
}

Error Error::provider(ErrorInfo info) {
  Error error{std::string{}};
  error.info_ = std::move(info);
  error.fromProvider_ = true;
  return error;
}

ErrorInfo ErrorList::item(std::size_t index) const {
  if (index >= entries_.size()) {
    throw Error(join(messages::kItemNotFound, index));
  }
  return entries_[index];
}

}  // namespace azcoll
