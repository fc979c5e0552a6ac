#include "embedded/connection_string.h"

#include <charconv>
#include <optional>
#include <set>
#include <utility>

#include "data/error.h"
#include "data/text.h"
#include "text/letter_case.h"
#include "tsql/characters.h"

namespace azcoll::embedded {

namespace {

using ascii::equalsIgnoringCase;

[[noreturn]] void fail(const std::string& what) {
  throw Error("Stringa di connessione non valida: " + what);
}

/// Takes `key=value` pairs off the front of a connection string.
class PairReader {
 public:
  explicit PairReader(std::string_view text) : rest_(text) {}

  /// The next pair, or nothing behind the last one. Empty pairs (`;;`) are skipped.
  std::optional<std::pair<std::string, std::string>> next() {
    rest_ = trim(rest_);
    while (rest_.starts_with(';')) {
      rest_ = trim(rest_.substr(1));
    }
    if (rest_.empty()) {
      return std::nullopt;
    }
    const std::size_t equals = rest_.find('=');
    const std::size_t end = rest_.find(';');
    if (equals == std::string_view::npos || equals > end) {
      fail("manca il segno = in \"" + std::string(trim(rest_.substr(0, end))) + "\"");
    }
    std::string key(trim(rest_.substr(0, equals)));
    rest_ = trim(rest_.substr(equals + 1));
    std::string value = takeValue();
    return std::pair{std::move(key), std::move(value)};
  }

 private:
  std::string takeValue() {
    if (rest_.starts_with('"') || rest_.starts_with('\'')) {
      return takeQuoted(rest_.front());
    }
    const std::size_t end = rest_.find(';');
    std::string value(trim(rest_.substr(0, end)));
    rest_ = end == std::string_view::npos ? std::string_view{} : rest_.substr(end + 1);
    return value;
  }

  std::string takeQuoted(char mark) {
    std::string value;
    std::size_t at = 1;
    while (true) {
      const std::size_t found = rest_.find(mark, at);
      if (found == std::string_view::npos) {
        fail("manca il segno finale di un valore fra virgolette");
      }
      value += rest_.substr(at, found - at);
      at = found + 1;
      if (tsql::byteAt(rest_, at) != mark) {
        break;
      }
      value += mark;
      ++at;
    }
    rest_ = trim(rest_.substr(at));
    if (!rest_.empty() && rest_.front() != ';') {
      fail("testo inatteso dopo un valore fra virgolette");
    }
    return value;
  }

  std::string_view rest_;
};

bool readFlag(const std::string& key, std::string_view value) {
  if (equalsIgnoringCase(value, "TRUE") || equalsIgnoringCase(value, "YES")) {
    return true;
  }
  if (equalsIgnoringCase(value, "FALSE") || equalsIgnoringCase(value, "NO")) {
    return false;
  }
  fail("il valore di " + key + " deve essere True o False");
}

int readSeconds(const std::string& key, const std::string& value) {
  int seconds = 0;
  const char* const end = value.data() + value.size();
  const auto [stop, error] = std::from_chars(value.data(), end, seconds);
  constexpr int kLongest = 86400;
  if (error != std::errc() || stop != end || seconds < 0 || seconds > kLongest) {
    fail("il valore di " + key + " deve essere un numero di secondi fra 0 e 86400");
  }
  return seconds;
}

std::string upper(std::string_view text) {
  std::string result(text);
  for (char& c : result) {
    c = ascii::upper(c);
  }
  return result;
}

}  // namespace

bool choosesEmbedded(std::string_view text) {
  try {
    PairReader reader(text);
    while (const auto pair = reader.next()) {
      if (equalsIgnoringCase(pair->first, "PROVIDER")) {
        return equalsIgnoringCase(pair->second, "EMBEDDED");
      }
    }
  } catch (const Error&) {
    // Another provider's string may follow rules of its own.
    return false;
  }
  return false;
}

ConnectionSettings readConnectionString(std::string_view text) {
  ConnectionSettings settings;
  std::set<std::string> seen;
  PairReader reader(text);
  while (auto pair = reader.next()) {
    const std::string key = upper(pair->first);
    if (!seen.insert(key).second) {
      fail("la chiave " + pair->first + " compare due volte");
    }
    if (key == "PROVIDER") {
      if (!equalsIgnoringCase(pair->second, "EMBEDDED")) {
        fail("il provider non è embedded");
      }
    } else if (key == "DATA SOURCE") {
      settings.dataSource = std::move(pair->second);
    } else if (key == "CREATE") {
      settings.create = readFlag(pair->first, pair->second);
    } else if (key == "READ ONLY") {
      settings.readOnly = readFlag(pair->first, pair->second);
    } else if (key == "TIMEOUT") {
      settings.timeoutSeconds = readSeconds(pair->first, pair->second);
    } else {
      fail("chiave sconosciuta \"" + pair->first + "\"");
    }
  }
  if (!seen.contains("PROVIDER")) {
    fail("manca Provider=embedded");
  }
  if (settings.dataSource.empty()) {
    fail("manca Data Source");
  }
  if (settings.create && settings.readOnly) {
    fail("Create e Read Only si escludono");
  }
  return settings;
}

}  // namespace azcoll::embedded
