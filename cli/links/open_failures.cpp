#include "cli/links/open_failures.hpp"

#include "qto/automation/file_path.hpp"
#include "qto/automation/text.hpp"

namespace qto::cli {

OpenFailures::OpenFailures(embedded::Application& application)
    : application_(application),
      token_(application_.open_failed().add([this](const host::OpenError& error) {
        const std::string name = text::from_path(text::to_path(error.file).filename());
        reasons_[text::fold_case(name)] = open_failure_text(error, false);
      })) {}

OpenFailures::~OpenFailures() { application_.open_failed().remove(token_); }

std::string OpenFailures::of(const std::string& book_name) const {
  const auto found = reasons_.find(text::fold_case(book_name));
  return found == reasons_.end() ? "" : found->second;
}

std::string open_failure_text(const host::OpenError& error, bool start_book) {
  std::string text = error.what();
  if (!start_book && text.starts_with(error.file + ": ")) text.erase(0, error.file.size() + 2);
  if (error.kind == host::OpenFailureKind::encrypted)
    text += start_book ? ". Give its password with --password TEXT"
                       : "; give its password with --password BOOK=TEXT";
  return text;
}

}  // namespace qto::cli
