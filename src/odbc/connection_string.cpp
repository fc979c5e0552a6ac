#include "odbc/connection_string.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cstddef>

#include "data/error.h"
#include "data/text.h"
#include "text/letter_case.h"
#include "text/quoting.h"

namespace azcoll::odbc {
namespace {

constexpr std::string_view kMask = "***";
constexpr std::size_t kDistinctive = 4;  // characters from which a password is no common word part

/// One `key=value` of a connection string; the parts are views into it.
struct Pair {
  std::string_view key{};
  std::string_view raw{};  ///< the value as written, braces or quotes included
  std::string value{};     ///< the value meant
};

/// End of a value that begins with `{`, `"` or `'`: behind its closing mark, which is written twice
/// inside. An unclosed value goes to the end.
std::size_t endOfQuoted(std::string_view text, std::size_t start, char close, std::string& value) {
  for (std::size_t at = start + 1; at < text.size(); ++at) {
    if (text[at] != close) {
      value += text[at];
    } else if (at + 1 < text.size() && text[at + 1] == close) {
      value += close;
      ++at;
    } else {
      return at + 1;
    }
  }
  return text.size();
}

/// Reads what drivers read, and never complains: the driver does.
std::vector<Pair> pairsOf(std::string_view text) {
  std::vector<Pair> pairs;
  std::size_t at = 0;
  while (at < text.size()) {
    const std::size_t equals = text.find_first_of("=;", at);
    if (equals == std::string_view::npos || text[equals] == ';') {
      at = equals == std::string_view::npos ? text.size() : equals + 1;
      continue;
    }
    Pair pair;
    pair.key = trim(text.substr(at, equals - at));
    std::size_t start = text.find_first_not_of(' ', equals + 1);
    start = start == std::string_view::npos ? text.size() : start;
    std::size_t end = 0;
    const char mark = start < text.size() ? text[start] : ';';
    if (mark == '{' || mark == '"' || mark == '\'') {
      end = endOfQuoted(text, start, mark == '{' ? '}' : mark, pair.value);
      end = std::min(text.find(';', end), text.size());
    } else {
      end = std::min(text.find(';', start), text.size());
      pair.value = trim(text.substr(start, end - start));
    }
    pair.raw = text.substr(start, end - start);
    pair.raw = pair.raw.substr(0, pair.raw.find_last_not_of(' ') + 1);
    pairs.push_back(pair);
    at = end + 1;
  }
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
  for (const Pair& pair : pairsOf(connectionString)) {
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
  for (const Pair& pair : pairsOf(text)) {
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
  std::string result;
  for (const Pair& pair : pairsOf(text)) {
    const bool overridden =
        (!user.empty() && isUserKey(pair.key)) || (!password.empty() && isPasswordKey(pair.key));
    if (!overridden) {
      result += join(pair.key, "=", pair.raw, ";");
    }
  }
  if (!user.empty()) {
    result += join("UID=", quoted(user, '{'), ";");
  }
  if (!password.empty()) {
    result += join("PWD=", quoted(password, '{'), ";");
  }
  return result;
}

std::string serverOf(std::string_view text) {
  std::string server;
  std::string source;
  std::string port;
  for (const Pair& pair : pairsOf(text)) {
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
  for (const Pair& pair : pairsOf(text)) {
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
  std::string result;
  for (const Pair& pair : pairsOf(text)) {
    if (!isLockKey(pair.key)) {
      result += join(pair.key, "=", pair.raw, ";");
    }
  }
  return result;
}

int loginTimeout(std::string_view text) {
  constexpr int kDefault = 15;
  for (const Pair& pair : pairsOf(text)) {
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
