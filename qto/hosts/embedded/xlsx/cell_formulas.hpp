#pragma once

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

#include "qto/hosts/embedded/book/sheet.hpp"
#include "qto/hosts/embedded/xlsx/load_context.hpp"
#include "qto/hosts/embedded/xlsx/xml_events.hpp"

namespace qto::embedded {

/// The formulas of one sheet: gives each cell its formula, whatever form the file stores it in.
class CellFormulas {
 public:
  CellFormulas(LoadContext& context, Sheet& sheet) : context_(context), sheet_(sheet) {}

  /// Between cells there is no formula.
  void clear() noexcept { kind_ = Kind::none; }
  void start(const char* const* attributes);
  std::string& text() noexcept { return text_; }
  bool present() const noexcept { return kind_ != Kind::none; }

  /// Gives the cell the formula read since clear(). `has_result`: the file knows its result.
  void store(CellPos at, bool has_result);
  /// Gives the children that stood before their master their formula.
  void finish();

 private:
  enum class Kind : std::uint8_t { none, normal, shared, array, data_table };
  struct Child {
    CellPos at;
    std::int64_t group;
    bool has_result;
  };

  void store_shared(CellPos at, bool has_result);
  void store_block(CellPos at, bool has_result);
  void give(CellPos at, FormulaId id, bool has_result);
  FormulaId& master(std::int64_t group);
  Rect block_from(CellPos at) const;
  std::string data_table_text() const;

  LoadContext& context_;
  Sheet& sheet_;
  Kind kind_ = Kind::none;
  std::string text_;
  std::string ref_;
  std::int64_t group_ = -1;
  // Of data tables: the cells that take the inputs, and how they are arranged.
  std::string first_input_, second_input_;
  bool two_inputs_ = false;
  bool row_input_ = false;

  std::vector<FormulaId> masters_;  ///< by group, as applications number them
  std::unordered_map<std::int64_t, FormulaId> odd_masters_;
  std::vector<Child> early_children_;
};

}  // namespace qto::embedded
