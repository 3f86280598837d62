#include "qto/automation/error.hpp"
#include "qto/automation/text.hpp"
#include "qto/diagnostics/procedure.hpp"
#include "qto/parser/let_bindings.hpp"
#include "qto/parser/parser.hpp"

namespace qto {
namespace {

/// "1E" of 1E+30, which the sign cuts into pieces.
bool is_mantissa(std::string_view text) noexcept {
  return (text.ends_with('E') || text.ends_with('e')) &&
         text::is_numeric(text.substr(0, text.size() - 1));
}

}  // namespace

void Parser::do_parse(Tokens tokens, bool& second_pass) {
  Procedure proc("Parser", "do_parse");
  Qualifiers at = own_place();
  LinkText link;
  bool wanted = false;
  for (std::size_t i = 1; i <= tokens.size(); ++i)
    if (walk_token(tokens, i, at, link, second_pass)) wanted = true;
  second_pass = wanted;
}

/// Handles one token; true when it is a special function that asks for the second walk.
bool Parser::walk_token(Tokens tokens, std::size_t& i, Qualifiers& at, LinkText& link,
                        bool second_pass) {
  const Token& token = tokens[i - 1];
  const std::string_view text = trim_white_space(token.text);
  switch (token.type) {
    case TokenType::end_token:
    case TokenType::function:
    case TokenType::pipe:
      return false;
    case TokenType::range:
      add_new_range_found(at, text);
      break;
    case TokenType::path_name:
      at.path = token.text;
      return false;
    case TokenType::workbook:
      at.book = token.text;
      return false;
    case TokenType::worksheet:
      at.sheet = token.text;
      return false;
    case TokenType::workbook_name:
      workbook_name_found(at, text);
      break;
    case TokenType::worksheet_name:
      worksheet_name_found(at, text);
      break;
    case TokenType::possible_name:
      if (!is_mantissa(text) && !binds(bindings_.empty() ? tokens : bindings_, text))
        add_possible_name_found(at, text);
      break;
    case TokenType::error_constant:
      part_->put_HasError(true);
      return false;
    case TokenType::constant:
      flag_contains_constant(text);
      return false;
    case TokenType::string:
      part_->put_FormulaContainsConstant(qtoFormulaContainsConstant);
      return false;
    case TokenType::application:
      link.application = text;
      return false;
    case TokenType::document:
      link.document = text;
      return false;
    case TokenType::link:
      link_found(link, text);
      link = {};
      return false;
    case TokenType::if_function:
    case TokenType::hlookup:
    case TokenType::vlookup:
    case TokenType::lookup:
    case TokenType::sumif:
    case TokenType::match:
    case TokenType::index:
    case TokenType::offset:
    case TokenType::indirect:
      if (!wants_intelligent_drilling(token.type)) return false;
      if (!second_pass) return true;
      part_->put_IntelligentDrillingUsed(true);
      drill_function(tokens, i);
      return false;
    case TokenType::none:
    case TokenType::own_text:
      throw AutomationError(ErrorNumber::unknown_token);
  }
  at = own_place();
  return false;
}

bool Parser::wants_intelligent_drilling(TokenType type) {
  const DrillOptions::Settings& chosen = options();
  switch (type) {
    case TokenType::indirect:
      return chosen.parse_indirect != qtoDrillIndirectApparent;
    case TokenType::offset:
      return chosen.parse_offset != qtoDrillIndirectApparent;
    case TokenType::match:
      return chosen.parse_match != qtoDrillAll;
    case TokenType::index:
      return chosen.parse_index != qtoDrillAll;
    case TokenType::if_function:
      return chosen.parse_if != qtoDrillAll;
    case TokenType::sumif:
      return chosen.parse_sumif != qtoDrillAll;
    default:
      return chosen.parse_lookup != qtoDrillAll;
  }
}

void Parser::link_found(const LinkText& link, std::string_view item) {
  Procedure proc("Parser", "link_found");
  const std::string application(link.application);
  const std::string document(link.document);
  const std::string location(item);
  auto part = make_ref<ModelPart>(context_);
  if (!proc.step([&] { part->putref_ParentRange(parent_range()); })) return;
  part->Create(nullptr, "!LINK", application + "|" + document + "!" + location);
  part->put_CheckedForPrecedents(true);
  part->put_WorkBookName("");
  part->put_WorkSheetName("");
  part->put_WorkBookPath("");
  found_->AddExisting(part);
  ParserFoundDDEOLELink(application, document, location, part);
}

void Parser::check_for_unknown_precedents() {
  Procedure proc("Parser", "check_for_unknown_precedents");
  ModelParts::Pass pass(found_);
  while (ModelPart* item = pass.next_single()) {
    if (!item->IsUnknown() || item->WorkBookName().empty()) continue;
    Ref<ModelPart> unknown(item);
    std::int32_t fatal_error = 0;
    UnknownObjectFound(unknown, found_, fatal_error);
    if (fatal_error != 0)
      throw NumberedFailure(fatal_error, "a reference to another workbook could not be followed");
  }
}

}  // namespace qto
