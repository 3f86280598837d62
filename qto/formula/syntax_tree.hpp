#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "qto/automation/address.hpp"
#include "qto/automation/variant.hpp"

/// The syntax tree of a formula. Nodes lie in one array and name each other by index, so a tree is
/// one allocation, is never walked by pointers, and can be shared by all cells of a formula record.
namespace qto::formula {

/// A row or column of a reference: a place on the grid, or a distance from the formula's cell.
struct RefAxis {
  std::int32_t value = 0;
  bool absolute = false;
  bool operator==(const RefAxis&) const = default;
  /// The row or column seen from `base`; distances wrap around the grid, as in shared formulas and
  /// relative names.
  std::int32_t resolve(std::int32_t base, std::int32_t size) const noexcept {
    if (absolute) return value;
    const std::int32_t index = (base - 1 + value) % size;
    return (index < 0 ? index + size : index) + 1;
  }
};

/// A written cell or block, relative to the formula's cell where it has no dollars.
struct AreaRef {
  RefAxis first_row, first_column, last_row, last_column;
  AreaShape shape = AreaShape::cell;
  bool operator==(const AreaRef&) const = default;
  /// The block seen from the cell that holds the formula, corners in order.
  Rect resolve(CellPos at) const noexcept {
    const std::int32_t r1 = first_row.resolve(at.row, max_rows);
    const std::int32_t c1 = first_column.resolve(at.column, max_columns);
    if (shape == AreaShape::cell) return {{r1, c1}, {r1, c1}};
    const std::int32_t r2 = last_row.resolve(at.row, max_rows);
    const std::int32_t c2 = last_column.resolve(at.column, max_columns);
    return {{std::min(r1, r2), std::min(c1, c2)}, {std::max(r1, r2), std::max(c1, c2)}};
  }
};

/// What stands before "!": nothing (own sheet), a sheet, a span of sheets, another workbook.
struct SheetQualifier {
  /// 0: own workbook; k > 0: Book::externals[k - 1].
  std::uint32_t external = 0;
  /// The workbook as written when it is not one of the file's links (an open book's name), or "".
  std::string book;
  /// What was written before that workbook: its folder with the separator, or "".
  std::string folder;
  /// "" for the own sheet, or for a workbook-level name of another book.
  std::string sheet;
  /// Last sheet of a span Sheet1:Sheet3, "" otherwise.
  std::string last_sheet;
  /// Written as #REF!: the sheet is gone.
  bool broken = false;
  bool present() const noexcept { return external || broken || !book.empty() || !sheet.empty(); }
};

/// A structured reference such as Sales[[#Totals],[Amount]].
struct StructuredRef {
  enum Item : std::uint8_t { all = 1, data = 2, headers = 4, totals = 8, this_row = 16 };
  std::string table;         ///< "" inside its own table
  std::uint8_t items = 0;    ///< union of Item; 0 stands for data
  std::string first_column;  ///< "" for all columns
  std::string last_column;   ///< "" for one column
};

using NodeIndex = std::uint32_t;
inline constexpr NodeIndex no_node = 0xFFFFFFFFu;

enum class NodeKind : std::uint8_t {
  number,      ///< `number`
  text,        ///< `payload` into texts
  boolean,     ///< `payload` 0 or 1
  error,       ///< `payload` is the ErrorValue
  missing,     ///< an omitted argument
  area,        ///< `payload` into areas, `qualifier` into qualifiers (0 = own sheet)
  name,        ///< `payload` into texts, `qualifier` into qualifiers
  structured,  ///< `payload` into structured
  array,       ///< `payload` into arrays
  unary,       ///< operator over one child
  binary,      ///< operator over two children
  call,        ///< `payload` into texts: the function's upper-case name without prefix; arguments
  invoke,      ///< a function that an expression gives, then its arguments
};

enum class Operator : std::uint8_t {
  none,
  plus,
  minus,
  percent,  // unary
  intersection_implicit,
  spill,  // unary: @ before, # after
  add,
  subtract,
  multiply,
  divide,
  power,
  join,  // binary
  equal,
  not_equal,
  less,
  less_equal,
  greater,
  greater_equal,
  range,
  intersect,
  unite,  // reference operators ":" " " ","
};

/// Children are chained: first_child, then next of each.
struct Node {
  NodeKind kind = NodeKind::missing;
  Operator op = Operator::none;
  std::uint16_t child_count = 0;
  std::uint32_t qualifier = 0;
  union {
    double number = 0;
    std::uint32_t payload;
  };
  NodeIndex first_child = no_node;
  NodeIndex next = no_node;
};

struct SyntaxTree {
  std::vector<Node> nodes;
  NodeIndex root = no_node;
  std::vector<std::string> texts;
  std::vector<AreaRef> areas;
  std::vector<SheetQualifier> qualifiers{1};  // entry 0: no qualifier
  std::vector<StructuredRef> structured;
  std::vector<Ref<const VariantArray>> arrays;

  const Node& at(NodeIndex index) const noexcept { return nodes[index]; }
};

}  // namespace qto::formula
