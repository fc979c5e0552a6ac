#include "odbc/connection_string.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cstddef>

#include "data/connection_pairs.h"
#include "data/error.h"
#include "data/text.h"
#include "text/letter_case.h"
#include "text/quoting.h"

namespace azcoll::odbc {
namespace {

constexpr std::string_view kMask = "***";
// From so many characters on a password is not likely to be part of another word.
constexpr std::size_t kDistinctive = 4;

/// What drivers read; they pass over a piece without `=`.
std::vector<ConnectionPair> pairsOf(std::string_view text) {
  std::vector<ConnectionPair> pairs = readConnectionPairs(text, "{\"'");
  std::erase_if(pairs, [](const ConnectionPair& pair) { return pair.flaw == PairFlaw::NoEquals; });
  return pairs;
}

bool isPasswordKey(std::string_view key) {
  return equalsIgnoringCase(key, "PWD") || equalsIgnoringCase(key, "PASSWORD");
}

bool isUserKey(std::string_view key) {
  return equalsIgnoringCase(key, "UID") || equalsIgnoringCase(key, "USER ID") ||
         equalsIgnoringCase(key, "USER");
}

bool isLockKey(std::string_view key) { return equalsIgnoringCase(key, "BLOCCO"); }

/// The pairs that `isWanted` takes by their key, as they are written.
template <typename IsWanted>
std::string only(std::string_view text, const IsWanted& isWanted) {
  std::string result;
  for (const ConnectionPair& pair : pairsOf(text)) {
    if (isWanted(pair.key)) {
      result += join(pair.key, "=", pair.raw, ";");
    }
  }
  return result;
}

bool isWordByte(char byte) {
  return std::isalnum(static_cast<unsigned char>(byte)) != 0 ||
         (static_cast<unsigned char>(byte) & 0x80U) != 0;
}

bool standsAlone(std::string_view text, std::size_t at, std::size_t length) {
  const bool openBefore = at == 0 || !isWordByte(text[at - 1]);
  return openBefore && (at + length >= text.size() || !isWordByte(text[at + length]));
}

}  // namespace

void Secrets::addFrom(std::string_view connectionString) {
  for (const ConnectionPair& pair : pairsOf(connectionString)) {
    if (isPasswordKey(pair.key)) {
      add(pair.value);
      add(pair.raw);
    }
  }
}

void Secrets::add(std::string_view password) {
  if (password.empty() || std::find(values_.begin(), values_.end(), password) != values_.end()) {
    return;
  }
  const auto place = std::find_if(values_.begin(), values_.end(), [&](const std::string& value) {
    return value.size() < password.size();
  });
  values_.insert(place, std::string{password});
}

std::string Secrets::masked(std::string text) const {
  for (const std::string& value : values_) {
    for (std::size_t at = text.find(value); at != std::string::npos; at = text.find(value, at)) {
      if (value.size() >= kDistinctive || standsAlone(text, at, value.size())) {
        text.replace(at, value.size(), kMask);
        at += kMask.size();
      } else {
        ++at;
      }
    }
  }
  return text;
}

std::string maskedConnectionString(std::string_view text) {
  std::string masked;
  std::size_t copied = 0;
  for (const ConnectionPair& pair : pairsOf(text)) {
    if (isPasswordKey(pair.key) && !pair.raw.empty()) {
      const auto start = static_cast<std::size_t>(pair.raw.data() - text.data());
      masked += text.substr(copied, start - copied);
      masked += kMask;
      copied = start + pair.raw.size();
    }
  }
  masked += text.substr(copied);
  return masked;
}

std::string withCredentials(std::string_view text, std::string_view user,
                            std::string_view password) {
  if (user.empty() && password.empty()) {
    return std::string{text};
  }
  std::string result = only(text, [&](std::string_view key) {
    const bool overridden =
        (!user.empty() && isUserKey(key)) || (!password.empty() && isPasswordKey(key));
    return !overridden;
  });
  if (!user.empty()) {
    result += join("UID=", inQuotes(user, '{'), ";");
  }
  if (!password.empty()) {
    result += join("PWD=", inQuotes(password, '{'), ";");
  }
  return result;
}

std::string serverOf(std::string_view text) {
  std::string server;
  std::string source;
  std::string port;
  for (const ConnectionPair& pair : pairsOf(text)) {
    if (equalsIgnoringCase(pair.key, "SERVER") || equalsIgnoringCase(pair.key, "SERVERNAME")) {
      server = pair.value;
    } else if (equalsIgnoringCase(pair.key, "DSN")) {
      source = pair.value;
    } else if (equalsIgnoringCase(pair.key, "PORT")) {
      port = pair.value;
    }
  }
  if (server.empty()) {
    return source;
  }
  return port.empty() ? server : join(server, ":", port);
}

GroupLock groupLock(std::string_view text) {
  GroupLock lock = GroupLock::None;
  for (const ConnectionPair& pair : pairsOf(text)) {
    if (isLockKey(pair.key)) {
      if (!equalsIgnoringCase(pair.value, "GRUPPO")) {
        throw Error(join("Valore non valido nella stringa di connessione: Blocco=", pair.raw,
                         " (è ammesso Blocco=Gruppo)"));
      }
      lock = GroupLock::PerDatabase;
    }
  }
  return lock;
}

std::string withoutOwnKeys(std::string_view text) {
  if (groupLock(text) == GroupLock::None) {
    return std::string{text};
  }
  return only(text, [](std::string_view key) { return !isLockKey(key); });
}

int loginTimeout(std::string_view text) {
  constexpr int kDefault = 15;
  for (const ConnectionPair& pair : pairsOf(text)) {
    if (equalsIgnoringCase(pair.key, "CONNECT TIMEOUT") ||
        equalsIgnoringCase(pair.key, "CONNECTION TIMEOUT") ||
        equalsIgnoringCase(pair.key, "LOGINTIMEOUT") || equalsIgnoringCase(pair.key, "TIMEOUT")) {
      int seconds = 0;
      const char* const end = pair.value.data() + pair.value.size();
      const auto [stop, error] = std::from_chars(pair.value.data(), end, seconds);
      if (error == std::errc() && stop == end && seconds >= 0) {
        return seconds;
      }
    }
  }
  return kDefault;
}

}  // namespace azcoll::odbc
