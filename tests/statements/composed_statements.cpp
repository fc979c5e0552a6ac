#include "statements/composed_statements.h"

#include <memory>
#include <set>
#include <string>
#include <utility>

#include "embedded/embedded_connection.h"
#include "service/members.h"
#include "support/recording_connection.h"
#include "support/test_database.h"
#include "tsql/shape.h"

namespace azcoll::statements {
namespace {

/// An example database that tells each shape of a statement once.
class Recorder {
 public:
  Recorder(std::string_view method, const Listener& listener)
      : method_{method}, listener_{listener} {
    std::shared_ptr<Connection> inner = embedded::newConnection();
    inner->setConnectionString("Provider=embedded;Data Source=:memory:");
    inner->open("", "", CommandOption::Unspecified);
    test::fillExample(*inner);
    connection_ = std::make_shared<test::RecordingConnection>(
        std::move(inner), test::RecordingConnection::Listener{
                              [this](std::string_view text) { take(text); },
                              [this](std::string_view name) { listener_.procedure(name); }});
  }

  void take(std::string_view text) {
    tsql::scanShape(text, shape_);
    if (!shape_.cacheable || shapes_.insert(shape_.key).second) {
      listener_.statement(method_, text);
    }
  }

  [[nodiscard]] const std::shared_ptr<test::RecordingConnection>& connection() const {
    return connection_;
  }

 private:
  std::string_view method_;
  const Listener& listener_;
  std::shared_ptr<test::RecordingConnection> connection_;
  std::set<std::string> shapes_;
  tsql::Shape shape_;
};

}  // namespace

void composeEverything(const Listener& listener) {
  for (const MethodEntry& method : kMethods) {
    Recorder recorder{method.name, listener};
    for (const MethodCall& call : callsOf(method)) {
      if (listener.calling) {
        listener.calling(call);
      }
      if (const std::string handedOut = make(call, recorder.connection()); !handedOut.empty()) {
        recorder.take(handedOut);
      }
    }
  }
}

}  // namespace azcoll::statements
