// The interface definition against the one table of members, and the identifiers wherever they are
// written a second time.

#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <regex>
#include <set>
#include <string>
#include <vector>

#include "service/members.h"

namespace azcoll {
namespace {

using Lines = std::vector<std::string>;

std::string readSource(const std::string& path) {
  std::ifstream file{std::string{AZCOLL_SOURCE_DIR} + "/" + path, std::ios::binary};
  return {std::istreambuf_iterator<char>{file}, std::istreambuf_iterator<char>{}};
}

std::string withoutAccents(std::string_view name) {
  return std::regex_replace(std::string{name}, std::regex{"à"}, "a");
}

/// The member lines of an interface of the definition.
Lines definedMembers(const std::string& interfaceName) {
  const std::string idl = readSource("src/automation/azcollsrv.idl");
  const std::size_t start = idl.find("interface " + interfaceName + " : IDispatch");
  Lines lines;
  if (start == std::string::npos) {
    return lines;
  }
  const std::string body = idl.substr(start, idl.find("};", start) - start);
  const std::regex member{R"(\[(.*)\] HRESULT (\w+)\((.*)\);)"};
  for (std::sregex_iterator match{body.begin(), body.end(), member}, end; match != end; ++match) {
    lines.push_back((*match)[1].str() + " " + (*match)[2].str() + " " + (*match)[3].str());
  }
  return lines;
}

std::string wireType(FieldKind kind) {
  switch (kind) {
    case FieldKind::Variant:
      return "VARIANT";
    case FieldKind::Text:
      return "BSTR";
    case FieldKind::Boolean:
      return "VARIANT_BOOL";
    case FieldKind::TipoCF:
    case FieldKind::TipoMsg:
      return std::string{typeName(kind)};
    default:
      return "IDispatch*";
  }
}

/// Appends the accessors of one property.
void addProperty(Lines& lines, int id, std::string_view name, const std::string& type, bool byValue,
                 bool byReference) {
  const std::string tail = ", id(" + std::to_string(id) + ") " + withoutAccents(name);
  lines.push_back("propget" + tail + " [out, retval] " + type + "* value");
  if (byValue) {
    lines.push_back("propput" + tail + " [in] " + type + " value");
  }
  if (byReference) {
    lines.push_back("propputref" + tail + " [in] " + type + " value");
  }
}

/// What the definition has to say of these fields.
template <typename Fields>
Lines expectedFields(const Fields& fields) {
  Lines lines;
  int id = 0;
  for (const auto& field : fields) {
    const std::string type = wireType(field.kind());
    const bool object = type == "IDispatch*";
    addProperty(lines, ++id, field.name, type, !object, object || type == "VARIANT");
  }
  return lines;
}

TEST(InterfaceDefinition, HasTheInputFieldsInOrderWithTheirTypes) {
  EXPECT_EQ(definedMembers("_CLSCO_INPUTAZCOLL"), expectedFields(kInputFields));
}

TEST(InterfaceDefinition, HasTheOutputFieldsInOrderWithTheirTypes) {
  EXPECT_EQ(definedMembers("_CLSCO_OUTPUTAZCOLL"), expectedFields(kOutputFields));
}

TEST(InterfaceDefinition, HasTheServiceFieldsThenItsMethodsInOrder) {
  Lines expected;
  addProperty(expected, 1, "CPInput", "_CLSCO_INPUTAZCOLL*", false, true);
  addProperty(expected, 2, "CPOutput", "_CLSCO_OUTPUTAZCOLL*", false, true);
  addProperty(expected, 3, "Stato", "VARIANT", true, true);
  addProperty(expected, 4, "Errore", "VARIANT", true, true);
  int id = 4;
  for (const MethodEntry& method : kMethods) {
    const std::string result = method.result == MethodResult::None ? ""
                               : method.result == MethodResult::Boolean
                                   ? "[out, retval] VARIANT_BOOL* result"
                                   : "[out, retval] BSTR* result";
    expected.push_back("id(" + std::to_string(++id) + ") " + withoutAccents(method.name) + " " +
                       result);
  }
  EXPECT_EQ(definedMembers("_CLSCO_AZIENDECOLL"), expected);
}

TEST(InterfaceDefinition, HasTheEnumerations) {
  const std::string idl = readSource("src/automation/azcollsrv.idl");
  for (const EnumMember& member : kEnumMembers) {
    const std::regex text{"enum " + std::string{member.enumeration} + R"( \{[^}]*\b)" +
                          std::string{member.name} + " = " + std::to_string(member.value) +
                          R"(\b[^}]*\})"};
    EXPECT_TRUE(std::regex_search(idl, text)) << member.name;
  }
}

TEST(InterfaceDefinition, KeepsTheEarlierIdentifiers) {
  const std::string idl = readSource("src/automation/azcollsrv.idl");
  const auto aliases = [&idl](const std::string& name) {
    const std::regex alias{R"(typedef \[uuid\([0-9A-F-]{36}\), public\] _)" + name + " " + name +
                           R"(_v\d+;)"};
    return std::distance(std::sregex_iterator{idl.begin(), idl.end(), alias},
                         std::sregex_iterator{});
  };
  EXPECT_EQ(aliases("CLSCO_AZIENDECOLL"), 11);
  EXPECT_EQ(aliases("CLSCO_INPUTAZCOLL"), 11);
  EXPECT_EQ(aliases("CLSCO_OUTPUTAZCOLL"), 3);
}

TEST(InterfaceDefinition, GivesEveryIdentifierOnce) {
  const std::string idl = readSource("src/automation/azcollsrv.idl");
  const std::regex identifier{R"(uuid\(([0-9A-F-]{36})\))"};
  std::set<std::string> seen;
  for (std::sregex_iterator match{idl.begin(), idl.end(), identifier}, end; match != end; ++match) {
    EXPECT_TRUE(seen.insert((*match)[1].str()).second) << (*match)[1];
  }
  // Library, enumerations, interfaces, classes, earlier identifiers.
  EXPECT_EQ(seen.size(), 1U + 3U + 3U + 3U + 25U);
}

TEST(Manifest, NamesTheClassesByTheirIdentifiers) {
  const std::string idl = readSource("src/automation/azcollsrv.idl");
  const std::string manifest = readSource("packaging/windows/AZCOLLSRV.manifest");
  for (const char* name : {"CLSCO_AZIENDECOLL", "CLSCO_INPUTAZCOLL", "CLSCO_OUTPUTAZCOLL"}) {
    std::smatch match;
    const std::regex coclass{R"(uuid\(([0-9A-F-]{36})\)[^\]]*\]\s*coclass )" + std::string{name}};
    ASSERT_TRUE(std::regex_search(idl, match, coclass)) << name;
    const std::regex entry{R"(clsid="\{)" + match[1].str() + R"(\}"[^>]*progid="AZCOLLSRV\.)" +
                           std::string{name} + "\""};
    EXPECT_TRUE(std::regex_search(manifest, entry)) << name;
  }
  std::smatch library;
  ASSERT_TRUE(std::regex_search(idl, library, std::regex{R"(uuid\(([0-9A-F-]{36})\), version)"}));
  EXPECT_NE(manifest.find("<typelib tlbid=\"{" + library[1].str() + "}\" version=\"1.0\""),
            std::string::npos);
}

}  // namespace
}  // namespace azcoll
