#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "qto/automation/address.hpp"
#include "qto/formula/syntax_tree.hpp"

namespace qto::embedded {

class Book;
class Sheet;

/// Where a formula text is shown: the cell that holds it, and which other books are open.
struct RenderContext {
  const Book* book = nullptr;
  const Sheet* sheet = nullptr;
  CellPos at;
  /// The linked book (Book::externals[index]) when it is open, or null; decides how references
  /// into it are written. Null: none is.
  const Book* (*find_open)(const Book& book, std::uint32_t index, const void* data) = nullptr;
  const void* data = nullptr;
  /// For the text of a name, which is read on any sheet: references to tables tell their sheet,
  /// with dollars.
  bool on_any_sheet = false;
};

/// A formula as it is kept: once for all cells that share it. The text is a list of pieces, literal
/// stretches and references relative to the cell; rendering it for one cell is joining them.
class CompiledFormula {
 public:
  /// Cuts `text` (without "=", as a file stores it: English names, "," separators, _xlfn. prefixes,
  /// [1] for linked books) into pieces, references taken relative to `base`. Never fails: a text
  /// that is no formula keeps its text and answers broken().
  static std::shared_ptr<const CompiledFormula> compile(std::string_view text, CellPos base);

  /// Appends the formula as the engine reads it, "=" first: A1, no _xlfn. prefixes, structured
  /// references as plain A1 ranges, linked books by name or path.
  void append_formula(std::string& out, const RenderContext& context) const;
  /// Appends the formula as its author sees it: structured references kept.
  void append_local(std::string& out, const RenderContext& context) const;
  /// The same in R1C1 notation.
  void append_r1c1(std::string& out, const RenderContext& context) const;

  /// The syntax tree; parsed when first asked for. Null when the text cannot be parsed (or is
  /// nested deeper than the limit); why_broken() then says why.
  const formula::SyntaxTree* tree() const;
  const std::string& why_broken() const;
  bool broken() const { return tree() == nullptr; }

  /// The number of references when all that the text has are plain areas, so that it reads the same
  /// in every cell of the book but for their moving; none when names of tables, other books or
  /// marks stand in it.
  std::optional<std::int32_t> moving_references(const Book& book) const;

  /// Equal texts relative to their cells: such formulas share one record.
  bool same_as(const CompiledFormula& other) const noexcept;
  std::uint64_t hash() const noexcept;

  /// Appends the key of a text in the cell `base`: equal for formulas that are the same relative to
  /// their cells. Costs much less than compiling.
  static void append_key(std::string& key, std::string_view text, CellPos base);
  bool has_key(std::string_view key) const noexcept;
  /// hash() of the formula that has this key.
  static std::uint64_t hash_key(std::string_view key) noexcept;

  CompiledFormula();
  ~CompiledFormula();

 private:
  static std::string_view without_equals(std::string_view text) noexcept;

  struct Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace qto::embedded
