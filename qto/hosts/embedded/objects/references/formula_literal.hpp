#pragma once

#include <string>

#include "qto/automation/variant.hpp"
#include "qto/hosts/embedded/book/book.hpp"

namespace qto::embedded {

/// Appends the value as a formula writes it; numbers exactly, dates in the book's date system.
/// False, appending nothing, for what has no such form (Empty, Null, arrays, objects).
bool append_literal(std::string& out, const Variant& value, const Book& book);

}  // namespace qto::embedded
