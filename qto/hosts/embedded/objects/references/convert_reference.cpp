#include "qto/hosts/embedded/objects/references/convert_reference.hpp"

#include "qto/automation/text.hpp"
#include "qto/formula/qualifier.hpp"
#include "qto/hosts/embedded/formulas/compiled_formula.hpp"
#include "qto/hosts/embedded/objects/references/rewrite_tokens.hpp"

namespace qto::embedded {
namespace {

void append_own_qualifier(std::string& out, const formula::SheetQualifier& qualifier) {
  if (qualifier.last_sheet.empty()) {
    append_sheet_name(out, qualifier.sheet);
  } else if (needs_quotes(qualifier.sheet) || needs_quotes(qualifier.last_sheet)) {
    append_sheet_name(out, qualifier.sheet + ":" + qualifier.last_sheet);
  } else {
    out.append(qualifier.sheet).append(":").append(qualifier.last_sheet);
  }
  out.push_back('!');
}

}  // namespace

std::optional<std::string> r1c1_from_a1(std::string_view formula, CellPos at) {
  const auto compiled = CompiledFormula::compile(without_equals(formula), at);
  if (compiled->broken()) return std::nullopt;
  std::string out;
  RenderContext context;
  context.at = at;
  compiled->append_r1c1(out, context);
  if (equals_of(formula).empty()) out.erase(0, 1);
  return out;
}

std::string qualify_references(std::string_view formula, std::string_view sheet_name) {
  std::string qualifier;
  append_sheet_name(qualifier, sheet_name);
  qualifier.push_back('!');
  return rewrite_tokens(formula, [&](formula::TokenKind kind, std::string_view text,
                                     formula::TokenKind previous, std::string& out) {
    if (kind == formula::TokenKind::area && previous != formula::TokenKind::qualifier)
      out.append(qualifier);
    out.append(text);
  });
}

std::string rename_qualifiers(std::string_view formula, std::string_view old_name,
                              std::string_view new_name) {
  return rewrite_tokens(formula, [&](formula::TokenKind kind, std::string_view text,
                                     formula::TokenKind, std::string& out) {
    if (kind != formula::TokenKind::qualifier) return void(out.append(text));
    formula::SheetQualifier qualifier = formula::parse_qualifier(text);
    const bool own = qualifier.external == 0 && qualifier.book.empty() && !qualifier.broken;
    const bool first = own && text::equal_fold(qualifier.sheet, old_name);
    const bool last =
        own && !qualifier.last_sheet.empty() && text::equal_fold(qualifier.last_sheet, old_name);
    if (!first && !last) return void(out.append(text));
    if (first) qualifier.sheet = new_name;
    if (last) qualifier.last_sheet = new_name;
    append_own_qualifier(out, qualifier);
  });
}

}  // namespace qto::embedded
