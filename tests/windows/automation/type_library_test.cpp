// The type library inside the DLL: order, types, identifiers, names.

#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "ado/wide_text.h"
#include "component/members.h"
#include "windows/client.h"

namespace azcoll::test {
namespace {

using ado::ComPtr;

ComPtr<ITypeInfo> membersOf(const wchar_t* progId) {
  ComPtr<ITypeInfo> info;
  EXPECT_EQ(created(progId).object()->GetTypeInfo(0, LOCALE_USER_DEFAULT, info.receive()), S_OK);
  return info;
}

/// One accessor or method as the library publishes it.
struct Published {
  std::string name;
  INVOKEKIND kind;
  MEMBERID id;
  int slot;
  VARTYPE type;
};

VARTYPE typeOf(const FUNCDESC& function) {
  if (function.invkind == INVOKE_PROPERTYPUT || function.invkind == INVOKE_PROPERTYPUTREF) {
    return function.lprgelemdescParam[0].tdesc.vt;
  }
  return function.elemdescFunc.tdesc.vt;
}

std::vector<Published> published(const wchar_t* progId) {
  const ComPtr<ITypeInfo> info = membersOf(progId);
  TYPEATTR* attributes = nullptr;
  EXPECT_EQ(info->GetTypeAttr(&attributes), S_OK);
  std::vector<Published> all;
  for (UINT index = 0; index < attributes->cFuncs; ++index) {
    FUNCDESC* function = nullptr;
    EXPECT_EQ(info->GetFuncDesc(index, &function), S_OK);
    // The platform's own first slots are listed by some readers and not by others.
    if (function->oVft >= static_cast<SHORT>(7 * sizeof(void*))) {
      BSTR name = nullptr;
      UINT count = 0;
      EXPECT_EQ(info->GetNames(function->memid, &name, 1, &count), S_OK);
      all.push_back({ado::textOf(name), function->invkind, function->memid,
                     static_cast<int>(function->oVft / static_cast<SHORT>(sizeof(void*))),
                     typeOf(*function)});
      SysFreeString(name);
    }
    info->ReleaseFuncDesc(function);
  }
  info->ReleaseTypeAttr(attributes);
  return all;
}

VARTYPE expectedType(FieldKind kind) {
  switch (kind) {
    case FieldKind::Variant:
      return VT_VARIANT;
    case FieldKind::Text:
      return VT_BSTR;
    case FieldKind::Boolean:
      return VT_BOOL;
    case FieldKind::TipoCF:
    case FieldKind::TipoMsg:
      return VT_USERDEFINED;
    default:
      return VT_DISPATCH;
  }
}

template <typename Fields>
void expectFields(const wchar_t* progId, const Fields& fields) {
  const std::vector<Published> all = published(progId);
  std::size_t next = 0;
  MEMBERID id = 0;
  for (const auto& field : fields) {
    ++id;
    const bool object = expectedType(field.kind()) == VT_DISPATCH;
    std::vector<INVOKEKIND> kinds{INVOKE_PROPERTYGET};
    if (!object) {
      kinds.push_back(INVOKE_PROPERTYPUT);
    }
    if (object || field.kind() == FieldKind::Variant) {
      kinds.push_back(INVOKE_PROPERTYPUTREF);
    }
    for (const INVOKEKIND kind : kinds) {
      ASSERT_LT(next, all.size());
      const Published& one = all[next];
      EXPECT_EQ(one.name, field.name);
      EXPECT_EQ(one.kind, kind) << field.name;
      EXPECT_EQ(one.id, id) << field.name;
      EXPECT_EQ(one.slot, static_cast<int>(next) + 7) << field.name;
      EXPECT_EQ(one.type, expectedType(field.kind())) << field.name;
      ++next;
    }
  }
  EXPECT_EQ(next, all.size());
}

TEST(TypeLibraryOfTheDll, HasTheInputFieldsInOrder) { expectFields(kInput, kInputFields); }

TEST(TypeLibraryOfTheDll, HasTheOutputFieldsInOrder) { expectFields(kOutput, kOutputFields); }

TEST(TypeLibraryOfTheDll, HasTheServicesMethodsBehindItsFields) {
  const std::vector<Published> all = published(kService);
  constexpr std::size_t kAccessors = 2 + 2 + 3 + 3;
  ASSERT_EQ(all.size(), kAccessors + kMethods.size());
  for (std::size_t index = 0; index < kMethods.size(); ++index) {
    const Published& one = all[kAccessors + index];
    EXPECT_EQ(one.name, kMethods[index].name);
    EXPECT_EQ(one.kind, INVOKE_FUNC);
    EXPECT_EQ(one.id, static_cast<MEMBERID>(index + 5)) << one.name;
    EXPECT_EQ(one.slot, static_cast<int>(kAccessors + index + 7)) << one.name;
    const VARTYPE result = kMethods[index].result == MethodResult::None      ? VT_VOID
                           : kMethods[index].result == MethodResult::Boolean ? VT_BOOL
                                                                             : VT_BSTR;
    EXPECT_EQ(one.type, result) << one.name;
  }
}

/// The library that holds the members of a class.
ComPtr<ITypeLib> library() {
  ComPtr<ITypeLib> found;
  UINT index = 0;
  EXPECT_EQ(membersOf(kService)->GetContainingTypeLib(found.receive(), &index), S_OK);
  return found;
}

/// Identifiers of the aliases whose names start with `prefix`.
std::vector<IID> aliases(const std::wstring& prefix) {
  const ComPtr<ITypeLib> all = library();
  std::vector<IID> identifiers;
  for (UINT index = 0; index < all->GetTypeInfoCount(); ++index) {
    ComPtr<ITypeInfo> info;
    BSTR name = nullptr;
    TYPEATTR* attributes = nullptr;
    all->GetTypeInfo(index, info.receive());
    all->GetDocumentation(static_cast<INT>(index), &name, nullptr, nullptr, nullptr);
    info->GetTypeAttr(&attributes);
    if (attributes->typekind == TKIND_ALIAS && std::wstring{name}.starts_with(prefix)) {
      identifiers.push_back(attributes->guid);
    }
    info->ReleaseTypeAttr(attributes);
    SysFreeString(name);
  }
  return identifiers;
}

void expectAliases(const wchar_t* progId, const std::wstring& prefix, std::size_t count) {
  const std::vector<IID> earlier = aliases(prefix);
  EXPECT_EQ(earlier.size(), count);
  const ComPtr<IDispatch> object = ado::createObject(progId);
  for (const IID& identifier : earlier) {
    const auto asEarlier = object.as<IDispatch>(identifier);
    ASSERT_TRUE(asEarlier);
    EXPECT_TRUE(ado::sameObject(object, asEarlier));
  }
}

TEST(TypeLibraryOfTheDll, KeepsTheEarlierIdentifiersWhichTheObjectsAnswer) {
  expectAliases(kService, L"CLSCO_AZIENDECOLL_v", 11);
  expectAliases(kInput, L"CLSCO_INPUTAZCOLL_v", 11);
  expectAliases(kOutput, L"CLSCO_OUTPUTAZCOLL_v", 3);
}

TEST(TypeLibraryOfTheDll, AnObjectDoesNotAnswerAnotherClassesIdentifier) {
  const ComPtr<IDispatch> input = ado::createObject(kInput);
  for (const IID& identifier : aliases(L"CLSCO_OUTPUTAZCOLL_v")) {
    EXPECT_FALSE(input.as<IDispatch>(identifier));
  }
}

TEST(TypeLibraryOfTheDll, HasTheEnumerations) {
  const ComPtr<ITypeLib> all = library();
  for (const EnumMember& member : kEnumMembers) {
    std::wstring name = ado::wideText(member.name);
    ComPtr<ITypeInfo> info;
    MEMBERID id = 0;
    USHORT found = 1;
    ASSERT_EQ(all->FindName(name.data(), 0, info.receive(), &id, &found), S_OK);
    ASSERT_EQ(found, 1) << member.name;
    VARDESC* description = nullptr;
    UINT index = 0;
    // The members of an enumeration are numbered in order of declaration.
    bool seen = false;
    for (; info->GetVarDesc(index, &description) == S_OK; ++index) {
      BSTR own = nullptr;
      UINT count = 0;
      info->GetNames(description->memid, &own, 1, &count);
      if (ado::textOf(own) == member.name) {
        EXPECT_EQ(ado::fromVariant(*description->lpvarValue).toInt32(), member.value);
        seen = true;
      }
      SysFreeString(own);
      info->ReleaseVarDesc(description);
    }
    EXPECT_TRUE(seen) << member.name;
  }
}

}  // namespace
}  // namespace azcoll::test
