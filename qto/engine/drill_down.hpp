#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "qto/automation/enumerations.hpp"
#include "qto/automation/event.hpp"
#include "qto/automation/object.hpp"
#include "qto/host/workbook.hpp"
#include "qto/links/context.hpp"
#include "qto/model/model_part.hpp"
#include "qto/model/model_parts.hpp"
#include "qto/options/drill_options.hpp"

namespace qto {

class Parser;

/// Runs every analysis. A client assigns a start object (a formula cell, a cell inside a pivot
/// table, a chart series, or a ModelPart), sets limits and options, and calls one of the three
/// operations; results lie in the collections and in the parts' precedent lists.
///
/// Everything happens on the caller's thread inside the calls; events are raised synchronously.
class DrillDown : public Object {
 public:
  DrillDown();
  ~DrillDown() override;
  std::string_view TypeName() const noexcept override { return "DrillDown"; }

  // Events, in the order of their identifiers

  /// Folder, name of the workbook, outcome; after an open was attempted.
  Event<const std::string&, const std::string&, qtoReasonNotOpened> AfterOpenBookAttempt;
  /// Folder address, name, Cancel (False); True leaves the workbook unopened.
  Event<const std::string&, const std::string&, bool&> BeforeInternetAccess;
  /// Part, Cancel (False); True leaves the part with the precedents that it has.
  Event<Ref<ModelPart>&, bool&> BeforeGetPrecedents;
  /// The open workbook, folder and name of the other, Proceed (False).
  Event<Ref<host::Workbook>&, const std::string&, const std::string&, bool&> DuplicateBookName;
  /// Unknown part, UserChoice (True); False leaves the workbook unopened.
  Event<Ref<ModelPart>&, bool&> AskToOpenBook;
  /// Unknown part, Password (empty).
  Event<Ref<ModelPart>&, std::string&> AskForPassword;
  /// A workbook whose row and column labels are being switched off.
  Event<const Ref<host::Workbook>&> RemoveRowAndColumnLabels;
  /// MaxItems, CurrentItems, StopNow (True), MemoryUsed in bytes.
  Event<std::int32_t, std::int32_t, bool&, std::int32_t> MaxItemsExceeded;
  /// Application, document, item, and the part that stands for the link.
  Event<const std::string&, const std::string&, const std::string&, Ref<ModelPart>&> DDEOLELink;

  /// Results of the last FindInputs and TraceError; null after any other operation.
  const Ref<ModelParts>& InputCells() const noexcept;
  const Ref<ModelParts>& ErrorCells() const noexcept;
  const Ref<ModelPart>& StartModelPart() const noexcept;
  const Ref<Object>& StartUnderlyingObject() const noexcept;
  /// Makes an object the start item. Raises 80040001 for an object of the wrong kind (nothing, no
  /// workbook above it, several cells) and 80040002 for a cell without formula outside pivot
  /// tables.
  void putref_StartUnderlyingObject(const Ref<Object>& object);
  /// Shared by all DrillDown objects over one application; a new one empties both.
  const Ref<LinkedBooks>& BooksOpened() const;
  const Ref<LinkedBooks>& BooksNotOpened() const;
  /// Levels that DrillHere goes down; 0 (as at first): no bound. Negative raises 80040004.
  std::int32_t MaximumDepth() const noexcept;
  void put_MaximumDepth(std::int32_t depth);
  /// Every precedent met so far while a drill runs; null after one.
  const Ref<ModelParts>& PartsAnalysed() const noexcept;
  /// Number of parts at which MaxItemsExceeded is raised; 0: never. Negative raises 80040004.
  std::int32_t MaxItems() const noexcept;
  void put_MaxItems(std::int32_t items);
  /// Null until a client assigns one; a drill then uses what a new object holds.
  const Ref<qto::DrillOptions>& DrillOptions() const noexcept;
  void putref_DrillOptions(const Ref<qto::DrillOptions>& options);
  bool IgnoreConstantIfZeroOrOne() const noexcept;
  void put_IgnoreConstantIfZeroOrOne(bool ignore) noexcept;
  /// The item limit stopped the current or last drill.
  bool ExceededMaxItems() const noexcept;
  /// Formulas of the last drill that read cells through calls which do not show them (add-ins,
  /// cubes, the web; INDIRECT, OFFSET whose targets are not followed): below them the answer ends.
  /// Found by exact reading only; the part's DrillRemark names the calls.
  const Ref<ModelParts>& OpaqueCells() const noexcept;
  /// Parts of the last drill that refer back to a part above them, where exact reading cuts the
  /// circle; DrillRemark tells the way round.
  const Ref<ModelParts>& Circles() const noexcept;

  // The operations. All raise 80040001 without a start object, 80040003 when the start workbook
  // holds a circular reference (DrillHere only when MaximumDepth is 0), and 80040004 when they are
  // called from an event of a drill of this object.

  /// Builds the precedent tree: DirectPrecedents of the start part and of everything below it.
  void DrillHere();
  /// Collects the cells that feed the start item and hold constants.
  void FindInputs();
  /// Collects the cells at which an error that the start item shows originates.
  void TraceError();

 private:
  // Start object
  void accept_part(const Ref<ModelPart>& part);
  void check_range(const Ref<host::Range>& range);
  void enter_context(const Ref<host::Application>& application);
  host::Application& application() const;

  // Set-up and limits
  void set_up();
  bool reads_exactly() const noexcept;
  void refuse_circular_start();
  bool contains_circular_reference(const Ref<host::Workbook>& workbook);
  void remove_row_and_column_labels(const Ref<host::Workbook>& workbook);
  void check_max_items(std::int32_t count);
  std::int32_t non_negative(std::int32_t value);

  // Traversal
  struct Frame;
  class Walk;
  void drill_this_cell(const Ref<ModelPart>& start);
  void drill_by_distance(const Ref<ModelPart>& start);
  void mark_circles(const Ref<ModelPart>& start);
  void drill_to_inputs(const Ref<ModelPart>& start);
  void drill_to_errors(const Ref<ModelPart>& start);
  void find_precedents_if_necessary(Ref<ModelPart>& part);
  void find_precedents(Ref<ModelPart>& part);
  bool already_seen(Ref<ModelPart>& part, ModelParts& list);
  ModelPart* find_analysed(ModelPart& part) const;
  void collect_input(Ref<ModelPart>& part);
  /// Adds to a collection of the drill. A client may substitute another part, but none is no part
  /// to go on with.
  static void add_to(ModelParts& parts, Ref<ModelPart>& part);
  /// Raises an event about a part, which the client may substitute.
  template <class... Answers>
  static void raise_about(const Event<Ref<ModelPart>&, Answers&...>& event, Ref<ModelPart>& part,
                          Answers&... answers) {
    Ref<ModelPart> shown = part;
    event(shown, answers...);
    if (shown) part = std::move(shown);
  }
  void yield();

  // Linked workbooks
  void clsParser_UnknownObjectFound(Ref<ModelPart>& unknown, Ref<ModelParts>& list,
                                    std::int32_t& fatal_error);
  void clsParser_ParserFoundDDEOLELink(const std::string& application, const std::string& document,
                                       const std::string& link, Ref<ModelPart>& part);
  void follow_unknown(Ref<ModelPart>& unknown, Ref<ModelParts>& list);
  void ask_to_open(Ref<ModelPart>& unknown, Ref<ModelParts>& list);
  void try_to_find(const Ref<ModelPart>& part, ModelParts& list);
  void find_range_of(const Ref<ModelPart>& part, ModelParts& list);
  void find_name_of(const Ref<ModelPart>& part);
  qtoReasonNotOpened open_linked_book(Ref<ModelPart>& part);
  bool duplicate_book_name_open(const Ref<ModelPart>& part);
  void add_linked_book(const ModelPart& part, qtoReasonNotOpened reason, std::string_view password);

  Ref<Context> context_;
  Ref<ModelPart> start_part_;
  Ref<Object> start_object_;
  Ref<host::Workbook> start_workbook_;
  Ref<ModelParts> parts_analysed_;
  Ref<ModelParts> input_cells_;
  Ref<ModelParts> error_cells_;
  Ref<ModelParts> opaque_cells_;
  Ref<ModelParts> circles_;
  Ref<qto::DrillOptions> options_;
  std::unique_ptr<Parser> clsParser_;
  std::int64_t memory_baseline_ = 0;
  std::uint64_t drill_number_ = 0;  // of all drills of the process
  std::int32_t maximum_items_ = 0;
  std::int32_t next_item_threshold_ = 0;
  std::int32_t maximum_depth_ = 0;
  std::int32_t current_depth_ = 0;
  bool circularity_guard_ = false;
  bool exceeded_ = false;
  bool ignore_zero_or_one_ = false;
  bool met_cycle_ = false;
};

}  // namespace qto
