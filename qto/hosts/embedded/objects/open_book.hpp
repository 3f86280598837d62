#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "qto/automation/ref.hpp"
#include "qto/host/sheet.hpp"
#include "qto/hosts/embedded/book/book.hpp"
#include "qto/hosts/embedded/formulas/formula_intern.hpp"
#include "qto/hosts/embedded/objects/links.hpp"
#include "qto/hosts/embedded/objects/name_index.hpp"
#include "qto/hosts/embedded/recalc/circular_references.hpp"

namespace qto::embedded {

class ApplicationObject;
class OpenBook;
class WorkbookObject;
class WorksheetObject;

/// What every handle of a sheet holds on to. It outlives the sheet, so that a handle can tell that
/// its sheet is gone.
class SheetSlot : public RefCounted {
 public:
  SheetSlot(OpenBook& owner, Sheet& of);

  /// Null once the sheet was deleted or its workbook closed.
  Sheet* sheet;
  OpenBook* book;
  /// The one handle of the sheet, as long as somebody holds it.
  host::Sheet* handle = nullptr;
  /// Stands for the sheet under its present names; see host::Worksheet::IdentityStamp.
  std::uint64_t stamp;
  /// Further blocks of a selection of several.
  std::vector<Rect> more_selected;
};

/// A number that was never given before in this process.
std::uint64_t next_stamp() noexcept;

/// A book that is open in the application, with what belongs to it while it is open. Handles point
/// here; they are told when it goes.
class OpenBook {
 public:
  OpenBook(ApplicationObject& application, std::unique_ptr<Book> book);
  ~OpenBook();
  OpenBook(const OpenBook&) = delete;
  OpenBook& operator=(const OpenBook&) = delete;

  ApplicationObject& application() const noexcept { return application_; }
  Book& book() const noexcept { return *book_; }
  FormulaIntern& formulas() noexcept { return formulas_; }
  std::string full_name() const;

  SheetSlot& slot(const Sheet& sheet);
  /// The handles, the same as long as somebody holds them.
  Ref<WorkbookObject> workbook();
  Ref<host::Sheet> sheet(Sheet& sheet);
  /// Only for sheets that are worksheets.
  Ref<WorksheetObject> worksheet(Sheet& sheet);
  void forget_handle() noexcept { handle_ = nullptr; }
  /// Deletes a sheet; its handles die.
  void remove_sheet(Sheet& sheet);

  Sheet& active_sheet() const;
  void set_active_sheet(Sheet& sheet);
  CellPos active_cell() const;
  /// The embedded chart or chart sheet that is activated, and its selected series.
  struct ChartSelection {
    const Sheet* sheet = nullptr;
    int chart = 0;    ///< position in Sheet::charts
    int series = -1;  ///< -1: the chart itself
  };
  ChartSelection chart_selection;

  NameIndex name_index;
  CircularReferenceCache circles;

  /// Names of linked workbooks that were found elsewhere; see resolve_links.
  StoredNames stored_links;
  bool read_only = false;

 private:
  ApplicationObject& application_;
  std::unique_ptr<Book> book_;
  FormulaIntern formulas_;
  std::unordered_map<const Sheet*, Ref<SheetSlot>> slots_;
  WorkbookObject* handle_ = nullptr;
  Sheet* active_sheet_ = nullptr;
};

}  // namespace qto::embedded
