#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "qto/hosts/embedded/formulas/data_table.hpp"
#include "qto/hosts/embedded/recalc/formula_graph.hpp"

namespace qto::embedded {

/// The what-if tables of some books. Each is calculated by putting its values into the input cells,
/// one after the other, and calculating what depends on them; other tables stand still meanwhile.
class DataTables {
 public:
  DataTables(const std::vector<Book*>& books, const OpenBooks& open, double now);
  /// Before the books are calculated: notes which tables what is pending may reach.
  void note_pending();
  /// After that: calculates those tables and what depends on them.
  void calculate();

 private:
  struct Entry {
    Sheet* sheet;
    DataTable table;
    bool stale = false;
  };

  void list(Sheet& sheet, FormulaId id);
  void note_changes(std::span<const CellAddress> changes, bool everything);
  /// The cells that have got other values.
  std::vector<CellAddress> calculate(const Entry& entry);
  std::vector<Variant> results(const Entry& entry);
  void calculate_from(std::span<const CellAddress> changes);

  const std::vector<Book*>& books_;
  const OpenBooks& open_;
  double now_;
  std::vector<Entry> entries_;
};

}  // namespace qto::embedded
