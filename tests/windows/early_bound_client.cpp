/// A client that calls by position, compiled against the header that the type library gives.
#include <windows.h>

#include <initguid.h>

#include <qtoeng1101.h>

#include <ocidl.h>
#include <olectl.h>

#include "tests/windows/automation.hpp"
#include "tests/windows/check.hpp"

namespace {

constexpr HRESULT out_of_range = static_cast<HRESULT>(0x80040004);

template <class Interface>
Pointer<Interface> create(const GUID& class_id, const GUID& id) {
  Pointer<Interface> made;
  CHECK(CoCreateInstance(class_id, nullptr, CLSCTX_INPROC_SERVER, id,
                         reinterpret_cast<void**>(made.out())) == S_OK);
  return made;
}

void properties() {
  const auto drill = create<_DrillDown>(CLSID_DrillDown, IID__DrillDown);
  if (!drill) return;
  LONG items = 0;
  CHECK(drill->put_MaxItems(7) == S_OK && drill->get_MaxItems(&items) == S_OK && items == 7);
  CHECK(drill->put_MaxItems(-1) == out_of_range);
  CHECK(drill->get_MaxItems(nullptr) == E_POINTER);
  VARIANT_BOOL ignores = 5;
  CHECK(drill->put_IgnoreConstantIfZeroOrOne(1) == S_OK);
  CHECK(drill->get_IgnoreConstantIfZeroOrOne(&ignores) == S_OK && ignores == VARIANT_TRUE);
  CHECK(drill->FindInputs() == static_cast<HRESULT>(0x80040001));
  Pointer<_DrillOptions> options, back;
  options = create<_DrillOptions>(CLSID_DrillOptions, IID__DrillOptions);
  CHECK(options->put_ParseIf(qtodrillusedsection) == S_OK);
  CHECK(options->put_ParseMatch(qtodrillusedsection) == out_of_range);
  _DrillOptions* passed = options.get();
  CHECK(drill->putref_DrillOptions(&passed) == S_OK);
  CHECK(drill->get_DrillOptions(back.out()) == S_OK && back.get() == options.get());
}

void texts() {
  const auto part = create<_ModelPart>(CLSID_ModelPart, IID__ModelPart);
  const Text name(L"Name"), size(L"Gr\u00F6\u00DFe"), title(L"\u00E4");
  IDispatch* nothing = nullptr;
  CHECK(part->Create(&nothing, name.get(), size.get()) == S_OK);
  BSTR answer = nullptr;
  CHECK(part->get_AddressShort(&answer) == S_OK && taken(answer) == L"Gr\u00F6\u00DFe");
  CHECK(part->put_Title(title.get()) == S_OK);
  CHECK(part->get_Title(&answer) == S_OK && taken(answer) == L"\u00E4");
  CHECK(part->get_AddressLong(static_cast<qtoAddressType>(0), &answer) == out_of_range);
  VARIANT value;
  VariantInit(&value);
  part->get_value(&value);
  VariantClear(&value);
}

void collections() {
  const auto parts = create<_ModelParts>(CLSID_ModelParts, IID__ModelParts);
  const auto part = create<_ModelPart>(CLSID_ModelPart, IID__ModelPart);
  _ModelPart* passed = part.get();
  LONG count = 0;
  CHECK(parts->AddExisting(&passed) == S_OK && passed == part.get());
  CHECK(parts->get_Count(&count) == S_OK && count == 1);
  Pointer<IUnknown> walk;
  CHECK(parts->NewEnum(walk.out()) == S_OK);
  const auto items = walk.as<IEnumVARIANT>(IID_IEnumVARIANT);
  VARIANT item;
  ULONG fetched = 0;
  CHECK(items->Next(1, &item, &fetched) == S_OK && fetched == 1);
  CHECK(V_VT(&item) == VT_DISPATCH && V_DISPATCH(&item) == part.get());
  VariantClear(&item);
  CHECK(items->Next(1, &item, &fetched) == S_FALSE && fetched == 0);
  Pointer<_ModelPart> found;
  CHECK(parts->get_Item(number(1), found.out()) == S_OK && found.get() == part.get());
}

void events() {
  const auto parts = create<_ModelParts>(CLSID_ModelParts, IID__ModelParts);
  const auto given = create<_ModelPart>(CLSID_ModelPart, IID__ModelPart);
  const auto other = create<_ModelPart>(CLSID_ModelPart, IID__ModelPart);
  const auto container = parts.as<IConnectionPointContainer>(IID_IConnectionPointContainer);
  Pointer<IEnumConnectionPoints> points;
  Pointer<IConnectionPoint> point;
  CHECK(container->EnumConnectionPoints(points.out()) == S_OK);
  CHECK(points->Next(1, point.out(), nullptr) == S_OK);
  IID id;
  CHECK(point->GetConnectionInterface(&id) == S_OK && id == DIID___ModelParts);
  int raised = 0;
  Sink sink([&](DISPID event, DISPPARAMS& parameters) {
    CHECK(event == 1 && parameters.cArgs == 1);
    VARIANT& item = parameters.rgvarg[0];
    CHECK(V_VT(&item) == (VT_BYREF | VT_DISPATCH) && *V_DISPATCHREF(&item) == given.get());
    (*V_DISPATCHREF(&item))->Release();
    other->AddRef();
    *V_DISPATCHREF(&item) = other.get();
    ++raised;
  });
  DWORD cookie = 0;
  CHECK(point->Advise(&sink, &cookie) == S_OK);
  Pointer<IEnumConnections> connections;
  CONNECTDATA data{};
  CHECK(point->EnumConnections(connections.out()) == S_OK);
  CHECK(connections->Next(1, &data, nullptr) == S_OK && data.dwCookie == cookie);
  if (data.pUnk) data.pUnk->Release();
  connections = {};
  given->AddRef();
  Pointer<_ModelPart> passed(given.get());
  CHECK(parts->AddExisting(passed.out()) == S_OK && passed.get() == other.get());
  Pointer<_ModelPart> stored;
  CHECK(parts->get_Item(number(1), stored.out()) == S_OK && stored.get() == other.get());
  CHECK(raised == 1);
  CHECK(point->Unadvise(cookie) == S_OK && sink.references == 0);
  CHECK(point->Unadvise(cookie) == CONNECT_E_NOCONNECTION);
}

}  // namespace

int main() {
  CoInitialize(nullptr);
  properties();
  texts();
  collections();
  events();
  CoFreeUnusedLibrariesEx(0, 0);
  CoUninitialize();
  return finish();
}
