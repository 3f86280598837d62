#include "qto/hosts/embedded/objects/name_object.hpp"

#include "qto/automation/text.hpp"
#include "qto/hosts/embedded/formulas/compiled_formula.hpp"
#include "qto/hosts/embedded/objects/cell_formula.hpp"
#include "qto/hosts/embedded/objects/checks/raise.hpp"
#include "qto/hosts/embedded/objects/link_formula.hpp"
#include "qto/hosts/embedded/objects/references/convert_reference.hpp"

namespace qto::embedded {
namespace {

constexpr std::size_t longest_name = 255;

bool is_name_start(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_' || c == '\\' ||
         static_cast<unsigned char>(c) >= 0x80;
}

bool is_possible_name(std::string_view name) {
  if (name.empty() || text::utf16_length(name) > longest_name || !is_name_start(name.front()))
    return false;
  for (const char c : name)
    if (!is_name_start(c) && !(c >= '0' && c <= '9') && c != '.' && c != '?') return false;
  if (name.size() == 1 && ((name[0] | 0x20) == 'r' || (name[0] | 0x20) == 'c')) return false;
  return !parse_cell(name) && a1_from_r1c1(name, {}) == name;
}

/// The sheet or book name of a qualifier, apostrophes taken away.
std::string unquoted(std::string_view qualifier) {
  if (qualifier.size() < 2 || qualifier.front() != '\'' || qualifier.back() != '\'')
    return std::string(qualifier);
  std::string out;
  for (std::size_t i = 1; i + 1 < qualifier.size(); ++i) {
    out.push_back(qualifier[i]);
    if (qualifier[i] == '\'') ++i;
  }
  return out;
}

}  // namespace

NameObject::NameObject(Ref<WorkbookObject> workbook, Ref<SheetSlot> scope, std::string name)
    : workbook_(std::move(workbook)), scope_(std::move(scope)), name_(std::move(name)) {}

const embedded::DefinedName* NameObject::find() const {
  const OpenBook* open = workbook_->open_book();
  if (!open || (scope_ && !scope_->sheet)) return nullptr;
  return open->book().names.find(name_, scope_ ? scope_->sheet : nullptr);
}

const embedded::DefinedName& NameObject::name() const {
  const embedded::DefinedName* found = find();
  if (!found) fail_gone();
  return *found;
}

bool NameObject::exists() const noexcept { return find() != nullptr; }

Ref<host::HostObject> NameObject::Parent() const {
  name();
  if (scope_) return scope_->book->sheet(*scope_->sheet);
  return workbook_;
}

Ref<host::Application> NameObject::application() const {
  name();
  return workbook_->Application();
}

std::string NameObject::Name() const {
  const embedded::DefinedName& found = name();
  if (!scope_) return found.name;
  std::string out;
  append_sheet_name(out, scope_->sheet->name);
  return out.append("!").append(found.name);
}

int NameObject::Index() const {
  const embedded::DefinedName* found = find();
  return found ? workbook_->open().book().names.index_of(*found) : 0;
}

bool NameObject::Visible() const { return !name().hidden; }

std::string NameObject::RefersTo() const {
  std::string out;
  RenderContext context = context_at_active_cell(workbook_->open());
  context.on_any_sheet = true;
  name().refers_to->append_formula(out, context);
  return out;
}

std::string NameObject::RefersToLocal() const {
  std::string out;
  name().refers_to->append_local(out, context_at_active_cell(workbook_->open()));
  return out;
}

std::string NameObject::RefersToR1C1Local() const {
  std::string out;
  name().refers_to->append_r1c1(out, context_at_active_cell(workbook_->open()));
  return out;
}

Ref<host::DefinedName> name_object(OpenBook& book, const DefinedName& name) {
  Ref<SheetSlot> scope;
  if (name.sheet) scope = Ref<SheetSlot>(&book.slot(*name.sheet));
  return make_ref<NameObject>(book.workbook(), std::move(scope), name.name);
}

Ref<host::DefinedName> find_qualified_name(OpenBook& book, std::string_view text) {
  const std::size_t mark = text.rfind('!');
  if (mark == std::string_view::npos) return nullptr;
  const std::string qualifier = unquoted(text.substr(0, mark));
  const std::string_view name = text.substr(mark + 1);
  const Sheet* sheet = book.book().find_sheet(qualifier);
  if (!sheet && !text::equal_fold(qualifier, book.book().name)) return nullptr;
  const DefinedName* found = book.book().names.find(name, sheet);
  return found ? name_object(book, *found) : nullptr;
}

Ref<host::DefinedName> define_name(OpenBook& book, const Sheet* scope, std::string_view name,
                                   std::string_view refers_to) {
  if (!is_possible_name(name)) fail("Not possible as a name: " + std::string(name));
  const std::string_view body = refers_to.starts_with('=') ? refers_to.substr(1) : refers_to;
  const std::string text = number_links(qualify_references(body, book.active_sheet().name), book);
  auto compiled = CompiledFormula::compile(text, book.active_cell());
  if (compiled->broken()) fail("Not a formula: " + std::string(refers_to));
  DefinedName defined;
  defined.name = name;
  defined.sheet = scope;
  defined.refers_to = std::move(compiled);
  book.book().names.set(std::move(defined));
  book.book().everything_changed();
  return name_object(book, *book.book().names.find(name, scope));
}

const DefinedName* name_of_block(OpenBook& book, const Sheet& sheet, const Rect& block) {
  return book.name_index.find(book.book(), sheet, block, book.active_cell());
}

}  // namespace qto::embedded
