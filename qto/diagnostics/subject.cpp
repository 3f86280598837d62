#include "qto/diagnostics/subject.hpp"

namespace qto::diagnostics {

std::string describe_subject() noexcept {
  const auto [subject, describe] = detail::current_subject;
  try {
    return describe ? describe(subject) : std::string();
  } catch (...) {
    return "";  // a report without its cell is better than none
  }
}

}  // namespace qto::diagnostics
