#pragma once

#include <string>
#include <string_view>

#include "component/call.h"
#include "component/values.h"
#include "data/text.h"

/// The frames in which the methods run: no exception leaves them.
namespace azcoll {

namespace detail {

/// The error trap: called inside a catch block, turns the failure into `Stato` 99 and its message
/// with the method's suffix. `onFailure` runs before, with the error collection as it was left.
template <typename OnFailure>
void trap(Call& call, std::string_view suffix, const OnFailure& onFailure) noexcept {
  std::string description;
  ignoreErrors([&] { description = currentDescription(); });
  ignoreErrors(onFailure);
  call.Stato = kTrapped;  // not even a lack of memory may look like a success
  ignoreErrors([&] { call.Errore = join(description, suffix); });
}

}  // namespace detail

/// A method that checks its input itself.
template <typename Work>
void unpreparedMethod(Call& call, std::string_view suffix, const Work& work) noexcept {
  try {
    work();
  } catch (...) {
    detail::trap(call, suffix, [] {});
  }
}

/// A method: preamble, work, trap. `onFailure` is what the trap does first.
template <typename Work, typename OnFailure>
void method(Call& call, std::string_view suffix, const Work& work,
            const OnFailure& onFailure) noexcept {
  try {
    if (call.InizializzaMetodo(Connect::Yes)) {
      work();
    }
  } catch (...) {
    detail::trap(call, suffix, onFailure);
  }
}
template <typename Work>
void method(Call& call, std::string_view suffix, const Work& work) noexcept {
  method(call, suffix, work, [] {});
}

/// A method that only composes text: no connection is opened, and `Stato` keeps what the call
/// before left in it.
template <typename Work>
void textMethod(Call& call, std::string_view suffix, const Work& work) noexcept {
  unpreparedMethod(call, suffix, [&] {
    if (call.InizializzaMetodo(Connect::No)) {
      work();
    }
  });
}

}  // namespace azcoll
