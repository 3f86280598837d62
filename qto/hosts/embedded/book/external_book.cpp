#include "qto/hosts/embedded/book/external_book.hpp"

#include "qto/automation/text.hpp"

namespace qto::embedded {

bool ExternalBook::remembers(std::string_view sheet) const {
  for (std::size_t i = 0; i < sheets.size() && i < values.size(); ++i)
    if (text::equal_fold(sheets[i], sheet)) return !values[i].empty();
  return false;
}

}  // namespace qto::embedded
