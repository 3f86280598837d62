#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "qto/hosts/late_bound/late_bound.hpp"
#include "qto/links/main.hpp"
#include "tests/late_bound/played_server.hpp"
#include "tests/support/text_book.hpp"

namespace qto::test {

/// One application of our own, driven as itself or by name as another server's.
class Driven {
 public:
  explicit Driven(bool by_name) : by_name_(by_name) {}
  Driven(const Driven&) = delete;
  Driven& operator=(const Driven&) = delete;
  ~Driven() {
    Main::set_shared_application(nullptr);
    Main::reset_books();
  }

  /// The object that the engine gets for one of the application.
  template <class T>
  Ref<T> given(const Ref<T>& native) {
    if (!by_name_ || !native) return native;
    const auto foreign = server.stub_of(native);
    return ref_cast<T>(late_bound::proxy_of(*foreign.get()));
  }
  Ref<host::Workbook> open(const std::string& path) {
    return given(books.app.ref())->Workbooks()->Open(path);
  }

  PlayedServer server;
  Books books;

 private:
  bool by_name_;
};

/// All that a part tells, in one line.
inline std::string portrait(ModelPart& part) {
  const auto flag = [](bool on, const char* word) { return on ? std::string(" ") + word : ""; };
  const auto shown = [](const Variant& value) {
    std::string out(value.type_name());
    if (value.is_text()) out += " " + value.text();
    if (const auto* number = value.get_if<double>()) out += " " + std::to_string(*number);
    if (const auto* whole = value.get_if<std::int32_t>()) out += " " + std::to_string(*whole);
    if (const auto* on = value.get_if<bool>()) out += *on ? " True" : " False";
    if (const auto* date = value.get_if<Date>()) out += " " + std::to_string(date->serial);
    if (const auto* error = value.get_if<ErrorValue>())
      out += " " + std::string(error_text(*error));
    return out;
  };
  std::string out = part.UniqueKey() + " " + std::string(part.ObjectType());
  out += " [" + part.AddressLong(qtoaddressBook) + "] [" + part.AddressLongLocal(qtoaddressSheet) +
         "] [" + part.Formula() + "] [" + part.FormulaLocal() + "] [" + shown(part.value()) +
         "] [" + part.Text() + "] [" + part.Title() + "]";
  return out + flag(part.IsUnknown(), "unknown") + flag(part.IsConstant(), "constant") +
         flag(part.HasConstant(), "has constant") + flag(part.HasError(), "error") +
         flag(part.IntelligentDrillingUsed(), "intelligent") + " " +
         std::to_string(part.FormulaContainsConstant());
}

inline std::string portraits(const Ref<ModelParts>& parts) {
  std::string out;
  if (parts) parts->for_each([&](ModelPart& part) { out += portrait(part) + "\n"; });
  return out;
}

/// A part with everything below it, each part once, in the order in which they are met.
inline std::string family(const Ref<ModelPart>& top) {
  std::vector<Ref<ModelPart>> met{top};
  std::string out;
  for (std::size_t i = 0; i < met.size(); ++i) {
    out += portrait(*met[i]) + "\n";
    const auto below = met[i]->DirectPrecedents();
    if (!below) continue;
    below->for_each([&](ModelPart& part) {
      out += "  " + part.UniqueKey() + "\n";
      for (const auto& known : met)
        if (known.get() == &part) return;
      met.emplace_back(&part);
    });
  }
  return out;
}

}  // namespace qto::test
