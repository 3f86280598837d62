#include <com/sun/star/container/XIndexAccess.hpp>
#include <com/sun/star/container/XNamed.hpp>
#include <com/sun/star/sheet/XDatabaseRange.hpp>
#include <com/sun/star/sheet/XExternalDocLinks.hpp>
#include <com/sun/star/sheet/XFormulaTokens.hpp>

#include "qto/automation/text.hpp"
#include "qto/formula/lexer.hpp"
#include "qto/formula/qualifier.hpp"
#include "qto/hosts/libreoffice/document/document.hpp"
#include "qto/hosts/libreoffice/office/fail.hpp"

namespace qto::libreoffice {
namespace {

namespace beans = com::sun::star::beans;
namespace container = com::sun::star::container;

/// The document as the reading of a formula in one of its cells needs it.
class CellSurroundings final : public Surroundings {
 public:
  CellSurroundings(Document& document, const SheetSlot& sheet, CellPos at)
      : document_(document), sheet_(sheet), at_(at) {}

  const FunctionNames& functions() const override { return document_.others().function_names(); }
  bool is_sheet(std::string_view name) const override { return document_.find_sheet(name); }

  LinkTarget link(std::string_view url) const override {
    LinkTarget target = link_target(url);
    if (document_.others().find_document(target.name)) target.folder.clear();
    return target;
  }

  std::optional<LinkTarget> link(int number) const override {
    const auto& links = document_.links();
    if (number < 1 || number > std::ssize(links) || links[number - 1].empty()) return std::nullopt;
    return link(links[number - 1]);
  }

  std::string structured(const formula::StructuredRef& reference) const override {
    const auto target = resolve_table(document_.tables(), reference, sheet_, at_);
    if (!target) return "#REF!";
    std::string out;
    if (target->sheet != &sheet_) append_sheets(out, target->sheet->name, "");
    append_rect(out, target->block);
    return out;
  }

 private:
  Document& document_;
  const SheetSlot& sheet_;
  CellPos at_;
};

/// The block that is all of a text, and its sheet, when it is on a sheet of the document.
void find_sole_block(const Document& document, NameEntry& entry) {
  formula::Lexer lexer(entry.refers_to);
  formula::Token token = lexer.next();
  SheetSlot* sheet = entry.scope;
  if (token.kind == formula::TokenKind::qualifier) {
    const auto qualifier = formula::parse_qualifier(lexer.text(token));
    const bool own = qualifier.external == 0 && qualifier.book.empty() && !qualifier.broken &&
                     qualifier.last_sheet.empty();
    sheet = own ? document.find_sheet(qualifier.sheet) : nullptr;
    token = lexer.next();
  }
  if (!sheet || token.kind != formula::TokenKind::area || token.end != entry.refers_to.size())
    return;
  entry.sheet = sheet;
  entry.block = lexer.area().rect();
}

}  // namespace

std::string Document::engine_text(const OUString& text, const SheetSlot& sheet, CellPos at,
                                  bool* relative) {
  return from_office(utf8(text), CellSurroundings(*this, sheet, at), relative);
}

void Document::read_names(const uno::Reference<uno::XInterface>& ranges, SheetSlot* scope,
                          Names& names) {
  const uno::Reference<container::XIndexAccess> list(ranges, uno::UNO_QUERY_THROW);
  for (std::int32_t i = 0; i < list->getCount(); ++i) {
    NameEntry entry;
    entry.range.set(list->getByIndex(i), uno::UNO_QUERY_THROW);
    entry.name = utf8(entry.range->getName());
    entry.scope = scope;
    entry.hidden = entry.name == "_xlnm._FilterDatabase";  // the suite keeps no other mark
    const auto base = entry.range->getReferencePosition();
    entry.refers_to = engine_text(entry.range->getContent(), scope ? *scope : *sheets_.front(),
                                  {base.Row + 1, base.Column + 1}, &entry.relative);
    if (!entry.relative) find_sole_block(*this, entry);
    names.add(std::move(entry));
  }
}

const Names& Document::names() {
  if (names_) return *names_;
  auto names = std::make_unique<Names>();
  guarded("Reading the names", [&] {
    const auto ranges_of = [](const uno::Reference<uno::XInterface>& owner) {
      return uno::Reference<uno::XInterface>(
          uno::Reference<beans::XPropertySet>(owner, uno::UNO_QUERY_THROW)
              ->getPropertyValue("NamedRanges"),
          uno::UNO_QUERY_THROW);
    };
    read_names(ranges_of(model_), nullptr, *names);
    for (const auto& slot : sheets_) read_names(ranges_of(slot->sheet), slot.get(), *names);
  });
  names_ = std::move(names);
  return *names_;
}

std::string Document::refers_to(const NameEntry& name, CellPos at) {
  if (!name.relative || at == CellPos{}) return name.refers_to;
  const uno::Reference<sheet::XFormulaTokens> tokens(name.range, uno::UNO_QUERY_THROW);
  const SheetSlot& sheet = name.scope ? *name.scope : *active;
  return utf8(
      parser()->printFormula(tokens->getTokens(), {sheet.position, at.column - 1, at.row - 1}));
}

const std::vector<TableEntry>& Document::tables() {
  if (tables_) return *tables_;
  auto tables = std::make_unique<std::vector<TableEntry>>();
  guarded("Reading the tables", [&] {
    const uno::Reference<container::XIndexAccess> list(
        properties()->getPropertyValue("DatabaseRanges"), uno::UNO_QUERY_THROW);
    for (std::int32_t i = 0; i < list->getCount(); ++i) {
      const uno::Reference<sheet::XDatabaseRange> range(list->getByIndex(i), uno::UNO_QUERY_THROW);
      const auto area = range->getDataArea();
      if (area.Sheet < 0 || area.Sheet >= std::ssize(sheets_)) continue;
      TableEntry table;
      table.name = utf8(uno::Reference<container::XNamed>(range, uno::UNO_QUERY_THROW)->getName());
      table.sheet = sheets_[area.Sheet].get();
      table.range = {{area.StartRow + 1, area.StartColumn + 1},
                     {area.EndRow + 1, area.EndColumn + 1}};
      const uno::Reference<beans::XPropertySet> properties(range, uno::UNO_QUERY_THROW);
      properties->getPropertyValue("ContainsHeader") >>= table.has_header;
      properties->getPropertyValue("TotalsRow") >>= table.has_totals;
      tables->push_back(std::move(table));
    }
  });
  tables_ = std::move(tables);
  return *tables_;
}

const std::vector<std::string>& Document::links() {
  if (links_) return *links_;
  auto links = std::make_unique<std::vector<std::string>>();
  guarded("Reading the links", [&] {
    const uno::Reference<sheet::XExternalDocLinks> list(
        properties()->getPropertyValue("ExternalDocLinks"), uno::UNO_QUERY_THROW);
    for (const auto& name : list->getElementNames()) {
      const std::string address = utf8(name);
      links->push_back(address.find('/') == std::string::npos ? "" : address);
    }
  });
  links_ = std::move(links);
  return *links_;
}

}  // namespace qto::libreoffice
