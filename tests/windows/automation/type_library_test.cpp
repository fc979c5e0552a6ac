// The type library inside the DLL: order, types, identifiers, names.

#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "ado/wide_text.h"
#include "service/members.h"
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

struct Known {
  std::string name;
  std::string identifier;
};

/// What callers were compiled against: never to be changed, only to be added to.
const std::vector<Known> kIdentifiers{
    Known{"EnumTipoCF", "{92D416FD-1E23-43BB-AB49-210204C49289}"},
    Known{"EnumTipoMsgAziendeColl", "{DE757D5F-3BFD-4AF8-B0C2-7BD5B299FD11}"},
    Known{"EnumTipoCollegamentoCG86", "{A83DE29A-D6A6-4C80-A9E5-FC5019379CCF}"},
    Known{"_CLSCO_INPUTAZCOLL", "{EEA125E5-C35D-4A16-9A49-0591D5F6241D}"},
    Known{"_CLSCO_OUTPUTAZCOLL", "{73B9AE36-CF82-4DEA-B930-0E8A6A41D3C4}"},
    Known{"_CLSCO_AZIENDECOLL", "{01C15948-420E-4A97-A341-E57F40D8EE7B}"},
    Known{"CLSCO_AZIENDECOLL_v1", "{03D27F87-B59D-4313-856E-F8D2A620EB44}"},
    Known{"CLSCO_AZIENDECOLL_v2", "{CF957441-8917-4C7E-B50F-5D0416832786}"},
    Known{"CLSCO_AZIENDECOLL_v3", "{1E516D3D-79ED-4CAB-AA98-D19E485F1999}"},
    Known{"CLSCO_AZIENDECOLL_v4", "{C61C64E5-0363-45F5-B59C-40DB1AA51F75}"},
    Known{"CLSCO_AZIENDECOLL_v5", "{FE83A651-383E-4633-B183-895DFAF5BEB9}"},
    Known{"CLSCO_AZIENDECOLL_v6", "{000C8AB6-B02D-4D65-A72D-1D663B6F0B69}"},
    Known{"CLSCO_AZIENDECOLL_v7", "{2FDA5160-8634-4D82-A5FE-FD0234808B61}"},
    Known{"CLSCO_AZIENDECOLL_v8", "{ED44814E-C475-499F-8AE0-D0B3810146BF}"},
    Known{"CLSCO_AZIENDECOLL_v9", "{AD8CE8D3-BDD9-4EF3-9349-7173EEB0BA38}"},
    Known{"CLSCO_AZIENDECOLL_v10", "{EFB42DEF-8556-4C22-A4AF-D1AC132270D8}"},
    Known{"CLSCO_AZIENDECOLL_v11", "{5FBF750F-1653-4847-B59C-387A53FE1663}"},
    Known{"CLSCO_INPUTAZCOLL_v1", "{D97EDC0A-E5EB-4206-B5AC-D66D7EA31458}"},
    Known{"CLSCO_INPUTAZCOLL_v2", "{1DF348CC-4770-4443-AAEF-E68775A9B1A7}"},
    Known{"CLSCO_INPUTAZCOLL_v3", "{7AC023C9-9A4D-4FB5-B140-40D324031DC2}"},
    Known{"CLSCO_INPUTAZCOLL_v4", "{E806FEE8-7A2F-4E12-A947-02D34FC71A9C}"},
    Known{"CLSCO_INPUTAZCOLL_v5", "{21F4C113-3438-4D80-A54C-D6CB2E487A96}"},
    Known{"CLSCO_INPUTAZCOLL_v6", "{A79B4C51-31F8-49CE-AA45-AD201FAFE273}"},
    Known{"CLSCO_INPUTAZCOLL_v7", "{A90F9719-D1B6-496D-8ABE-6C17516E03F7}"},
    Known{"CLSCO_INPUTAZCOLL_v8", "{A86B0C30-CB1F-46E2-A397-399B4D03CE81}"},
    Known{"CLSCO_INPUTAZCOLL_v9", "{87916DBE-3947-46BA-8ED2-81E8048EB55A}"},
    Known{"CLSCO_INPUTAZCOLL_v10", "{3E8DCCD7-BAE0-4C43-B9F9-C4E0342C8471}"},
    Known{"CLSCO_INPUTAZCOLL_v11", "{BD7E2DD5-370F-4C3B-8A63-1F4F21DA7D0C}"},
    Known{"CLSCO_OUTPUTAZCOLL_v1", "{818559CD-3D43-4F1E-8123-16B388635592}"},
    Known{"CLSCO_OUTPUTAZCOLL_v2", "{FBDDFF43-E94C-4919-99EF-6985AD31B8C9}"},
    Known{"CLSCO_OUTPUTAZCOLL_v3", "{973C65B8-5167-4EC9-86D9-7D90E16F2C0F}"},
    Known{"CLSCO_AZIENDECOLL", "{C2409E04-A6BF-4C25-BF29-F41F74A4E3DE}"},
    Known{"CLSCO_INPUTAZCOLL", "{0D085CC9-1598-49A8-BB7E-13892BDE8847}"},
    Known{"CLSCO_OUTPUTAZCOLL", "{44777FA0-35FB-41E7-B8B8-0AFFE0C457FE}"},
};

std::string textOf(REFGUID identifier) {
  wchar_t text[40]{};
  StringFromGUID2(identifier, text, 40);
  return ado::narrowText(text);
}

TEST(TypeLibraryOfTheDll, KeepsEveryIdentifierThatWasEverGivenOut) {
  const ComPtr<ITypeLib> all = library();
  TLIBATTR* attributes = nullptr;
  ASSERT_EQ(all->GetLibAttr(&attributes), S_OK);
  EXPECT_EQ(textOf(attributes->guid), "{78587500-948A-496B-A647-F65021C5C09F}");
  EXPECT_EQ(attributes->wMajorVerNum, 1);
  EXPECT_EQ(attributes->wMinorVerNum, 0);
  all->ReleaseTLibAttr(attributes);
  for (const Known& known : kIdentifiers) {
    CLSID identifier{};
    CLSIDFromString(ado::wideText(known.identifier).c_str(), &identifier);
    ComPtr<ITypeInfo> info;
    ASSERT_EQ(all->GetTypeInfoOfGuid(identifier, info.receive()), S_OK) << known.name;
    BSTR name = nullptr;
    EXPECT_EQ(info->GetDocumentation(MEMBERID_NIL, &name, nullptr, nullptr, nullptr), S_OK);
    EXPECT_EQ(ado::textOf(name), known.name);
    SysFreeString(name);
  }
  EXPECT_EQ(all->GetTypeInfoCount(), kIdentifiers.size());
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
