#pragma once

#include <vector>

#include "qto/formula/syntax_tree.hpp"
#include "qto/hosts/embedded/evaluate/closed_books.hpp"
#include "qto/hosts/embedded/evaluate/coercion.hpp"
#include "qto/hosts/embedded/evaluate/context.hpp"

/// What written references denote, seen from the formula that holds them.
namespace qto::embedded {

/// Finds books and sheets by what stands before "!".
class ReferenceResolver {
 public:
  explicit ReferenceResolver(Environment& environment) : environment_(environment) {}

  void begin(const Book& book) { closed_.begin(book); }
  bool is_closed(const Book& book) const noexcept { return closed_.contains(book); }

  /// The book that a qualifier names; null when there is none.
  Book* book_of(const formula::SheetQualifier& qualifier, const FormulaPlace& place);
  Operand area(const formula::AreaRef& area, const formula::SheetQualifier& qualifier,
               const FormulaPlace& place);
  Operand structured(const formula::StructuredRef& reference,
                     const formula::SheetQualifier& qualifier, const FormulaPlace& place);

 private:
  Book* linked_book(const Book& owner, std::uint32_t index);
  Operand span(const formula::SheetQualifier& qualifier, Book& book, const Rect& rect);

  Environment& environment_;
  ClosedBooks closed_;
};

/// The reference operators ":" " " and ",".
Operand join_references(formula::Operator op, const Operand& left, const Operand& right);

}  // namespace qto::embedded
