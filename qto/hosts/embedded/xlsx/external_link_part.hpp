#pragma once

#include <string_view>

#include "qto/hosts/embedded/book/external_book.hpp"
#include "qto/hosts/embedded/xlsx/package.hpp"

namespace qto::embedded {

/// Reads what the file keeps of a linked book, or of a link to another application. A relative
/// target is taken from `base_folder`.
ExternalBook read_external_link(Package& package, const Package::Part& part,
                                std::string_view base_folder);

}  // namespace qto::embedded
