#include "embedded/connection_string.h"

#include <charconv>
#include <set>
#include <vector>

#include "data/connection_pairs.h"
#include "data/error.h"
#include "text/letter_case.h"

namespace azcoll::embedded {

namespace {

using ascii::equalsIgnoringCase;

[[noreturn]] void fail(const std::string& what) {
  throw Error("Stringa di connessione non valida: " + what);
}

/// Values in braces are a custom of drivers: here a brace is a character like any other.
std::vector<ConnectionPair> pairsOf(std::string_view text) {
  return readConnectionPairs(text, "\"'");
}

/// Refuses what drivers would pass over.
void requireSound(const ConnectionPair& pair) {
  switch (pair.flaw) {
    case PairFlaw::None:
      return;
    case PairFlaw::NoEquals:
      fail("manca il segno = in \"" + std::string(pair.key) + "\"");
    case PairFlaw::OpenQuote:
      fail("manca il segno finale di un valore fra virgolette");
    case PairFlaw::TextBehindQuote:
      fail("testo inatteso dopo un valore fra virgolette");
  }
}

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

}  // namespace

bool choosesEmbedded(std::string_view text) {
  for (const ConnectionPair& pair : pairsOf(text)) {
    if (pair.flaw != PairFlaw::None) {
      return false;  // another provider's string may follow rules of its own
    }
    if (equalsIgnoringCase(pair.key, "PROVIDER")) {
      return equalsIgnoringCase(pair.value, "EMBEDDED");
    }
  }
  return false;
}

ConnectionSettings readConnectionString(std::string_view text) {
  ConnectionSettings settings;
  std::set<std::string> seen;
  for (const ConnectionPair& pair : pairsOf(text)) {
    requireSound(pair);
    const std::string written(pair.key);
    const std::string key = ascii::upper(written);
    if (!seen.insert(key).second) {
      fail("la chiave " + written + " compare due volte");
    }
    if (key == "PROVIDER") {
      if (!equalsIgnoringCase(pair.value, "EMBEDDED")) {
        fail("il provider non è embedded");
      }
    } else if (key == "DATA SOURCE") {
      settings.dataSource = pair.value;
    } else if (key == "CREATE") {
      settings.create = readFlag(written, pair.value);
    } else if (key == "READ ONLY") {
      settings.readOnly = readFlag(written, pair.value);
    } else if (key == "TIMEOUT") {
      settings.timeoutSeconds = readSeconds(written, pair.value);
    } else {
      fail("chiave sconosciuta \"" + written + "\"");
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
