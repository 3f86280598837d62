#pragma once

#include <string>
#include <vector>

#include "qto/formula/syntax_tree.hpp"
#include "qto/host/worksheet.hpp"
#include "qto/parser/exact/site.hpp"

namespace qto::exact {

/// What the qualifier of a reference stands for.
struct Place {
  enum class Kind {
    sheets,   ///< one or, of a span, several worksheets of an open workbook
    book,     ///< an open workbook without a sheet: a name's
    closed,   ///< a workbook that is not open
    link,     ///< another application's document
    deleted,  ///< #REF!
    missing,  ///< a sheet that is not there
  };
  Kind kind = Kind::missing;
  std::vector<Ref<SheetRecord>> sheets;
  Ref<host::Workbook> workbook;  ///< of sheets and book
  ClosedPlace closed;
  std::string application, document;  ///< of a link
};

Place resolve_place(const formula::SheetQualifier& qualifier, const Site& site,
                    Surroundings& surroundings);

}  // namespace qto::exact
