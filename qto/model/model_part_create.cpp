#include "qto/automation/error.hpp"
#include "qto/diagnostics/procedure.hpp"
#include "qto/host/host.hpp"
#include "qto/links/main.hpp"
#include "qto/links/path_helpers.hpp"
#include "qto/model/model_part.hpp"
#include "qto/model/model_parts.hpp"

namespace qto {

ModelPart::Type ModelPart::type_of(std::string_view likely_type) noexcept {
  if (likely_type == "Range") return Type::range;
  if (likely_type == "Name") return Type::name;
  if (likely_type == "Pivot Table") return Type::pivot_table;
  if (likely_type == "Series") return Type::series;
  if (likely_type == "!LINK") return Type::link;
  return likely_type.empty() ? Type::none : Type::other;
}

ModelPart::ModelPart(Ref<Context> context) : formula_contains_constant_(qtoNoConstantInFormula) {
  procedure("ModelPart", "Class_Initialize", [this] { flags_ = exists | unknown; });
  if (context) rare().context = std::move(context);
}

void ModelPart::Create(const Ref<Object>& object, std::string_view likely_type,
                       std::string_view unknown_name) {
  Procedure proc("ModelPart", "Create");
  rare().context = own_context();
  sheet_ = nullptr;
  rare().underlying = object;
  type_ = type_of(likely_type);
  if (type_ == Type::other) rare().object_type = likely_type;
  set(checked_for_precedents, false);
  set(text_read, false);
  if (!proc.step([&] {
        require_kind(object.get());
        // What a name refers to depends on the cell that uses it, see create_name().
        if (!is_name() || !object) value_ = get_value();
      }))
    return;
  if (!object) {
    make_unknown(unknown_name);
  } else {
    set(unknown, false);
    const bool done = proc.step([&] {
      switch (type_) {
        case Type::range:
          create_range(ref_cast<host::Range>(object));
          break;
        case Type::pivot_table:
          create_pivot_table();
          break;
        case Type::name:
          create_name();
          break;
        case Type::series:
          create_series();
          break;
        default:
          throw AutomationError(ErrorNumber::wrong_object);
      }
    });
    if (!done) return;
  }
  set(checked_for_precedents, false);
}

/// A client may name a type that its object is not of.
void ModelPart::require_kind(const Object* object) const {
  if (!object) return;
  bool fits = true;
  switch (type_) {
    case Type::range:
    case Type::pivot_table:
      fits = dynamic_cast<const host::Range*>(object);
      break;
    case Type::name:
      fits = dynamic_cast<const host::DefinedName*>(object);
      break;
    case Type::series:
      fits = dynamic_cast<const host::Series*>(object);
      break;
    default:
      throw AutomationError(ErrorNumber::wrong_object);
  }
  if (!fits) throw NumberedFailure(13, "Type mismatch: the object is not of the type given");
}

void ModelPart::create_afresh() {
  check_still_exists();
  if (sheet_)
    create_cell(sheet_, pos_);
  else
    Create(UnderlyingObject(), ObjectType());
}

void ModelPart::create_cell(const Ref<SheetRecord>& sheet, CellPos pos) {
  procedure(
      "ModelPart", "Create",
      [this, pos](StandardHandling& proc, const Ref<SheetRecord>& sheet) QTO_INLINED {
        sheet_ = sheet;
        pos_ = pos;
        type_ = Type::range;
        set(checked_for_precedents, false);
        set(text_read, false);
        if (!proc.step([&] { value_ = get_value(); })) return;
        set(unknown, false);
        set(local_file, sheet->local_file);
      },
      sheet);
}

void ModelPart::make_unknown(std::string_view unknown_name) {
  flags_ |= unknown | constant;
  rare().address_short = unknown_name;
  rare().address_short_local = unknown_name;
  const std::string previous = std::exchange(rare().title, "");
  if (!previous.empty()) TitleChanged(previous, rare().title);
}

void ModelPart::create_range(const Ref<host::Range>& range) {
  Procedure proc("ModelPart", "create_range");
  // A single cell is kept as its sheet and position; the client's own handle stays the object that
  // UnderlyingObject gives back.
  (void)proc.step([&] {
    if (range->CellsCount() == 1) {
      sheet_ = make_ref<SheetRecord>(range->Worksheet(), rare().context);
      pos_ = range->block().first;
      set(local_file, sheet_->local_file);
      return;
    }
    place_on_sheet(range);
    set(local_file, !Main::IsURL(rare().workbook->Path()));
  });
}

void ModelPart::create_pivot_table() {
  Procedure proc("ModelPart", "create_pivot_table");
  (void)proc.step([&] { place_on_sheet(range()); });
}

void ModelPart::place_on_sheet(const Ref<host::Range>& range) {
  rare().address_short = range->Address(false, false, host::xlA1, false);
  rare().work_sheet_name = range->Worksheet()->Name();
  rare().workbook = range->Worksheet()->Workbook();
}

void ModelPart::create_name() {
  Procedure proc("ModelPart", "create_name");
  const auto name = ref_cast<host::DefinedName>(rare().underlying);
  if (!proc.step([&] { rare().address_short = name->Name(); })) return;
  const bool placed = proc.step([&] {
    const auto parent = name->Parent();
    if (parent->TypeName() == "Workbook") {
      rare().workbook = ref_cast<host::Workbook>(parent);
      return;
    }
    const auto sheet = ref_cast<host::Sheet>(parent);
    rare().work_sheet_name = sheet->Name();
    rare().workbook = sheet->Workbook();
  });
  if (!placed) return;
  check_relative_name();
  (void)proc.step([&] { value_ = get_value(); });
}

void ModelPart::create_series() {
  Procedure proc("ModelPart", "create_series");
  const auto series = ref_cast<host::Series>(rare().underlying);
  if (!proc.step([&] { rare().address_short = series->Name(); })) return;
  const std::string formula = read_formula();
  formula_.assign(formula);
  set(constant, formula.empty());
  (void)proc.step([&] {
    Ref<host::HostObject> chart = series->Parent();
    while (chart && chart->TypeName() != "Chart")
      chart = chart->TypeName() == "Application" ? nullptr : chart->Parent();
    if (!chart) throw NumberedFailure(91, "a series without a chart");
    const auto container = chart->Parent();
    if (container->TypeName() == "ChartObject") {
      const auto holder = ref_cast<host::ChartObject>(container);
      const auto sheet = ref_cast<host::Sheet>(holder->Parent());
      rare().embedded_chart_name = holder->Name();
      rare().work_sheet_name = sheet->Name();
      rare().workbook = sheet->Workbook();
    } else if (container->TypeName() == "Workbook") {
      rare().work_sheet_name = ref_cast<host::Chart>(chart)->Name();
      rare().workbook = ref_cast<host::Workbook>(container);
    } else {
      throw AutomationError(ErrorNumber::out_of_range);
    }
  });
}

}  // namespace qto
