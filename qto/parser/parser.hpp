#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "qto/automation/event.hpp"
#include "qto/automation/variant.hpp"
#include "qto/host/application.hpp"
#include "qto/host/range.hpp"
#include "qto/host/workbook.hpp"
#include "qto/host/worksheet.hpp"
#include "qto/links/main.hpp"
#include "qto/model/model_part.hpp"
#include "qto/model/model_parts.hpp"
#include "qto/options/drill_options.hpp"
#include "qto/parser/drill_verdict.hpp"
#include "qto/parser/exact/reader.hpp"
#include "qto/parser/formula_memory.hpp"
#include "qto/parser/token.hpp"

namespace qto {

/// True when some precedents are to be left out for what they hold.
bool leaves_something_out(const DrillOptions::Settings& options);

/// Finds the direct precedents of one part at a time: reads its formula, cuts it into tokens,
/// resolves every reference through the host and stores the results in the part. Private to the
/// engine; a DrillDown owns one.
class Parser {
 public:
  explicit Parser(Ref<Context> context = Main::context());
  ~Parser();

  /// Unknown part, the list that holds it, and an answer: a number other than 0 is raised.
  Event<Ref<ModelPart>&, Ref<ModelParts>&, std::int32_t&> UnknownObjectFound;
  /// A part whose formula reads cells through a call that does not show them.
  Event<Ref<ModelPart>&> OpaqueCallFound;
  /// Application, document, item, and the part that stands for the link.
  Event<const std::string&, const std::string&, const std::string&, Ref<ModelPart>&>
      ParserFoundDDEOLELink;

  /// `just_read`: the part has read its formula in this very moment.
  void Parse(ModelPart& part, bool just_read = false);
  /// The options to read; without any, those of a new DrillOptions apply.
  void putref_ParseOptions(Ref<DrillOptions> options);

  /// The context of the start object; parts are made in it.
  void set_context(const Ref<Context>& context);

  /// The parts whose formulas are being drilled, most recent last.
  void AddParentRange(ModelPart& part);
  void RemoveParentRange();
  std::size_t ParentCount() const noexcept { return parents_.size(); }
  /// Parts made for large ranges, and what was learnt of formulas, serve one drill.
  void forget_blocks() noexcept {
    blocks_.clear();
    memory_.forget();
    exact_.forget();
  }
  /// What became of every special function drilled so far.
  const DrillVerdicts& Verdicts() const noexcept { return verdicts_; }

  // The pieces, open to tests

  /// Cuts and classifies a formula as the formulas of the part being parsed.
  void split_formula(std::string_view formula, TokenTable& table);
  /// Makes `part` the part being parsed without parsing it.
  void enter_part(ModelPart& part);
  TokenType is_name(std::string_view name, std::string& book, std::string& sheet);
  bool is_range(std::string_view text);
  bool is_book_open(std::string_view book);

 private:
  /// Where the next reference is looked up: what was written before it, or the part's own place.
  struct Qualifiers {
    std::string_view path, book, sheet;
  };
  struct LinkText {
    std::string_view application, document;
  };

  // Tokens
  void classify(TokenTable& table, std::size_t i);
  void check_token_book_and_path(TokenTable& table, std::size_t i);
  void check_token_for_name(TokenTable& table, std::size_t i);

  // Resolution
  host::Application& application() const;
  Ref<host::Workbook> find_book(std::string_view book);
  Ref<host::Worksheet> find_sheet(std::string_view book, std::string_view sheet);
  void workbook_name_found(Qualifiers at, std::string_view name);
  void worksheet_name_found(const Qualifiers& at, std::string_view name);
  void add_name_part(const Ref<Object>& name_object, std::string_view name);
  Ref<host::Range> parent_range();
  ModelPart& most_recent_parent();

  // The walk
  void do_parse(Tokens tokens, bool& second_pass);
  bool walk_token(Tokens tokens, std::size_t& i, Qualifiers& at, LinkText& link, bool second_pass);
  bool wants_intelligent_drilling(TokenType type);
  void link_found(const LinkText& link, std::string_view item);
  void check_for_unknown_precedents();
  void keep_all_precedents();
  bool follow_remembered(const host::FormulaPattern& pattern);
  void remember(const host::FormulaPattern& pattern, qtoContainsConstant before);
  void raise_contains_constant(qtoContainsConstant found);

  // The exact reading
  class ExactSurroundings;
  Ref<host::Range> cell_of_names();
  exact::Site exact_site();
  bool read_all_exactly(std::string_view formula, const host::FormulaPattern& pattern);
  bool follow_exactly(std::string_view formula, const host::FormulaPattern& pattern,
                      const exact::Site& site);
  void read_chosen_exactly(const host::FormulaPattern& pattern);
  std::uint32_t options_signature();
  const DrillOptions::Settings& options();

  // Intelligent drilling: the second walk, which follows only what feeds the result
  void parse_functions_intelligently();
  void drill_function(Tokens tokens, std::size_t& i);
  DrillVerdict drill_by_type(Tokens tokens, std::size_t& i);
  DrillVerdict parse_if(Tokens tokens, std::size_t& i);
  DrillVerdict parse_table_lookup(Tokens tokens, std::size_t& i);
  DrillVerdict parse_lookup(Tokens tokens, std::size_t& i);
  DrillVerdict parse_match(Tokens tokens, std::size_t& i);
  DrillVerdict parse_index(Tokens tokens, std::size_t& i);
  DrillVerdict parse_sumif(Tokens tokens, std::size_t& i);
  DrillVerdict parse_indirect(Tokens tokens, std::size_t& i);
  DrillVerdict parse_indirect_real(const std::string& text);
  DrillVerdict parse_offset(Tokens tokens, std::size_t& i);
  std::string text_to_evaluate(Tokens piece, std::string_view function = {}) const;
  Variant local_eval(const std::string& text);
  Ref<host::Range> local_eval_range(const std::string& text);
  Ref<host::Worksheet> evaluation_sheet();
  Variant argument_value(Tokens argument);
  Variant lookup_value(Tokens argument);
  void add_cell_part(const Ref<host::Range>& cell);
  void walk_text(const std::string& formula, bool second_pass);

  // References
  void add_new_range_found(const Qualifiers& at, std::string_view address);
  void add_possible_name_found(const Qualifiers& at, std::string_view name);
  void add_unknown_range(const Qualifiers& at, std::string_view address);
  void add_cell_precedents(const Ref<host::Workbook>& workbook, std::string_view sheet,
                           std::string_view address);
  /// A sheet without cells inside a span comes as null.
  std::vector<Ref<SheetRecord>> sheets_for_reference(const Ref<host::Workbook>& workbook,
                                                     std::string_view sheet);
  void add_cells_of(const Ref<SheetRecord>& sheet, std::string_view address);
  void add_cells_of(const Ref<SheetRecord>& sheet, const Rect& rect);
  const Ref<RangeBlock>& block_of(const Ref<SheetRecord>& sheet, const Rect& rect);
  Ref<SheetRecord> record_of(const Ref<host::Worksheet>& sheet);
  Ref<SheetRecord> record_named(const Ref<host::Workbook>& workbook, std::string_view sheet);
  bool reopen_linked_book(std::string_view path, std::string_view book);
  Qualifiers own_place() const noexcept { return {own_path_, own_book_, own_sheet_}; }

  // Constants
  void flag_contains_constant(std::string_view text);
  void parse_zeros_blanks_dates_intelligently();

  Ref<Context> context_;
  std::vector<Ref<ModelPart>> parents_;
  Ref<DrillOptions> options_;
  Ref<ModelPart> part_;
  Ref<ModelParts> found_;
  Ref<ModelParts> all_;
  Ref<host::Workbook> own_workbook_;
  Ref<host::Worksheet> own_worksheet_;
  Ref<host::Worksheet> form_sheet_;  // where address forms are tested
  std::string own_path_, own_book_, own_sheet_;
  TokenTable table_;
  Tokens bindings_;  // the formula under way in the second walk when it names values for itself
  std::unordered_map<std::uint64_t, Ref<SheetRecord>> records_;  // by identity stamp
  Ref<SheetRecord> last_record_;
  std::vector<Ref<RangeBlock>> blocks_;
  FormulaMemory memory_;
  exact::Reader exact_;
  std::uint32_t exact_options_ = 0;  // the signature of those that the reader learnt under
  DrillVerdicts verdicts_;
};

}  // namespace qto
