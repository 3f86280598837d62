#include "qto/hosts/embedded/xlsx/open_failure.hpp"

#include <utility>

namespace qto::embedded {
namespace {

std::string message_of(const std::string& file, const std::string& part, long line,
                       std::string_view reason) {
  std::string message = file + ": ";
  if (!part.empty()) {
    message += part;
    if (line > 0) message += ", line " + std::to_string(line);
    message += ": ";
  }
  return message.append(reason);
}

std::string with_remedy(std::string message, std::string_view remedy) {
  if (!remedy.empty()) message.append(". ").append(remedy);
  return message;
}

}  // namespace

OpenFailure::OpenFailure(OpenFailureKind failure_kind, std::string file_name, std::string part_name,
                         long line_number, std::string_view reason, std::string_view remedy)
    : std::runtime_error(
          with_remedy(message_of(file_name, part_name, line_number, reason), remedy)),
      kind(failure_kind),
      file(std::move(file_name)),
      part(std::move(part_name)),
      line(line_number),
      message_(message_of(file, part, line, reason)) {}

}  // namespace qto::embedded
