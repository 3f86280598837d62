#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "qto/automation/address.hpp"
#include "qto/automation/enumerations.hpp"
#include "qto/automation/event.hpp"
#include "qto/automation/object.hpp"
#include "qto/automation/variant.hpp"
#include "qto/diagnostics/procedure.hpp"
#include "qto/host/application.hpp"
#include "qto/host/range.hpp"
#include "qto/host/workbook.hpp"
#include "qto/model/compact_text.hpp"
#include "qto/model/part_key.hpp"
#include "qto/model/sheet_record.hpp"

namespace qto {

namespace host {
class DefinedName;
class Series;
}  // namespace host
class ModelParts;

/// One item of a spreadsheet model: a cell or range, a defined name, a range inside a pivot table,
/// a chart series, or a reference that could not be resolved (an unknown part, also a DDE/OLE
/// link).
///
/// A part of a cell is small: its sheet, its position and its value. Texts are read or rendered
/// when somebody asks for them.
class ModelPart : public Object {
 public:
  /// `context` is that of the drill that makes the part. A part of a client's making works in the
  /// context of the start object that was accepted last.
  explicit ModelPart(Ref<Context> context = nullptr);
  ~ModelPart() override;
  std::string_view TypeName() const noexcept override { return "ModelPart"; }

  /// Raised when the title changes, with the title before and the new one. What a handler assigns
  /// to the second argument becomes the title, unless a client set the new one itself.
  Event<const std::string&, std::string&> TitleChanged;
  /// Raised before hidden rows, columns or sheets are shown: the hidden object (a handler may
  /// assign another range), its local address, the sheet, and the answers: may it be unhidden
  /// (False unless a handler says so), and the password of the sheet's protection.
  Event<Ref<Object>&, const std::string&, Ref<Object>&, bool&, std::string&> AskToUnhide;
  Event<> AfterSetResults;
  Event<const std::string&, const std::string&> FormulaChanged;
  Event<const Variant&, const Variant&> ValueChanged;

  // Identity

  /// Fills the part from a host object of the type `likely_type` ("Range", "Pivot Table", "Name",
  /// "Series"), or makes an unknown part when there is no object. Any other type, or an object that
  /// is not of the type given, raises 80040001.
  void Create(const Ref<Object>& object, std::string_view likely_type,
              std::string_view unknown_name = {});
  /// The wrapped host object; nothing for an unknown part or one whose object is gone.
  Ref<Object> UnderlyingObject();
  /// "Range", "Name", "Pivot Table", "Series", "!LINK", or "" before Create.
  std::string_view ObjectType() const noexcept;
  bool IsUnknown() const noexcept {
    return procedure("ModelPart", "IsUnknown[Get]", [this] { return has(unknown); });
  }
  /// True also makes the part constant.
  void put_IsUnknown(bool value);
  bool Exists() const noexcept;
  void put_Exists(bool value) noexcept;
  bool LocalFile() const noexcept;
  /// The host workbook; nothing for an unknown part.
  Ref<host::Workbook> Workbook() const;
  /// The application of the drill that made the part.
  Ref<host::Application> ExcelApplication() const;
  void putref_ParentRange(Ref<host::Range> range);
  /// Name of the chart object of an embedded chart's series, "" otherwise.
  std::string EmbeddedChartName() const;
  std::string WorkBookName() const;
  void put_WorkBookName(std::string_view name);  ///< 80040004 when the part has a workbook
  std::string WorkBookPath() const;
  void put_WorkBookPath(std::string_view path);  ///< 80040004 when the part has an object
  std::string WorkBookFullName() const;
  std::string WorkSheetName() const;
  void put_WorkSheetName(std::string_view name);  ///< 80040004 unless the part is unknown
  std::string AddressShort() const;
  void put_AddressShort(std::string_view address);  ///< 80040004 unless the part is unknown
  /// The sheet that holds the part, or nothing.
  Ref<host::Sheet> Sheet() const;
  /// The text that identifies the part as long as the engine runs; fixed when first read.
  std::string UniqueKey();
  /// The same as a collection key.
  const PartKey& Key();

  // Addresses, values, titles

  /// The address with sheet, book, path or chart; 80040004 for any other qualifier, or for the
  /// chart of a part without one.
  std::string AddressLong(qtoAddressType qualifier);
  std::string AddressLongLocal(qtoAddressType qualifier);
  std::string AddressShortLocal() const;
  /// Reads the host again; a change drops the precedents and raises FormulaChanged.
  std::string Formula();
  std::string FormulaLocal() const;
  bool FormulaHidden() const noexcept;
  const Variant& value() const noexcept {
    return procedure("ModelPart", "value[Get]", [this]() -> const Variant& { return value_; });
  }
  /// The displayed text that belongs to value(); read when first asked for.
  std::string Text();
  std::string Title() const;
  void put_Title(std::string_view title);
  /// Computes the display values (local address and formula, title) once, and raises
  /// AfterSetResults.
  void SetResultsValues();
  bool ResultsSet() const noexcept;
  void ForceResultsRecalc() noexcept;
  /// Reads formula, value and text again and drops what no longer holds.
  void CheckForChanges();

  // Selection

  /// Brings the part into view and selects it: its workbook and sheet become active, a range comes
  /// to the middle of the window. What AskToUnhide allows is unhidden, and stays so.
  qtoReasonNotSelect SelectItem();

  // Precedents

  bool IsConstant() const noexcept;
  void put_IsConstant(bool value) noexcept {
    procedure("ModelPart", "IsConstant[Let]", [this, value] { set(constant, value); });
  }
  bool HasConstant() const noexcept;
  bool HasError() const noexcept {
    return procedure("ModelPart", "HasError[Get]", [this] { return has(error); });
  }
  /// True once precedents are determined. A part whose formula turns out to be none counts at once.
  bool CheckedForPrecedents();
  void put_CheckedForPrecedents(bool value);
  qtoContainsConstant FormulaContainsConstant() const noexcept;
  void put_FormulaContainsConstant(qtoContainsConstant value);  ///< 80040004 outside 0 to 2
  bool IntelligentDrillingUsed() const noexcept {
    return procedure("ModelPart", "IntelligentDrillingUsed[Get]",
                     [this] { return has(intelligent); });
  }
  void put_IntelligentDrillingUsed(bool value) noexcept;
  /// What whoever reads the precedents has to know: calls that were followed whole although the
  /// options ask for a part, and why; references that lead nowhere. "" when there is nothing.
  std::string DrillRemark() const;
  const Ref<ModelParts>& DirectPrecedents() const noexcept {
    return procedure("ModelPart", "DirectPrecedents[Get]",
                     [this]() -> const Ref<ModelParts>& { return direct_precedents_; });
  }
  void putref_DirectPrecedents(Ref<ModelParts> list);
  /// The direct precedents, unless a special function was drilled intelligently.
  Ref<ModelParts> AllPrecedents();
  void putref_AllPrecedents(Ref<ModelParts> list);

  // Inside the engine only

  /// What Create does for the cell at `pos`, without a host range.
  void create_cell(const Ref<SheetRecord>& sheet, CellPos pos);
  /// What Create does with the part's own object and type.
  void create_afresh();
  void put_HasError(bool value) noexcept;
  /// Adds to the remark what it does not say yet.
  void add_remark(std::string_view text);
  void clear_remark() noexcept {
    if (rare_) rare_->remark.clear();
  }
  /// Gives up both precedent lists.
  void clear_precedents();
  /// Gives a client's part that becomes the start of a drill its context.
  void join(const Ref<Context>& context);

  // A drill reads and sets these for every part. The properties above do the same, each as a
  // procedure of its own.

  const Ref<ModelParts>& direct() const noexcept { return direct_precedents_; }
  void set_direct(Ref<ModelParts> list);
  void set_all(Ref<ModelParts> list);
  void set_checked(bool value);
  bool is_unknown() const noexcept { return has(unknown); }
  bool drilled_intelligently() const noexcept { return has(intelligent); }
  qtoContainsConstant constants() const noexcept { return formula_contains_constant_; }
  const Ref<host::Workbook>& workbook() const noexcept {
    return sheet_ ? sheet_->workbook : rare().workbook;
  }

  bool is_range() const noexcept { return type_ == Type::range; }
  bool is_name() const noexcept { return type_ == Type::name; }
  /// The record of the sheet that a cell part lies on, or nothing.
  const Ref<SheetRecord>& sheet_record() const noexcept { return sheet_; }
  /// Where such a part lies on its sheet.
  CellPos cell() const noexcept { return pos_; }
  /// Reads the formula as Formula() does; the view holds until the next reading.
  std::string_view read_formula_again();
  /// The formula as it was last read; the view holds until the next reading.
  std::string_view held_formula() const noexcept { return formula_.view(); }
  /// A mark that the traversals set while the part is being walked.
  bool on_walk() const noexcept { return has(walked); }
  void mark_walk(bool value) noexcept { set(walked, value); }

 private:
  enum class Type : std::uint8_t { none, range, name, pivot_table, series, link, other };
  enum Flag : std::uint32_t {
    exists = 1 << 0,
    intelligent = 1 << 1,
    constant = 1 << 2,
    checked_for_precedents = 1 << 3,
    local_file = 1 << 4,
    error = 1 << 5,
    formula_read = 1 << 6,
    unknown = 1 << 7,
    relative_name = 1 << 8,
    formula_hidden = 1 << 9,
    results_set = 1 << 10,
    text_read = 1 << 11,
    walked = 1 << 12,
  };
  /// What most parts of a large drill never need.
  struct Rare {
    Ref<Context> context;  // of a cell part its sheet's record has it
    Ref<Object> underlying;
    Ref<host::Workbook> workbook;
    Ref<host::Range> parent_range;
    Ref<ModelParts> all_precedents;
    std::string object_type;  // of Type::other
    std::string unique_key;
    std::string work_book_path, work_book_name, work_sheet_name;
    std::string embedded_chart_name;
    std::string address_short, address_short_local;
    std::string formula_local, title, text;
    std::string remark;
  };

  bool has(Flag flag) const noexcept { return flags_ & flag; }
  void set(Flag flag, bool on) noexcept { flags_ = on ? flags_ | flag : flags_ & ~flag; }
  Rare& rare();
  const Rare& rare() const noexcept;
  const Ref<Context>& own_context() const noexcept {
    return sheet_ ? sheet_->context : rare().context;
  }
  const Ref<host::Application>& application() const;
  /// The wrapped object. Its type was checked when the part was made from it.
  template <class Kind>
  const Kind& object() const {
    return dynamic_cast<const Kind&>(*rare().underlying);
  }
  bool has_object() const noexcept { return sheet_ || rare().underlying; }
  static Type type_of(std::string_view likely_type) noexcept;

  static void require_kind(const Object* object, Type type);
  void create_range(const Ref<host::Range>& range);
  void create_pivot_table();
  void create_name();
  void create_series();
  void make_unknown(std::string_view unknown_name);
  void place_on_sheet(const Ref<host::Range>& range);
  void keep_book(const Ref<host::Workbook>& book);
  void check_relative_name();
  void check_still_exists();
  bool object_answers() const noexcept;
  bool find_again();
  void lose_object();
  void forget_cell();
  std::string compute_unique_key();
  std::string cell_key() const;

  std::string address_result(qtoAddressType qualifier, const std::string& address);
  std::string read_formula();
  bool read_formula_into(std::string& out);
  std::string formula_of_object();
  Variant get_value();
  Variant name_value(bool& holds_error);
  std::string get_text();
  std::string get_title();
  bool set_range_results(const host::Range& cells, std::int32_t style);
  bool set_name_results(const host::DefinedName& name, std::int32_t style);
  bool set_series_results(const host::Series& series, std::int32_t style);
  Ref<host::Range> range() const;

  qtoReasonNotSelect select_range();
  qtoReasonNotSelect select_series();
  bool activate_chart(const Ref<host::Sheet>& sheet);
  Ref<Object> ask_to_unhide(const Ref<host::Sheet>& sheet, bool& allowed, std::string& password);
  void take_answer(const Ref<Object>& hidden);

  Ref<SheetRecord> sheet_;  // set for a part of one cell; its position is pos_
  CellPos pos_;
  Variant value_;
  CompactText formula_;
  PartKey key_;
  Ref<ModelParts> direct_precedents_;
  std::unique_ptr<Rare> rare_;
  std::uint32_t flags_ = 0;
  Type type_ = Type::none;
  qtoContainsConstant formula_contains_constant_ : 8;
};

}  // namespace qto
