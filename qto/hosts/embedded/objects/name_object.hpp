#pragma once

#include <optional>

#include "qto/host/defined_name.hpp"
#include "qto/hosts/embedded/objects/workbook_object.hpp"

namespace qto::embedded {

/// A defined name, known by its text and scope: it stays the same name when it is redefined.
class NameObject final : public host::DefinedName {
 public:
  /// `scope` is the sheet of a sheet-level name, null for a name of the workbook.
  NameObject(Ref<WorkbookObject> workbook, Ref<SheetSlot> scope, std::string name);

  Ref<host::HostObject> Parent() const override;
  bool exists() const noexcept override;
  std::string Name() const override;
  std::string NameLocal() const override { return Name(); }
  int Index() const override;
  bool Visible() const override;
  std::string RefersTo() const override;
  std::string RefersToLocal() const override;
  std::string RefersToR1C1Local() const override;

 private:
  Ref<host::Application> application() const override;
  const embedded::DefinedName* find() const;
  const embedded::DefinedName& name() const;

  Ref<WorkbookObject> workbook_;
  Ref<SheetSlot> scope_;
  std::string name_;
};

/// The handle of a name of the book.
Ref<host::DefinedName> name_object(OpenBook& book, const DefinedName& name);
/// A name with its scope written before it: Sheet1!Rate, 'My sheet'!Rate, Book1.xlsx!Rate. Null
/// when there is none.
Ref<host::DefinedName> find_qualified_name(OpenBook& book, std::string_view text);
/// Defines or redefines a name in the scope (null: the workbook); throws for an impossible name and
/// for a text that is no formula.
Ref<host::DefinedName> define_name(OpenBook& book, const Sheet* scope, std::string_view name,
                                   std::string_view refers_to);
/// The first visible name that refers to exactly this block.
const DefinedName* name_of_block(OpenBook& book, const Sheet& sheet, const Rect& block);

}  // namespace qto::embedded
