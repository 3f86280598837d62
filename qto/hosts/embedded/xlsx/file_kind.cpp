#include "qto/hosts/embedded/xlsx/file_kind.hpp"

#include <cerrno>
#include <fstream>
#include <string_view>
#include <system_error>

#include "qto/automation/file_path.hpp"
#include "qto/hosts/embedded/xlsx/open_failure.hpp"
#include "qto/hosts/embedded/xlsx/package.hpp"

namespace qto::embedded {
namespace {

constexpr std::string_view zip_magic = "PK";

}  // namespace

void refuse_file(const std::string& file, const std::string& reason) {
  std::error_code error;
  const auto path = text::to_path(file);
  const auto status = std::filesystem::status(path, error);
  if (status.type() == std::filesystem::file_type::not_found)
    throw OpenFailure(OpenFailureKind::not_found, file, "", 0, "there is no such file");
  if (status.type() == std::filesystem::file_type::directory)
    throw OpenFailure(OpenFailureKind::not_readable, file, "", 0, "this is a folder");
  errno = 0;
  std::ifstream content(path, std::ios::binary);
  if (!content)
    throw OpenFailure(OpenFailureKind::not_readable, file, "", 0,
                      errno != 0 ? std::generic_category().message(errno) : "cannot be read");
  std::string head(zip_magic.size(), '\0');
  content.read(head.data(), static_cast<std::streamsize>(head.size()));
  head.resize(static_cast<std::size_t>(content.gcount()));
  if (head.empty())
    throw OpenFailure(OpenFailureKind::not_a_package, file, "", 0, "the file is empty");
  if (head.starts_with(zip_magic))
    throw OpenFailure(OpenFailureKind::damaged, file, "", 0,
                      "the zip container is damaged or cut off (" + reason + ")");
  throw OpenFailure(OpenFailureKind::not_a_package, file, "", 0,
                    head.front() == '<' ? "this is a web page or XML text, not a workbook"
                                        : "this is not a workbook (no zip container)");
}

void refuse_package(const Package& package) {
  const auto refuse = [&](std::string_view reason, std::string_view remedy = {}) {
    package.fail(OpenFailureKind::not_a_workbook, "", 0, reason, remedy);
  };
  if (package.find("xl/workbook.bin"))
    refuse("this is a binary workbook (.xlsb)", "Save it as .xlsx or .xlsm");
  if (package.find("mimetype") && package.find("content.xml"))
    refuse("this is an OpenDocument file", "Save it as .xlsx or .xlsm");
  if (package.find("word/document.xml")) refuse("this is a text document, not a workbook");
  if (package.find("ppt/presentation.xml")) refuse("this is a presentation, not a workbook");
  refuse("the zip container holds no workbook part");
  std::abort();
}

}  // namespace qto::embedded
