#pragma once

#include "qto/hosts/embedded/book/book.hpp"

namespace qto::embedded {

/// Puts the result of a formula into the cells that it fills. A single value goes to all of them,
/// one row or one column of values is repeated, and cells that an array does not reach get #N/A.
/// True when a value is another one than before.
bool store_result(Sheet& sheet, const Rect& cells, const Variant& result);

}  // namespace qto::embedded
