#include "qto/hosts/libreoffice/document/document.hpp"

#include <algorithm>
#include <atomic>
#include <com/sun/star/beans/PropertyValue.hpp>
#include <com/sun/star/container/XIndexAccess.hpp>
#include <com/sun/star/container/XNameAccess.hpp>
#include <com/sun/star/container/XNamed.hpp>
#include <com/sun/star/document/XViewDataSupplier.hpp>
#include <com/sun/star/lang/XMultiServiceFactory.hpp>
#include <com/sun/star/sheet/AddressConvention.hpp>
#include <com/sun/star/table/XCell.hpp>
#include <com/sun/star/text/XTextRange.hpp>
#include <com/sun/star/util/Date.hpp>
#include <com/sun/star/util/NumberFormat.hpp>
#include <com/sun/star/util/XModifyBroadcaster.hpp>
#include <com/sun/star/util/XNumberFormatTypes.hpp>
#include <com/sun/star/util/XNumberFormatsSupplier.hpp>

#include "qto/automation/text.hpp"
#include "qto/hosts/libreoffice/document/chart_sheet.hpp"
#include "qto/hosts/libreoffice/document/document_listener.hpp"
#include "qto/hosts/libreoffice/office/fail.hpp"

namespace qto::libreoffice {
namespace {

namespace beans = com::sun::star::beans;
namespace container = com::sun::star::container;
namespace util = com::sun::star::util;

/// Never given to anything else in the process: the embedded host counts from the other end.
std::uint64_t next_stamp() noexcept {
  static std::atomic<std::uint64_t> last{std::uint64_t{1} << 63};
  return ++last;
}

/// Days from 1899-12-30 to a date.
double days_of(const util::Date& date) {
  const std::int64_t year = date.Month > 2 ? date.Year : date.Year - 1;
  const std::int64_t month = date.Month > 2 ? date.Month - 3 : date.Month + 9;
  const std::int64_t days =
      365 * year + year / 4 - year / 100 + year / 400 + (153 * month + 2) / 5 + date.Day - 1;
  constexpr std::int64_t origin = 693899;  // 1899-12-30 counted the same way
  return static_cast<double>(days - origin);
}

std::int32_t number_property(const uno::Sequence<beans::PropertyValue>& properties,
                             const char* name, std::int32_t otherwise) {
  for (const auto& property : properties)
    if (property.Name.equalsAscii(name)) property.Value >>= otherwise;
  return otherwise;
}

}  // namespace

Cells& SheetSlot::cells() {
  if (!cells_) {
    if (!document) fail_gone();
    cells_ = guarded("Reading the cells", [&] { return std::make_unique<Cells>(sheet); });
  }
  return *cells_;
}

Document::Document(const OpenDocuments& others, const Model& model, std::string file,
                   std::string password, std::string title)
    : others_(others),
      model_(model),
      file_(std::move(file)),
      password_(std::move(password)),
      name_(std::move(title)) {
  if (!file_.empty()) {
    const std::size_t end = file_.rfind('/');
    path_ = file_.substr(0, end);
    name_ = file_.substr(end + 1);
  }
  take_sheets();
  read_view();
  util::Date null_date;
  properties()->getPropertyValue("NullDate") >>= null_date;
  date_origin_ = days_of(null_date);
  listening_ = new DocumentListener(*this);
  const uno::Reference<util::XModifyListener> listener(listening_);
  listener_ = listener;
  uno::Reference<util::XModifyBroadcaster>(model_, uno::UNO_QUERY_THROW)
      ->addModifyListener(listener);
}

Document::~Document() {
  listening_->forget();
  gone();
}

std::string Document::full_name() const { return path_.empty() ? name_ : path_ + "/" + name_; }

uno::Reference<beans::XPropertySet> Document::properties() const {
  return {model_, uno::UNO_QUERY_THROW};
}

SheetSlot* Document::find_sheet(std::string_view name) const {
  for (const auto& slot : sheets_)
    if (text::equal_fold(slot->name, name)) return slot.get();
  return nullptr;
}

SheetSlot& Document::add_sheet(const std::string& name) {
  const auto sheets = model_->getSheets();
  const auto count = static_cast<sal_Int16>(sheets_.size());
  sheets->insertNewByName(wide(name), count);
  changed();
  return *sheets_.back();
}

/// Brings the slots in line with the sheets that there are. A sheet is known by its name.
void Document::take_sheets() {
  const uno::Reference<container::XIndexAccess> sheets(model_->getSheets(), uno::UNO_QUERY_THROW);
  std::vector<Ref<SheetSlot>> before = std::move(sheets_);
  sheets_.clear();
  for (std::int32_t i = 0; i < sheets->getCount(); ++i) {
    const uno::Reference<sheet::XSpreadsheet> sheet(sheets->getByIndex(i), uno::UNO_QUERY_THROW);
    const std::string name =
        utf8(uno::Reference<container::XNamed>(sheet, uno::UNO_QUERY_THROW)->getName());
    const auto known = std::find_if(before.begin(), before.end(),
                                    [&](const auto& slot) { return slot && slot->name == name; });
    Ref<SheetSlot> slot = known != before.end() ? std::move(*known) : make_ref<SheetSlot>();
    slot->sheet = sheet;
    slot->position = static_cast<std::int16_t>(i);
    if (!slot->document) {
      slot->document = this;
      slot->name = name;
      slot->stamp = next_stamp();
      slot->is_chart = is_chart_sheet(sheet);
      bool visible = true;
      uno::Reference<beans::XPropertySet>(sheet, uno::UNO_QUERY_THROW)
          ->getPropertyValue("IsVisible") >>= visible;
      slot->visibility = visible ? host::xlSheetVisible : host::xlSheetHidden;
    }
    sheets_.push_back(std::move(slot));
  }
  for (const auto& slot : before)
    if (slot) {
      slot->document = nullptr;
      slot->stamp = 0;
    }
  if (!active || !active->document) active = sheets_.front().get();
}

/// The sheet that is in front, and what is selected on each.
void Document::read_view() {
  const uno::Reference<com::sun::star::document::XViewDataSupplier> supplier(model_,
                                                                             uno::UNO_QUERY);
  const auto views = supplier.is() ? supplier->getViewData() : nullptr;
  if (!views.is() || views->getCount() == 0) return;
  uno::Sequence<beans::PropertyValue> view;
  views->getByIndex(0) >>= view;
  for (const auto& property : view) {
    OUString front;
    uno::Reference<container::XNameAccess> tables;
    if (property.Name == "ActiveTable" && (property.Value >>= front)) {
      if (SheetSlot* slot = find_sheet(utf8(front))) active = slot;
    } else if (property.Name == "Tables" && (property.Value >>= tables)) {
      for (const auto& slot : sheets_) {
        uno::Sequence<beans::PropertyValue> own;
        if (tables->hasByName(wide(slot->name))) tables->getByName(wide(slot->name)) >>= own;
        const CellPos cell{number_property(own, "CursorPositionY", 0) + 1,
                           number_property(own, "CursorPositionX", 0) + 1};
        if (cell.on_grid()) slot->selection = Rect::cell(cell);
        slot->scroll = {std::max(number_property(own, "PositionBottom", 0), 0) + 1,
                        std::max(number_property(own, "PositionRight", 0), 0) + 1};
      }
    }
  }
}

const uno::Reference<sheet::XFormulaParser>& Document::parser() {
  if (!parser_.is()) {
    const uno::Reference<com::sun::star::lang::XMultiServiceFactory> factory(model_,
                                                                             uno::UNO_QUERY_THROW);
    parser_.set(factory->createInstance("com.sun.star.sheet.FormulaParser"), uno::UNO_QUERY_THROW);
    const uno::Reference<beans::XPropertySet> settings(parser_, uno::UNO_QUERY_THROW);
    settings->setPropertyValue("FormulaConvention",
                               uno::Any(static_cast<sal_Int16>(sheet::AddressConvention::XL_OOX)));
    settings->setPropertyValue("CompileEnglish", uno::Any(true));
  }
  return parser_;
}

Variant Document::value(SheetSlot& slot, CellPos pos) {
  CellRecord* cell = slot.cells().find(pos);
  if (!cell) return {};
  if (cell->kind == CellKind::formula_number) {
    const auto at = slot.sheet->getCellByPosition(pos.column - 1, pos.row - 1);
    std::int32_t format = 0;
    uno::Reference<beans::XPropertySet>(at, uno::UNO_QUERY_THROW)
        ->getPropertyValue("NumberFormat") >>= format;
    const uno::Reference<util::XNumberFormatsSupplier> formats(model_, uno::UNO_QUERY_THROW);
    sal_Int16 type = 0;
    formats->getNumberFormats()->getByKey(format)->getPropertyValue("Type") >>= type;
    const bool flag =
        (cell->number == 0 || cell->number == 1) &&
        (uno::Reference<com::sun::star::text::XTextRange>(at, uno::UNO_QUERY_THROW)->getString() ==
         (cell->number == 0 ? OUString("FALSE") : OUString("TRUE")));
    cell->kind = flag || type == util::NumberFormat::LOGICAL  ? CellKind::boolean
                 : (type & util::NumberFormat::DATETIME) != 0 ? CellKind::date
                                                              : CellKind::number;
  }
  switch (cell->kind) {
    case CellKind::text:
      return utf8(cell->text);
    case CellKind::boolean:
      return cell->number != 0;
    case CellKind::date:
      return Date{cell->number + date_origin_};
    case CellKind::error:
      return static_cast<ErrorValue>(static_cast<std::int32_t>(cell->number));
    default:
      return cell->number;
  }
}

void Document::changed() {
  names_.reset();
  tables_.reset();
  links_.reset();
  circles_.reset();
  for (const auto& slot : sheets_) slot->forget_cells();
  take_sheets();
}

void Document::gone() noexcept {
  model_.clear();
  for (const auto& slot : sheets_) {
    slot->document = nullptr;
    slot->stamp = 0;
    slot->sheet.clear();
    slot->forget_cells();
  }
}

}  // namespace qto::libreoffice
