#include "cli/print/names.h"

#include <algorithm>
#include <fmt/format.h>
#include <limits>
#include <utility>
#include <vector>

#include "cli/print/terminal_text.h"

namespace azcoll::cli {
namespace {

// Longer texts are not a slip in a name; the bound keeps the search short whatever is passed.
constexpr std::size_t kLongestTyped = 100;

constexpr std::u32string_view kAccented = U"àáâäèéêëìíîïòóôöùúûü";
constexpr std::u32string_view kPlain = U"aaaaeeeeiiiioooouuuu";
static_assert(kAccented.size() == kPlain.size());

char32_t lower(char32_t c) {
  const bool ascii = c >= U'A' && c <= U'Z';
  const bool latin = c >= U'À' && c <= U'Þ' && c != U'×';
  return ascii || latin ? c + 0x20 : c;
}

std::u32string folded(std::string_view name) {
  std::u32string result;
  for (const char32_t c : decodeUtf8(name)) {
    const std::size_t accent = kAccented.find(lower(c));
    if (!isCombining(c)) {
      result += accent == std::u32string_view::npos ? lower(c) : kPlain[accent];
    }
  }
  return result;
}

}  // namespace

std::string foldName(std::string_view name) { return encodeUtf8(folded(name)); }

std::size_t editDistance(std::u32string_view left, std::u32string_view right) {
  // Three rows of the table suffice: a swap looks two rows back.
  std::vector<std::size_t> older(right.size() + 1);
  std::vector<std::size_t> previous(right.size() + 1);
  std::vector<std::size_t> current(right.size() + 1);
  for (std::size_t j = 0; j <= right.size(); ++j) {
    previous[j] = j;
  }
  for (std::size_t i = 1; i <= left.size(); ++i) {
    current[0] = i;
    for (std::size_t j = 1; j <= right.size(); ++j) {
      const std::size_t replaced = previous[j - 1] + (left[i - 1] == right[j - 1] ? 0U : 1U);
      current[j] = std::min({previous[j] + 1, current[j - 1] + 1, replaced});
      if (i > 1 && j > 1 && left[i - 1] == right[j - 2] && left[i - 2] == right[j - 1]) {
        current[j] = std::min(current[j], older[j - 2] + 1);
      }
    }
    std::swap(older, previous);
    std::swap(previous, current);
  }
  return previous[right.size()];
}

std::optional<std::size_t> findName(std::string_view typed,
                                    std::span<const std::string_view> names) {
  const std::u32string wanted = folded(typed);
  std::optional<std::size_t> found;
  bool several = false;
  for (std::size_t i = 0; i < names.size(); ++i) {
    if (names[i] == typed) {
      return i;
    }
    if (folded(names[i]) == wanted) {
      several = found.has_value();
      found = i;
    }
  }
  return several ? std::nullopt : found;
}

std::optional<std::string_view> nearestName(std::string_view typed,
                                            std::span<const std::string_view> names) {
  const std::u32string wanted = folded(typed);
  if (wanted.empty() || wanted.size() > kLongestTyped) {
    return std::nullopt;
  }
  std::optional<std::string_view> best;
  std::size_t bestDistance = std::numeric_limits<std::size_t>::max();
  for (const std::string_view name : names) {
    const std::u32string candidate = folded(name);
    const std::size_t distance = editDistance(wanted, candidate);
    // Half of the letters wrong is another word, not a slip.
    if (distance < bestDistance && distance * 2 <= std::max(wanted.size(), candidate.size())) {
      best = name;
      bestDistance = distance;
    }
  }
  return best;
}

std::string suggestion(std::string_view typed, std::span<const std::string_view> names) {
  const std::optional<std::string_view> name = nearestName(typed, names);
  return name ? fmt::format(" Forse intendevi «{}»?", *name) : std::string{};
}

}  // namespace azcoll::cli
