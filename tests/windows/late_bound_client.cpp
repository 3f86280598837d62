/// A client that knows names only; and what happens when it asks wrongly.
#include <windows.h>

#include <initguid.h>

#include <ocidl.h>
#include <olectl.h>

#include "tests/windows/automation.hpp"
#include "tests/windows/check.hpp"

namespace {

constexpr HRESULT out_of_range = static_cast<HRESULT>(0x80040004);

Pointer<IDispatch> create(const wchar_t* name) {
  CLSID id;
  Pointer<IDispatch> made;
  CHECK(CLSIDFromProgID(name, &id) == S_OK);
  CHECK(CoCreateInstance(id, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch,
                         reinterpret_cast<void**>(made.out())) == S_OK);
  return made;
}

void names_and_values() {
  const auto drill = create(L"QTOEngine.DrillDown");
  CHECK(result_of(drill.get(), L"maxitems", DISPATCH_PROPERTYPUT, {number(12)}) == S_OK);
  Answer answer;
  call(answer, drill.get(), L"MaxItems", DISPATCH_PROPERTYGET);
  CHECK(V_VT(&answer.value) == VT_I4 && V_I4(&answer.value) == 12);
  const auto versioned = create(L"QTOEngine.DrillDown.1");
  CHECK(versioned);
}

void errors() {
  const auto drill = create(L"QTOEngine.DrillDown");
  IDispatch* object = drill.get();
  const Text many(L"many");
  Answer answer;
  call(answer, object, L"MaxItems", DISPATCH_PROPERTYPUT, {number(-1)});
  CHECK(answer.result == DISP_E_EXCEPTION && answer.exception.scode == out_of_range);
  CHECK(answer.exception.bstrSource && std::wstring(answer.exception.bstrSource) == L"QTOEngine");
  CHECK(SysStringLen(answer.exception.bstrDescription) > 0);
  CHECK(result_of(object, L"NoSuchMember", DISPATCH_METHOD) == DISP_E_UNKNOWNNAME);
  CHECK(result_of(object, L"InputCells", DISPATCH_PROPERTYPUT, {number(1)}) ==
        DISP_E_MEMBERNOTFOUND);
  CHECK(result_of(object, L"FindInputs", DISPATCH_METHOD, {number(1)}) == DISP_E_BADPARAMCOUNT);
  CHECK(result_of(object, L"MaxItems", DISPATCH_PROPERTYPUT, {text_value(many)}) ==
        DISP_E_TYPEMISMATCH);
  CHECK(result_of(object, L"StartUnderlyingObject", DISPATCH_PROPERTYPUTREF,
                  {object_value(nullptr)}) == static_cast<HRESULT>(0x80040001));
  const auto books = create(L"QTOEngine.LinkedBooks");
  CHECK(result_of(books.get(), L"Item", DISPATCH_PROPERTYGET, {number(3)}) ==
        static_cast<HRESULT>(0x800A0009));
  CHECK(result_of(books.get(), L"Item", DISPATCH_PROPERTYGET) == DISP_E_BADPARAMCOUNT);
}

void types() {
  const auto drill = create(L"QTOEngine.DrillDown");
  UINT count = 0;
  CHECK(drill->GetTypeInfoCount(&count) == S_OK && count == 1);
  Pointer<ITypeInfo> type, whole;
  CHECK(drill->GetTypeInfo(0, 0x409, type.out()) == S_OK);
  if (!type) return;
  BSTR name = nullptr;
  CHECK(type->GetDocumentation(MEMBERID_NIL, &name, nullptr, nullptr, nullptr) == S_OK);
  CHECK(taken(name) == L"_DrillDown");
  const auto provider = drill.as<IProvideClassInfo2>(IID_IProvideClassInfo2);
  CHECK(provider->GetClassInfo(whole.out()) == S_OK);
  CHECK(whole->GetDocumentation(MEMBERID_NIL, &name, nullptr, nullptr, nullptr) == S_OK);
  CHECK(taken(name) == L"DrillDown");
  TYPEATTR* attributes = nullptr;
  CHECK(whole->GetTypeAttr(&attributes) == S_OK);
  CHECK(attributes->typekind == TKIND_COCLASS && attributes->cImplTypes == 2);
  whole->ReleaseTypeAttr(attributes);
  Pointer<ITypeLib> library;
  UINT index = 0;
  CHECK(type->GetContainingTypeLib(library.out(), &index) == S_OK);
  TLIBATTR* about = nullptr;
  CHECK(library->GetLibAttr(&about) == S_OK);
  CHECK(about->wMajorVerNum == 1 && about->wMinorVerNum == 0 && about->lcid == 0x409);
  CHECK(about->syskind == (sizeof(void*) == 8 ? SYS_WIN64 : SYS_WIN32));
  library->ReleaseTLibAttr(about);
  // The type library's own way to call reaches the same members: places and identifiers agree.
  VARIANT depth = number(4), answer;
  VariantInit(&answer);
  DISPID assigned = DISPID_PROPERTYPUT;
  DISPPARAMS one{&depth, &assigned, 1, 1}, none{};
  EXCEPINFO exception{};
  CHECK(type->Invoke(drill.get(), 6, DISPATCH_PROPERTYPUT, &one, nullptr, &exception, nullptr) ==
        S_OK);
  CHECK(type->Invoke(drill.get(), 6, DISPATCH_PROPERTYGET, &none, &answer, &exception, nullptr) ==
        S_OK);
  CHECK(V_VT(&answer) == VT_I4 && V_I4(&answer) == 4);
}

/// The library goes when nothing of it is held, and comes back when it is needed again.
void unloading() {
  using CanUnload = HRESULT(STDMETHODCALLTYPE*)();
  auto held = create(L"QTOEngine.ModelParts");
  const HMODULE library = GetModuleHandleW(L"qtoeng1101.dll");
  CHECK(library != nullptr);
  const auto can_unload = reinterpret_cast<CanUnload>(
      reinterpret_cast<void (*)()>(GetProcAddress(library, "DllCanUnloadNow")));
  CHECK(can_unload && can_unload() == S_FALSE);
  held = {};
  CHECK(can_unload && can_unload() == S_OK);
  CoFreeUnusedLibrariesEx(0, 0);
  CHECK(GetModuleHandleW(L"qtoeng1101.dll") == nullptr);
  CHECK(create(L"QTOEngine.ModelParts"));
}

}  // namespace

int main() {
  CoInitialize(nullptr);
  names_and_values();
  errors();
  types();
  unloading();
  CoUninitialize();
  return finish();
}
