#pragma once

#include <com/sun/star/beans/XPropertySet.hpp>
#include <com/sun/star/sheet/XFormulaParser.hpp>
#include <com/sun/star/sheet/XSpreadsheetDocument.hpp>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "qto/hosts/libreoffice/document/names.hpp"
#include "qto/hosts/libreoffice/document/sheet_slot.hpp"
#include "qto/hosts/libreoffice/document/tables.hpp"
#include "qto/hosts/libreoffice/formulas/from_office.hpp"
#include "qto/hosts/libreoffice/office/office.hpp"

namespace qto::libreoffice {

class Document;
class DocumentListener;

/// The open documents, as formulas that refer to others need them.
class OpenDocuments {
 public:
  virtual ~OpenDocuments() = default;
  /// By file name without folder, letter case ignored.
  virtual Document* find_document(std::string_view name) const = 0;
  virtual const FunctionNames& function_names() const = 0;
};

/// A spreadsheet document that is open in the suite, with what was read of it. Nothing of it is
/// ever saved.
class Document {
 public:
  using Model = uno::Reference<sheet::XSpreadsheetDocument>;

  /// `file` is the full name, "" for a new document, which is called `title`.
  Document(const OpenDocuments& others, const Model& model, std::string file, std::string password,
           std::string title = {});
  ~Document();
  Document(const Document&) = delete;
  Document& operator=(const Document&) = delete;

  const Model& model() const noexcept { return model_; }
  const OpenDocuments& others() const noexcept { return others_; }
  const std::string& name() const noexcept { return name_; }
  const std::string& path() const noexcept { return path_; }
  std::string full_name() const;
  bool is_new() const noexcept { return file_.empty(); }
  const std::string& file() const noexcept { return file_; }
  const std::string& password() const noexcept { return password_; }
  uno::Reference<com::sun::star::beans::XPropertySet> properties() const;

  /// False once the suite has closed the document.
  bool alive() const noexcept { return model_.is(); }
  const std::vector<Ref<SheetSlot>>& sheets() const noexcept { return sheets_; }
  SheetSlot* find_sheet(std::string_view name) const;
  SheetSlot& add_sheet(const std::string& name);

  const Names& names();
  const std::vector<TableEntry>& tables();
  /// Addresses of the linked books, in the file's order; "" for links of another kind.
  const std::vector<std::string>& links();

  /// A formula text of the suite as the engine reads it, for a formula in the cell.
  std::string engine_text(const OUString& text, const SheetSlot& sheet, CellPos at,
                          bool* relative = nullptr);
  /// What a name refers to as seen from the cell, without "=".
  std::string refers_to(const NameEntry& name, CellPos at);
  /// Reads and writes formula texts of .xlsx files.
  const uno::Reference<sheet::XFormulaParser>& parser();

  /// Days between the origin of the document's dates and 1899-12-30.
  double date_origin() const noexcept { return date_origin_; }
  /// A cell's value; dates and Booleans of formulas are told from numbers here.
  Variant value(SheetSlot& sheet, CellPos pos);
  /// The cells of the sheet that lie on a circle of references, in the order of rows.
  const std::vector<CellPos>& circular_cells(const SheetSlot& sheet);

  /// Something was written, or changed from outside: what was read is read again when needed.
  void changed();
  /// The suite closed the document.
  void gone() noexcept;
  /// While this is held, changes are our own and do not count.
  bool evaluating = false;

  SheetSlot* active = nullptr;

 private:
  void take_sheets();
  void read_view();
  void read_names(const uno::Reference<uno::XInterface>& ranges, SheetSlot* scope, Names& names);
  void read_circular_cells();

  const OpenDocuments& others_;
  Model model_;
  std::string file_, password_, path_, name_;
  std::vector<Ref<SheetSlot>> sheets_;
  std::unique_ptr<Names> names_;
  std::unique_ptr<std::vector<TableEntry>> tables_;
  std::unique_ptr<std::vector<std::string>> links_;
  std::unique_ptr<std::vector<std::vector<CellPos>>> circles_;
  uno::Reference<sheet::XFormulaParser> parser_;
  double date_origin_ = 0;
  uno::Reference<uno::XInterface> listener_;  // keeps it
  DocumentListener* listening_ = nullptr;
};

}  // namespace qto::libreoffice
