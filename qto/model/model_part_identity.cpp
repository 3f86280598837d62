#include "qto/automation/error.hpp"
#include "qto/diagnostics/procedure.hpp"
#include "qto/host/host.hpp"
#include "qto/links/main.hpp"
#include "qto/links/path_helpers.hpp"
#include "qto/model/model_part.hpp"
#include "qto/model/model_parts.hpp"

namespace qto {

ModelPart::Rare& ModelPart::rare() {
  if (!rare_) rare_ = std::make_unique<Rare>();
  return *rare_;
}

const ModelPart::Rare& ModelPart::rare() const noexcept {
  static const Rare nothing;
  return rare_ ? *rare_ : nothing;
}

Ref<Object> ModelPart::UnderlyingObject() {
  Procedure proc("ModelPart", "UnderlyingObject[Get]");
  check_still_exists();
  if (sheet_ && !rare().underlying)
    (void)proc.step([&] { rare().underlying = sheet_->sheet->Cells(pos_.row, pos_.column); });
  return rare().underlying;
}

Ref<host::Range> ModelPart::range() const {
  if (const auto held = ref_cast<host::Range>(rare().underlying)) return held;
  return sheet_ ? sheet_->sheet->Cells(pos_.row, pos_.column) : nullptr;
}

std::string_view ModelPart::ObjectType() const noexcept {
  Procedure proc("ModelPart", "ObjectType[Get]");
  switch (type_) {
    case Type::none:
      return "";
    case Type::range:
      return "Range";
    case Type::name:
      return "Name";
    case Type::pivot_table:
      return "Pivot Table";
    case Type::series:
      return "Series";
    case Type::link:
      return "!LINK";
    case Type::other:
      break;
  }
  return rare().object_type;
}

void ModelPart::put_IsUnknown(bool value) {
  Procedure proc("ModelPart", "IsUnknown[Let]");
  set(unknown, value);
  if (value) set(constant, true);
}

Ref<host::Workbook> ModelPart::Workbook() const {
  return procedure("ModelPart", "Workbook[Get]", [this] { return workbook(); });
}

Ref<host::Application> ModelPart::ExcelApplication() const {
  Procedure proc("ModelPart", "ExcelApplication[Get]");
  return application();
}

const Ref<host::Application>& ModelPart::application() const {
  const auto& context = own_context();
  return context ? context->application() : Main::shared_application();
}

void ModelPart::join(const Ref<Context>& context) {
  if (own_context()) return;
  if (sheet_) sheet_ = make_ref<SheetRecord>(sheet_->sheet, context);
  rare().context = context;
}

void ModelPart::putref_ParentRange(Ref<host::Range> range) {
  Procedure proc("ModelPart", "ParentRange[Set]");
  rare().parent_range = std::move(range);
}

std::string ModelPart::WorkBookName() const {
  Procedure proc("ModelPart", "WorkBookName[Get]");
  std::string name = sheet_ ? sheet_->book_name : rare().work_book_name;
  if (const auto book = Workbook(); book && book->exists())
    (void)proc.step([&] { name = book->Name(); });
  return name;
}

void ModelPart::put_WorkBookName(std::string_view name) {
  Procedure proc("ModelPart", "WorkBookName[Let]");
  if (Workbook()) throw AutomationError(ErrorNumber::out_of_range);
  rare().work_book_name = name;
}

std::string ModelPart::WorkBookPath() const {
  Procedure proc("ModelPart", "WorkBookPath[Get]");
  std::string path = sheet_ ? sheet_->book_path : rare().work_book_path;
  if (const auto book = Workbook(); book && book->exists())
    (void)proc.step([&] { path = book->Path(); });
  return path;
}

void ModelPart::put_WorkBookPath(std::string_view path) {
  Procedure proc("ModelPart", "WorkBookPath[Let]");
  check_still_exists();
  if (has_object()) throw AutomationError(ErrorNumber::out_of_range);
  set(local_file, !Main::IsURL(path));
  rare().work_book_path = Main::TrimSeparator(path, has(local_file));
}

std::string ModelPart::WorkBookFullName() const {
  Procedure proc("ModelPart", "WorkBookFullName[Get]");
  const std::string& path = sheet_ ? sheet_->book_path : rare().work_book_path;
  std::string name =
      Main::AddSeparator(path, LocalFile()) + (sheet_ ? sheet_->book_name : rare().work_book_name);
  if (const auto book = Workbook(); book && book->exists())
    (void)proc.step([&] { name = book->FullName(); });
  return name;
}

std::string ModelPart::WorkSheetName() const {
  Procedure proc("ModelPart", "WorkSheetName[Get]");
  return sheet_ ? sheet_->name : rare().work_sheet_name;
}

void ModelPart::put_WorkSheetName(std::string_view name) {
  Procedure proc("ModelPart", "WorkSheetName[Let]");
  if (!IsUnknown()) throw AutomationError(ErrorNumber::out_of_range);
  if (sheet_) forget_cell();
  rare().work_sheet_name = name;
}

std::string ModelPart::AddressShort() const {
  Procedure proc("ModelPart", "AddressShort[Get]");
  return sheet_ ? address_of(pos_) : rare().address_short;
}

void ModelPart::put_AddressShort(std::string_view address) {
  Procedure proc("ModelPart", "AddressShort[Let]");
  if (!IsUnknown()) throw AutomationError(ErrorNumber::out_of_range);
  if (sheet_) forget_cell();
  rare().address_short = address;
}

Ref<host::Sheet> ModelPart::Sheet() const {
  Procedure proc("ModelPart", "Sheet[Get]");
  Ref<host::Sheet> sheet;
  const auto book = Workbook();
  const std::string name = WorkSheetName();
  if (book && !name.empty()) (void)proc.step([&] { sheet = book->Sheets(name); });
  return sheet;
}

const PartKey& ModelPart::Key() {
  if (key_.is_set()) return key_;
  // A cell's key needs no text, as long as its sheet is still called what it was.
  if (sheet_ && sheet_->stamp != 0 && sheet_->stamp == sheet_->sheet->IdentityStamp())
    key_ = PartKey::of_cell(sheet_->prefix, pos_);
  else if (const std::string text = UniqueKey(); !text.empty())
    key_ = PartKey::of_text(text);
  else
    throw NumberedFailure(5, "a part without a key");
  return key_;
}

std::string ModelPart::UniqueKey() {
  Procedure proc("ModelPart", "UniqueKey[Get]");
  if (!rare().unique_key.empty()) return rare().unique_key;
  if (!proc.step([&] { rare().unique_key = compute_unique_key(); })) return "";
  if (!key_.is_set()) key_ = PartKey::of_text(rare().unique_key);
  return rare().unique_key;
}

/// The text of a key that was made without one.
std::string ModelPart::cell_key() const {
  CellPos cell;
  const bool of_cell = key_.is_set() && sheet_ && key_.is_cell_of(sheet_->prefix, cell);
  return of_cell ? sheet_->prefix_text() + address_of(cell) : "";
}

std::string ModelPart::compute_unique_key() {
  if (std::string key = cell_key(); !key.empty()) return key;
  if (!has(relative_name)) return AddressLong(qtoaddressPath);
  if (!rare().parent_range) throw NumberedFailure(91, "a relative name without a parent cell");
  // The same relative name used from two cells is two different things.
  return rare().parent_range->Address(false, false, host::xlA1, true) + "-" +
         AddressLong(qtoaddressPath);
}

bool ModelPart::object_answers() const noexcept {
  if (sheet_) return sheet_->sheet->exists();
  const auto* object = dynamic_cast<const host::HostObject*>(rare().underlying.get());
  return object && object->exists();
}

void ModelPart::check_still_exists() {
  procedure("ModelPart", "check_still_exists", [this] {
    if (object_answers()) return;
    if (type_ == Type::range && find_again()) return;
    lose_object();
  });
}

/// A range whose handle went dead while its workbook still has a sheet of that name.
bool ModelPart::find_again() {
  const auto book = Workbook();
  if (!book || !book->exists()) return false;
  const auto sheet = book->find_worksheet(WorkSheetName());
  const auto found = sheet ? sheet->find_range(AddressShort()) : nullptr;
  if (!found) return false;
  Create(found, "Range");
  SetResultsValues();
  return true;
}

void ModelPart::lose_object() {
  if (sheet_) forget_cell();
  if (rare_) rare_->underlying = nullptr;
  set(exists, false);
  set(unknown, true);
  set(constant, true);
  clear_precedents();
  set(checked_for_precedents, true);
  value_ = Empty{};
  set(text_read, true);
  if (!rare_) return;
  rare_->text.clear();
  rare_->title.clear();
}

/// Keeps the texts of a cell part that stops being one.
void ModelPart::forget_cell() {
  Rare& texts = rare();
  texts.address_short = address_of(pos_);
  texts.work_sheet_name = sheet_->name;
  texts.work_book_name = sheet_->book_name;
  texts.work_book_path = sheet_->book_path;
  if (texts.unique_key.empty()) texts.unique_key = cell_key();
  texts.workbook = sheet_->workbook;
  texts.context = sheet_->context;
  sheet_ = nullptr;
}

}  // namespace qto
