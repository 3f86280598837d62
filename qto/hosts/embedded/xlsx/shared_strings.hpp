#pragma once

#include <vector>

#include "qto/hosts/embedded/book/text_pool.hpp"
#include "qto/hosts/embedded/xlsx/package.hpp"

namespace qto::embedded {

/// The texts of a shared string part in their order, brought into the pool. Runs of rich text are
/// joined; phonetic hints are left out; texts longer than a cell holds are cut.
std::vector<TextId> read_shared_strings(Package& package, const Package::Part& part,
                                        TextPool& texts);

}  // namespace qto::embedded
