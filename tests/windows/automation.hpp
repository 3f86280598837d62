#pragma once

#include <windows.h>

#include <oleauto.h>

#include <functional>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

/// What clients on Windows write to work with automation objects.

/// A counted reference.
template <class Interface>
class Pointer {
 public:
  Pointer() = default;
  explicit Pointer(Interface* taken) : held_(taken) {}
  Pointer(Pointer&& other) noexcept : held_(std::exchange(other.held_, nullptr)) {}
  Pointer& operator=(Pointer&& other) noexcept {
    std::swap(held_, other.held_);
    return *this;
  }
  ~Pointer() {
    if (held_) held_->Release();
  }
  Interface* get() const { return held_; }
  Interface* operator->() const { return held_; }
  explicit operator bool() const { return held_; }
  Interface** out() { return &held_; }
  template <class Other>
  Pointer<Other> as(const GUID& id) const {
    Pointer<Other> other;
    held_->QueryInterface(id, reinterpret_cast<void**>(other.out()));
    return other;
  }

 private:
  Interface* held_ = nullptr;
};

/// A text, an owned value.
class Text {
 public:
  explicit Text(const wchar_t* text) : text_(SysAllocString(text)) {}
  Text(const Text&) = delete;
  Text& operator=(const Text&) = delete;
  ~Text() { SysFreeString(text_); }
  BSTR get() const { return text_; }

 private:
  BSTR text_;
};

inline std::wstring taken(BSTR text) {
  const std::wstring out(text ? text : L"");
  SysFreeString(text);
  return out;
}

inline VARIANT number(LONG value) {
  VARIANT out;
  V_VT(&out) = VT_I4;
  V_I4(&out) = value;
  return out;
}
inline VARIANT flag(bool value) {
  VARIANT out;
  V_VT(&out) = VT_BOOL;
  V_BOOL(&out) = value ? VARIANT_TRUE : VARIANT_FALSE;
  return out;
}
inline VARIANT text_value(const Text& text) {
  VARIANT out;
  V_VT(&out) = VT_BSTR;
  V_BSTR(&out) = text.get();
  return out;
}
inline VARIANT object_value(IDispatch* object) {
  VARIANT out;
  V_VT(&out) = VT_DISPATCH;
  V_DISPATCH(&out) = object;
  return out;
}

/// What a late-bound call came to.
struct Answer {
  HRESULT result = S_OK;
  VARIANT value{};
  EXCEPINFO exception{};
  UINT bad_argument = 99;
  Answer() { VariantInit(&value); }
  Answer(const Answer&) = delete;
  Answer& operator=(const Answer&) = delete;
  ~Answer() {
    VariantClear(&value);
    SysFreeString(exception.bstrSource);
    SysFreeString(exception.bstrDescription);
  }
  /// The number of the error, wherever it is told.
  HRESULT number() const { return result == DISP_E_EXCEPTION ? exception.scode : result; }
  /// The object answered, with a reference.
  Pointer<IDispatch> object() const {
    if (V_VT(&value) != VT_DISPATCH || !V_DISPATCH(&value)) return {};
    V_DISPATCH(&value)->AddRef();
    return Pointer<IDispatch>(V_DISPATCH(&value));
  }
};

/// Calls a member by name; arguments in the order in which they are written.
inline void call(Answer& answer, IDispatch* object, const wchar_t* name, WORD flags,
                 std::initializer_list<VARIANT> arguments = {}) {
  LPOLESTR names = const_cast<LPOLESTR>(name);
  DISPID id = DISPID_UNKNOWN, assigned = DISPID_PROPERTYPUT;
  answer.result = object->GetIDsOfNames(GUID(), &names, 1, LOCALE_USER_DEFAULT, &id);
  if (FAILED(answer.result)) return;
  std::vector<VARIANT> values(arguments.end() - arguments.size(), arguments.end());
  for (std::size_t i = 0; i < values.size() / 2; ++i)
    std::swap(values[i], values[values.size() - 1 - i]);
  DISPPARAMS parameters{values.data(), nullptr, static_cast<UINT>(values.size()), 0};
  if (flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) {
    parameters.rgdispidNamedArgs = &assigned;
    parameters.cNamedArgs = 1;
  }
  answer.result = object->Invoke(id, GUID(), LOCALE_USER_DEFAULT, flags, &parameters, &answer.value,
                                 &answer.exception, &answer.bad_argument);
}
inline HRESULT result_of(IDispatch* object, const wchar_t* name, WORD flags,
                         std::initializer_list<VARIANT> arguments = {}) {
  Answer answer;
  call(answer, object, name, flags, arguments);
  return answer.number();
}
inline Pointer<IDispatch> object_of(IDispatch* object, const wchar_t* name,
                                    std::initializer_list<VARIANT> arguments = {}) {
  Answer answer;
  call(answer, object, name, DISPATCH_METHOD | DISPATCH_PROPERTYGET, arguments);
  return answer.object();
}

/// A client's sink of events.
class Sink final : public IDispatch {
 public:
  using Handler = std::function<void(DISPID, DISPPARAMS&)>;
  explicit Sink(Handler handler) : handler_(std::move(handler)) {}
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** out) override {
    *out = id == IID_IUnknown || id == IID_IDispatch ? this : nullptr;
    if (!*out) return E_NOINTERFACE;
    AddRef();
    return S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return ++references; }
  ULONG STDMETHODCALLTYPE Release() override { return --references; }
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
    *count = 0;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS* parameters, VARIANT*,
                                   EXCEPINFO*, UINT*) override {
    handler_(id, *parameters);
    return S_OK;
  }
  ULONG references = 0;

 private:
  Handler handler_;
};
