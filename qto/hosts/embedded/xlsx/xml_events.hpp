#pragma once

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "qto/hosts/embedded/xlsx/limits.hpp"
#include "qto/hosts/embedded/xlsx/open_failure.hpp"

namespace qto::embedded {

/// The vocabularies that matter, transitional and strict forms alike.
enum class Space : std::uint8_t {
  none,
  other,
  main,           ///< SpreadsheetML
  relationships,  ///< attributes that name a relationship
  package,        ///< relationship parts
  chart,
  sheet_drawing,
  compatibility,  ///< markup compatibility and extensibility
};

/// The namespace declarations in force while a part is read.
class XmlNames {
 public:
  /// Takes the declarations among an element's attributes (name, value, ..., null), and counts
  /// the attributes.
  std::size_t enter(const char* const* attributes, int depth);
  /// Drops what the element of that depth declared.
  void leave(int depth) {
    while (!bindings_.empty() && bindings_.back().depth == depth) drop();
  }
  /// Splits a prefix off `name` and tells its vocabulary; without prefix it is the default one.
  Space resolve(std::string_view& name) const {
    const std::size_t colon = name.find(':');
    if (colon == std::string_view::npos) return default_;
    const Space space = of_prefix(name.substr(0, colon));
    name.remove_prefix(colon + 1);
    return space;
  }
  Space of_prefix(std::string_view prefix) const;

 private:
  struct Binding {
    std::string prefix;
    Space space;
    int depth;
  };
  void drop();

  std::vector<Binding> bindings_;
  Space default_ = Space::none;
};

/// The attributes of an element, valid while its start is being handled.
class Attributes {
 public:
  Attributes(const char* const* list, const XmlNames& names) : list_(list), names_(names) {}

  /// The value of an attribute without prefix, or null.
  const char* find(std::string_view name) const noexcept;
  /// The value, "" when there is none.
  std::string_view text(std::string_view name) const noexcept;
  /// Nothing when there is no such attribute or it is no whole number.
  std::optional<std::int64_t> whole(std::string_view name) const noexcept;
  std::int64_t whole_or(std::string_view name, std::int64_t fallback) const noexcept {
    return whole(name).value_or(fallback);
  }
  double number_or(std::string_view name, double fallback) const noexcept;
  bool flag(std::string_view name, bool fallback = false) const noexcept;
  /// The relationship that an attribute such as r:id names; "" when there is none.
  std::string_view relationship(std::string_view name = "id") const noexcept;
  /// Names and values in turn, ended by a null.
  const char* const* list() const noexcept { return list_; }

 private:
  const char* const* list_;
  const XmlNames& names_;
};

/// XML that is not well-formed, or content that XML allows and a workbook does not. Whoever reads
/// the part turns it into the OpenFailure that names part and line.
struct XmlFault : std::runtime_error {
  explicit XmlFault(const std::string& reason, OpenFailureKind failure = OpenFailureKind::damaged)
      : std::runtime_error(reason), kind(failure) {}
  OpenFailureKind kind;
};

/// Receives a part element by element. Names come without prefix; of alternate contents only the
/// fallback is reported.
class XmlHandler {
 public:
  virtual ~XmlHandler() = default;
  virtual void on_start(Space space, std::string_view name, const Attributes& attributes) = 0;
  virtual void on_end(Space, std::string_view) {}
  /// Character data; one stretch may come in several pieces.
  virtual void on_text(std::string_view) {}
};

/// What stands between a tokenizer and a handler: resolves prefixes, passes over alternate
/// contents, and bounds the depth.
class XmlEvents {
 public:
  explicit XmlEvents(XmlHandler& handler, const Limits& limits = standard_limits)
      : handler_(handler), limits_(limits) {}
  const Limits& limits() const noexcept { return limits_; }

  /// `attributes`: names and values in turn, ended by a null.
  void start(std::string_view name, const char* const* attributes);
  void end(std::string_view name);
  void text(std::string_view data) {
    if (skipping_ == 0) handler_.on_text(data);
  }

 private:
  XmlHandler& handler_;
  const Limits& limits_;
  XmlNames names_;
  int depth_ = 0;
  int skipping_ = 0;  ///< depth of the element whose content is passed over, 0 for none
};

}  // namespace qto::embedded
