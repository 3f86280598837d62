#include "qto/hosts/libreoffice/document/load_document.hpp"

#include <algorithm>
#include <com/sun/star/beans/PropertyValue.hpp>
#include <com/sun/star/container/XIndexAccess.hpp>
#include <com/sun/star/container/XNameAccess.hpp>
#include <com/sun/star/container/XNamed.hpp>
#include <com/sun/star/document/MacroExecMode.hpp>
#include <com/sun/star/document/UpdateDocMode.hpp>
#include <com/sun/star/document/XTypeDetection.hpp>
#include <com/sun/star/frame/XLoadable.hpp>
#include <com/sun/star/lang/IllegalArgumentException.hpp>
#include <com/sun/star/sheet/XSpreadsheets.hpp>
#include <com/sun/star/task/ErrorCodeIOException.hpp>
#include <com/sun/star/util/XCloseable.hpp>
#include <filesystem>
#include <fstream>
#include <osl/file.hxx>
#include <string_view>

#include "qto/automation/file_path.hpp"
#include "qto/host/open_error.hpp"
#include "qto/hosts/libreoffice/office/fail.hpp"

namespace qto::libreoffice {
namespace {

namespace beans = com::sun::star::beans;
namespace container = com::sun::star::container;
using Descriptor = uno::Sequence<beans::PropertyValue>;
using host::OpenFailureKind;

[[noreturn]] void refuse(OpenFailureKind kind, const std::string& file, const std::string& why) {
  throw host::OpenError(kind, file + ": " + why, file);
}

void set(Descriptor& descriptor, const char* name, const uno::Any& value) {
  const std::int32_t count = descriptor.getLength();
  for (std::int32_t i = 0; i < count; ++i)
    if (descriptor.getConstArray()[i].Name.equalsAscii(name)) {
      descriptor.getArray()[i].Value = value;
      return;
    }
  descriptor.realloc(count + 1);
  descriptor.getArray()[count].Name = OUString::createFromAscii(name);
  descriptor.getArray()[count].Value = value;
}

OUString text_of(const Descriptor& descriptor, const char* name) {
  OUString text;
  for (const auto& property : descriptor)
    if (property.Name.equalsAscii(name)) property.Value >>= text;
  return text;
}

/// The first bytes of a file, which must be there and readable.
std::string beginning_of(const std::string& file) {
  std::error_code failure;
  const std::filesystem::path path = text::to_path(file);
  if (!std::filesystem::exists(path, failure))
    refuse(OpenFailureKind::not_found, file, "no such file");
  if (std::filesystem::is_directory(path, failure))
    refuse(OpenFailureKind::not_readable, file, "is a folder");
  std::ifstream in(path, std::ios::binary);
  std::string bytes(4096, '\0');
  if (!in) refuse(OpenFailureKind::not_readable, file, "cannot be read: permission is missing");
  in.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  bytes.resize(static_cast<std::size_t>(in.gcount()));
  return bytes;
}

/// An encrypted .xlsx is a compound file like an old .xls; its package says so in wide letters.
bool looks_encrypted(const std::string& file) {
  constexpr std::string_view name("E\0n\0c\0r\0y\0p\0t\0e\0d\0P\0a\0c\0k\0a\0g\0e\0", 32);
  std::ifstream in(text::to_path(file), std::ios::binary);
  const std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  return bytes.starts_with("\xD0\xCF\x11\xE0") && bytes.find(name) != std::string::npos;
}

/// The separator that most of a .csv file's beginning is cut by.
char separator_in(std::string_view beginning) {
  char best = ',';
  std::ptrdiff_t most = 0;
  for (const char candidate : {',', ';', '\t'}) {
    const auto count = std::count(beginning.begin(), beginning.end(), candidate);
    if (count <= most) continue;
    most = count;
    best = candidate;
  }
  return best;
}

/// The filter of the suite that reads the file.
OUString filter_of(const Office& office, Descriptor& descriptor, const std::string& file) {
  const uno::Reference<com::sun::star::document::XTypeDetection> detection(
      office.create("com.sun.star.document.TypeDetection"), uno::UNO_QUERY_THROW);
  const OUString type = detection->queryTypeByDescriptor(descriptor, true);
  OUString filter = text_of(descriptor, "FilterName");
  if (filter.isEmpty() && !type.isEmpty()) {
    Descriptor about;
    uno::Reference<container::XNameAccess>(detection, uno::UNO_QUERY_THROW)->getByName(type) >>=
        about;
    filter = text_of(about, "PreferredFilter");
  }
  const uno::Reference<container::XNameAccess> filters(
      office.create("com.sun.star.document.FilterFactory"), uno::UNO_QUERY_THROW);
  Descriptor about;
  if (!filter.isEmpty() && filters->hasByName(filter)) filters->getByName(filter) >>= about;
  if (text_of(about, "DocumentService") != "com.sun.star.sheet.SpreadsheetDocument")
    refuse(OpenFailureKind::not_a_workbook, file,
           "LibreOffice knows it as no spreadsheet that it can open");
  return filter;
}

uno::Reference<com::sun::star::frame::XLoadable> make_document(const Office& office) {
  return {office.create("com.sun.star.sheet.SpreadsheetDocument"), uno::UNO_QUERY_THROW};
}

[[noreturn]] void refuse_to_load(const std::string& file, const std::string& password,
                                 const std::string& message) {
  if (looks_encrypted(file) || message.find("password") != std::string::npos)
    password.empty() ? refuse(OpenFailureKind::encrypted, file, "is encrypted")
                     : refuse(OpenFailureKind::wrong_password, file, "the password is wrong");
  refuse(OpenFailureKind::damaged, file,
         "LibreOffice cannot read it" + (message.empty() ? "" : ": " + message));
}

}  // namespace

Document::Model load_document(const Office& office, const std::string& file,
                              const std::string& password) {
  const std::string beginning = beginning_of(file);
  OUString url;
  osl::FileBase::getFileURLFromSystemPath(wide(file), url);
  Descriptor descriptor;
  set(descriptor, "URL", uno::Any(url));
  set(descriptor, "ReadOnly", uno::Any(true));
  if (!password.empty()) set(descriptor, "Password", uno::Any(wide(password)));
  try {
    const OUString filter = filter_of(office, descriptor, file);
    set(descriptor, "FilterName", uno::Any(filter));
    if (filter.indexOf("csv") >= 0)  // UTF-8, English numbers, from the first line
      set(descriptor, "FilterOptions",
          uno::Any(wide(std::to_string(static_cast<int>(separator_in(beginning))) +
                        ",34,76,1,,1033,false,true")));
    using namespace com::sun::star::document;
    set(descriptor, "MacroExecutionMode", uno::Any(MacroExecMode::NEVER_EXECUTE));
    set(descriptor, "UpdateDocMode", uno::Any(UpdateDocMode::NO_UPDATE));
    const auto document = make_document(office);
    document->load(descriptor);
    return {document, uno::UNO_QUERY_THROW};
  } catch (const uno::Exception& thrown) {
    refuse_to_load(file, password, utf8(thrown.Message));
  }
}

Document::Model new_document(const Office& office) {
  return guarded("A new document", [&] {
    const auto document = make_document(office);
    document->initNew();
    const Document::Model model(document, uno::UNO_QUERY_THROW);
    const auto sheets = model->getSheets();
    const uno::Reference<container::XIndexAccess> list(sheets, uno::UNO_QUERY_THROW);
    while (list->getCount() > 1)
      sheets->removeByName(sheets->getElementNames()[list->getCount() - 1]);
    uno::Reference<container::XNamed>(list->getByIndex(0), uno::UNO_QUERY_THROW)->setName("Sheet1");
    return model;
  });
}

void close_document(const Document::Model& model) noexcept {
  try {
    const uno::Reference<com::sun::star::util::XCloseable> closeable(model, uno::UNO_QUERY);
    if (closeable.is()) closeable->close(true);
  } catch (const uno::Exception&) {
    // Closed already.
  }
}

}  // namespace qto::libreoffice
