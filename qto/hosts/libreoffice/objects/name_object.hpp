#pragma once

#include <string>

#include "qto/host/defined_name.hpp"
#include "qto/hosts/libreoffice/objects/workbook_object.hpp"

namespace qto::libreoffice {

/// A defined name, known by its scope and its text: it may be redefined while the handle lives.
class NameObject final : public host::DefinedName {
 public:
  NameObject(Ref<WorkbookObject> workbook, Ref<SheetSlot> scope, std::string name)
      : workbook_(std::move(workbook)), scope_(std::move(scope)), name_(std::move(name)) {}

  Ref<host::HostObject> Parent() const override;
  bool exists() const noexcept override { return find() != nullptr; }
  std::string Name() const override;
  std::string NameLocal() const override { return Name(); }
  int Index() const override;
  bool Visible() const override { return !name().hidden; }
  std::string RefersTo() const override;
  std::string RefersToLocal() const override { return RefersTo(); }
  std::string RefersToR1C1Local() const override;

 private:
  Ref<host::Application> application() const override;
  const NameEntry* find() const;
  const NameEntry& name() const;

  Ref<WorkbookObject> workbook_;
  Ref<SheetSlot> scope_;
  std::string name_;
};

/// The handle of a name of the book.
Ref<host::DefinedName> name_object(ApplicationObject& application, OpenBook& book,
                                   const NameEntry& entry);
/// A name with its scope written before it: Sheet1!Rate, 'My sheet'!Rate, Book1.xlsx!Rate. Null
/// when there is none.
Ref<host::DefinedName> find_qualified_name(ApplicationObject& application, OpenBook& book,
                                           std::string_view text);
/// Defines or redefines a name in the scope (null: the workbook) of a new document.
Ref<host::DefinedName> define_name(ApplicationObject& application, OpenBook& book, SheetSlot* scope,
                                   std::string_view name, std::string_view refers_to);

}  // namespace qto::libreoffice
