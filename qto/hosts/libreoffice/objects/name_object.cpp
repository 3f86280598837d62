#include "qto/hosts/libreoffice/objects/name_object.hpp"

#include <com/sun/star/beans/XPropertySet.hpp>
#include <com/sun/star/sheet/XFormulaTokens.hpp>
#include <com/sun/star/sheet/XNamedRanges.hpp>

#include "qto/automation/text.hpp"
#include "qto/formula/token_values.hpp"
#include "qto/host/range.hpp"
#include "qto/hosts/libreoffice/objects/sheet_operations.hpp"
#include "qto/hosts/libreoffice/office/fail.hpp"

namespace qto::libreoffice {
namespace {

uno::Reference<sheet::XNamedRanges> ranges_of(const Document& document, const SheetSlot* scope) {
  namespace beans = com::sun::star::beans;
  const uno::Reference<beans::XPropertySet> owner =
      scope ? uno::Reference<beans::XPropertySet>(scope->sheet, uno::UNO_QUERY_THROW)
            : document.properties();
  return {owner->getPropertyValue("NamedRanges"), uno::UNO_QUERY_THROW};
}

}  // namespace

const NameEntry* NameObject::find() const {
  if (!workbook_->exists() || (scope_ && !scope_->document)) return nullptr;
  return workbook_->document().names().find(name_, scope_.get());
}

const NameEntry& NameObject::name() const {
  const NameEntry* found = find();
  if (!found) fail_gone();
  return *found;
}

Ref<host::HostObject> NameObject::Parent() const {
  name();
  if (scope_) return workbook_->owner()->handle(*scope_);
  return workbook_;
}

Ref<host::Application> NameObject::application() const {
  name();
  return workbook_->Application();
}

std::string NameObject::Name() const {
  const NameEntry& found = name();
  if (!scope_) return found.name;
  std::string out;
  append_sheets(out, scope_->name, "");
  return out.append(found.name);
}

int NameObject::Index() const {
  const NameEntry* found = find();
  return found ? static_cast<int>(found - workbook_->document().names().all().data()) + 1 : 0;
}

std::string NameObject::RefersTo() const {
  return "=" + workbook_->document().refers_to(name(), workbook_->owner()->active_cell());
}

std::string NameObject::RefersToR1C1Local() const {
  return Application()->ConvertFormula(RefersTo(), host::xlA1, host::xlR1C1);
}

Ref<host::DefinedName> name_object(ApplicationObject& application, OpenBook& book,
                                   const NameEntry& entry) {
  return make_ref<NameObject>(application.handle(book), Ref<SheetSlot>(entry.scope), entry.name);
}

Ref<host::DefinedName> find_qualified_name(ApplicationObject& application, OpenBook& book,
                                           std::string_view text) {
  const std::size_t mark = text.rfind('!');
  if (mark == std::string_view::npos) return nullptr;
  const std::string_view written = text.substr(0, mark);
  const std::string qualifier =
      written.starts_with('\'') ? formula::unquote(written) : std::string(written);
  const SheetSlot* sheet = book.document.find_sheet(qualifier);
  if (!sheet && !text::equal_fold(qualifier, book.document.name())) return nullptr;
  const NameEntry* entry = book.document.names().find(text.substr(mark + 1), sheet);
  return entry ? name_object(application, book, *entry) : nullptr;
}

Ref<host::DefinedName> define_name(ApplicationObject& application, OpenBook& book, SheetSlot* scope,
                                   std::string_view name, std::string_view refers_to) {
  Document& document = book.document;
  check_new(document);
  if (refers_to.starts_with('=')) refers_to.remove_prefix(1);
  return guarded("Defining a name", [&] {
    const auto ranges = ranges_of(document, scope);
    if (ranges->hasByName(wide(name))) ranges->removeByName(wide(name));
    const CellPos at = application.active_cell();
    const com::sun::star::table::CellAddress place(document.active->position, at.column - 1,
                                                   at.row - 1);
    const auto tokens = document.parser()->parseFormula(wide(refers_to), place);
    ranges->addNewByName(wide(name), "0", place, 0);
    uno::Reference<sheet::XFormulaTokens>(ranges->getByName(wide(name)), uno::UNO_QUERY_THROW)
        ->setTokens(tokens);
    document.changed();
    const NameEntry* entry = document.names().find(name, scope);
    if (!entry) fail("Not possible as a name: " + std::string(name));
    return name_object(application, book, *entry);
  });
}

}  // namespace qto::libreoffice
