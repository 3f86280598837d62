#pragma once

#include <string_view>

#include "qto/hosts/embedded/evaluate/coercion.hpp"
#include "qto/hosts/embedded/evaluate/environment.hpp"
#include "qto/hosts/embedded/evaluate/lookup_index.hpp"
#include "qto/hosts/embedded/evaluate/operand.hpp"
#include "qto/hosts/embedded/evaluate/value_view.hpp"

namespace qto::embedded {

/// The largest array that an evaluation may build; beyond it a formula gives #NUM!.
inline constexpr std::int64_t max_array_elements = std::int64_t{1} << 23;

/// Where the formula stands that is being evaluated.
struct FormulaPlace {
  Book* book = nullptr;
  Sheet* sheet = nullptr;
  CellPos at;
};

/// What operators and functions may ask while a formula is evaluated: where it stands, and what
/// cells hold. References are read only after ready() agreed.
class Context {
 public:
  explicit Context(Environment& environment) : environment_(environment) {}
  Context(const Context&) = delete;
  Context& operator=(const Context&) = delete;
  virtual ~Context() = default;

  Environment& environment() const noexcept { return environment_; }
  const FormulaPlace& place() const noexcept { return place_; }
  Book& book() const noexcept { return *place_.book; }
  CellPos at() const noexcept { return place_.at; }
  DateSettings dates() const noexcept { return {place_.book->date1904, current_year_}; }
  /// The moment of calculation in the book's date system.
  double now() const noexcept;

  /// Asks that the values of the area may be read. False: the evaluation is given up.
  bool ready(const Area& area);
  bool gave_up() const noexcept { return gave_up_; }

  /// The single value that an operand gives where one is wanted: a reference intersects with the
  /// formula's cell (#VALUE! where they do not meet), an array gives its first element. The view
  /// is good as long as the operand.
  ValueView single(const Operand& operand);
  /// As a reference of one cell when the operand is a reference that meets the formula's cell.
  Operand intersect_implicitly(const Operand& operand);
  /// A reference's values as an array; other operands as they are. #NUM! when it is too large.
  Operand dereference(const Operand& operand);
  /// What a reference written in a text denotes (A1 notation, names, tables); an error for a text
  /// that denotes none.
  virtual Operand reference_of(std::string_view text) = 0;
  /// What a function value gives for the arguments; #VALUE! when the operand is none, or takes
  /// another number of arguments.
  virtual Operand apply(const Operand& function, std::span<const Operand> arguments) = 0;
  /// Where values stand in columns that are looked through often.
  LookupIndexes& lookups() noexcept { return lookups_; }
  /// The block that the formula of a cell fills: itself unless it is an array formula.
  Area spill_of(const Area& cell) const;

 protected:
  void begin(const FormulaPlace& place);

  FormulaPlace place_;

 private:
  Environment& environment_;
  LookupIndexes lookups_;
  int current_year_ = 1900;
  int current_day_ = -1;
  bool gave_up_ = false;
};

/// True when reading the sheet's cells needs no calculation: it holds no formula at all.
bool holds_no_formulas(const Sheet& sheet) noexcept;

}  // namespace qto::embedded
