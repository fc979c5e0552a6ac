#include "odbc/connection_string.h"

#include "gtest/gtest.h"

#include "data/error.h"

namespace azcoll::odbc {
namespace {

Secrets secretsOf(std::string_view text) {
  Secrets secrets;
  secrets.addFrom(text);
  return secrets;
}

TEST(ConnectionString, PasswordsAreMaskedWhereverTheyStand) {
  const Secrets secrets = secretsOf("Driver=X; pwd = Segreta1 ;UID=a");
  EXPECT_EQ(secrets.masked("login Segreta1 failed for Segreta1x"), "login *** failed for ***x");
  EXPECT_EQ(secrets.masked("nothing"), "nothing");
}

TEST(ConnectionString, ABracedPasswordIsMaskedAsMeantAndAsWritten) {
  const Secrets secrets = secretsOf("PASSWORD={a;b}}c};UID=x");
  EXPECT_EQ(secrets.masked("x a;b}c y"), "x *** y");
  EXPECT_EQ(secrets.masked("x {a;b}}c} y"), "x *** y");
  EXPECT_EQ(secretsOf("Pwd=\"se;greta\"").masked("se;greta!"), "***!");
}

TEST(ConnectionString, AShortPasswordIsMaskedOnlyWhereItStandsAlone) {
  const Secrets secrets = secretsOf("PWD=sa");
  EXPECT_EQ(secrets.masked("PWD=sa; the message says"), "PWD=***; the message says");
  EXPECT_EQ(secrets.masked("sa"), "***");
}

TEST(ConnectionString, OfOnePasswordInsideAnotherNothingRemains) {
  Secrets secrets = secretsOf("PWD=lunga");
  secrets.add("lungaparola");
  EXPECT_EQ(secrets.masked("lungaparola lunga"), "*** ***");
}

TEST(ConnectionString, TheStringItselfIsMaskedByItsKeys) {
  EXPECT_EQ(maskedConnectionString("Driver={A;B};PWD=x;Server=s;Password={y;z};"),
            "Driver={A;B};PWD=***;Server=s;Password=***;");
  EXPECT_EQ(maskedConnectionString("DSN=a"), "DSN=a");
  EXPECT_EQ(maskedConnectionString("PWD="), "PWD=");
  EXPECT_EQ(maskedConnectionString("PWD={open"), "PWD=***");
  EXPECT_EQ(maskedConnectionString(""), "");
  EXPECT_EQ(maskedConnectionString(";;=;x"), ";;=;x");
}

TEST(ConnectionString, UserAndPasswordOfOpenTakeTheirPlace) {
  EXPECT_EQ(withCredentials("DSN=a;UID=b;PWD=c", "", ""), "DSN=a;UID=b;PWD=c");
  EXPECT_EQ(withCredentials("DSN=a;UID=b;PWD=c", "u", "p}q"), "DSN=a;UID={u};PWD={p}}q};");
  EXPECT_EQ(withCredentials("DSN=a;UID=b;PWD=c", "u", ""), "DSN=a;PWD=c;UID={u};");
}

TEST(ConnectionString, TheTimeToConnectMayBeSaid) {
  EXPECT_EQ(loginTimeout("DSN=a"), 15);
  EXPECT_EQ(loginTimeout("DSN=a;Connect Timeout=3"), 3);
  EXPECT_EQ(loginTimeout("DSN=a;connection timeout = 0"), 0);
  EXPECT_EQ(loginTimeout("DSN=a;Timeout=presto"), 15);
  EXPECT_EQ(loginTimeout("DSN=a;Timeout=-1"), 15);
  EXPECT_EQ(loginTimeout("DSN=a;Timeout=99999999999999999999"), 15);
}

TEST(ConnectionString, TheServerIsCalledAsPeopleCallIt) {
  EXPECT_EQ(serverOf("Driver=X;SERVER=a;Port=1433;PWD=b"), "a:1433");
  EXPECT_EQ(serverOf("Driver=X;Server={tcp:a,1433}"), "tcp:a,1433");
  EXPECT_EQ(serverOf("DSN=azienda;PWD=b"), "azienda");
  EXPECT_EQ(serverOf("Driver=X;PWD=b"), "");
}

TEST(ConnectionString, TurnsAreTakenWhereItSaysSo) {
  EXPECT_EQ(groupLock("DSN=a"), GroupLock::None);
  EXPECT_EQ(groupLock("DSN=a; blocco = GRUPPO"), GroupLock::PerDatabase);
  EXPECT_EQ(groupLock("Blocco={Gruppo};DSN=a"), GroupLock::PerDatabase);
  for (const char* const text : {"Blocco=", "Blocco=Tabella", "Blocco=1"}) {
    EXPECT_EQ(groupLock("DSN=a;PWD=x"), GroupLock::None);
    EXPECT_THROW(static_cast<void>(groupLock(text)), Error) << text;
  }
}

TEST(ConnectionString, TheDriverDoesNotSeeTheKeysThatAreNotItsOwn) {
  EXPECT_EQ(withoutOwnKeys("DSN=a;Blocco=Gruppo;PWD={x;y}"), "DSN=a;PWD={x;y};");
  EXPECT_EQ(withoutOwnKeys("DSN=a ; PWD={x;y}"), "DSN=a ; PWD={x;y}");
}

}  // namespace
}  // namespace azcoll::odbc
