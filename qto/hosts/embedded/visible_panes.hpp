#pragma once

#include <vector>

#include "qto/automation/address.hpp"
#include "qto/host/application.hpp"

namespace qto::embedded {

/// What the panes of the active window of an embedded application show, from the top left: one
/// block, or two or four where rows or columns are frozen. Empty when the active sheet has no
/// cells.
std::vector<Rect> visible_panes(const Ref<host::Application>& application);

}  // namespace qto::embedded
