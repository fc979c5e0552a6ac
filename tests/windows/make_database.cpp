// Makes the example company database in a file, for script clients. Usage: make_database FILE

#include <exception>
#include <iostream>

#include "data/text.h"
#include "support/test_database.h"

int main(int count, char** arguments) {
  try {
    if (count != 2) {
      std::cerr << "usage: make_database FILE\n";
      return 2;
    }
    using namespace azcoll;
    const std::shared_ptr<Connection> connection = embedded::newConnection();
    connection->setConnectionString(
        join("Provider=embedded;Create=True;Data Source=", std::string_view{arguments[1]}));
    connection->open("", "", CommandOption::Unspecified);
    for (const char* script : {"tabelle.sql", "procedure.sql", "esempio.sql"}) {
      test::runScript(*connection, test::schemaPath(script));
    }
    connection->close();
    return 0;
  } catch (const std::exception& error) {
    std::cerr << error.what() << '\n';
    return 1;
  }
}
