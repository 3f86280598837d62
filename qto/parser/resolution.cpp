#include "qto/automation/error.hpp"
#include "qto/diagnostics/procedure.hpp"
#include "qto/host/host.hpp"
#include "qto/parser/parser.hpp"
#include "qto/parser/written_name.hpp"

namespace qto {

TokenType Parser::name_type(std::string_view name, std::string book, std::string sheet) {
  Procedure proc("Parser", "is_name");
  if (book.empty() && sheet.empty()) {
    // A name of the formula's own sheet hides a workbook-level one.
    if (own_worksheet_ && own_worksheet_->find_name(name)) return TokenType::worksheet_name;
    return own_workbook_ && own_workbook_->find_name(name) ? TokenType::workbook_name
                                                           : TokenType::none;
  }
  if (book.empty()) {
    if (find_sheet(own_book_, sheet)) {
      book = own_book_;
    } else {
      book = std::move(sheet);  // a workbook written without brackets: Book2.xls!Total
      sheet.clear();
    }
  }
  if (!sheet.empty()) {
    const auto worksheet = find_sheet(book, sheet);
    if (worksheet && worksheet->find_name(name)) return TokenType::worksheet_name;
  }
  const auto workbook = find_book(book);
  return workbook && workbook->find_name(name) ? TokenType::workbook_name : TokenType::none;
}

bool Parser::is_range(std::string_view text) {
  Procedure proc("Parser", "is_range");
  Rect block;
  return form_sheet_ && form_sheet_->find_block(text, block);
}

bool Parser::is_book_open(std::string_view book) {
  Procedure proc("Parser", "is_book_open");
  return find_book(book) != nullptr;
}

host::Application& Parser::application() const {
  if (!context_->application()) throw NumberedFailure(91, "there is no spreadsheet application");
  return *context_->application();
}

/// Probe: the open workbook of that name.
Ref<host::Workbook> Parser::find_book(std::string_view book) {
  if (own_workbook_ && book == own_book_) return own_workbook_;
  const auto& app = context_->application();
  if (!app) return nullptr;
  const auto workbooks = app->Workbooks();
  if (const auto found = workbooks->find(book)) return found;
  return has_doubled_apostrophes(book) ? workbooks->find(undouble_apostrophes(book)) : nullptr;
}

/// Probe: a worksheet of an open workbook.
Ref<host::Worksheet> Parser::find_sheet(std::string_view book, std::string_view sheet) {
  const auto workbook = find_book(book);
  if (!workbook) return nullptr;
  if (const auto found = workbook->find_worksheet(trim_white_space(sheet))) return found;
  return workbook->find_worksheet(undouble_apostrophes(sheet));
}

void Parser::workbook_name_found(Qualifiers at, std::string_view name) {
  Procedure proc("Parser", "workbook_name_found");
  // Unless it is a sheet of the own book, the qualifier is a workbook written without brackets.
  if (at.sheet != own_sheet_ && at.book == own_book_ && !find_sheet(at.book, at.sheet)) {
    at.book = at.sheet;
    at.sheet = own_sheet_;
  }
  (void)proc.step([&] {
    const auto open = find_book(at.book);
    const auto workbook = open ? open : application().Workbooks()->Item(trim_white_space(at.book));
    add_name_part(workbook->Names(name), name);
  });
}

void Parser::worksheet_name_found(const Qualifiers& at, std::string_view name) {
  Procedure proc("Parser", "worksheet_name_found");
  (void)proc.step([&] {
    auto sheet = find_sheet(at.book, at.sheet);
    std::string local_name(name);
    if (!sheet || !sheet->find_name(name)) {
      // Written without its sheet: the active workbook knows which sheet it belongs to.
      const std::string full = application().Names(name)->Name();
      const std::size_t mark = full.find('!');
      std::string sheet_name(at.sheet);
      if (mark != std::string::npos) {
        sheet_name = without_apostrophes(full.substr(0, mark));
        local_name = full.substr(mark + 1);
      }
      sheet = application().Workbooks()->Item(at.book)->Worksheets(sheet_name);
    }
    add_name_part(sheet->Names(local_name), local_name);
  });
}

void Parser::add_name_part(const Ref<Object>& name_object, std::string_view name) {
  auto part = make_ref<ModelPart>(context_);
  part->putref_ParentRange(parent_range());
  part->Create(name_object, "Name", name);
  found_->AddExisting(part);
}

Ref<host::Range> Parser::parent_range() {
  return ref_cast<host::Range>(most_recent_parent().UnderlyingObject());
}

}  // namespace qto
