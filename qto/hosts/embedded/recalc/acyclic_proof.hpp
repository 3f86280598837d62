#pragma once

#include "qto/hosts/embedded/recalc/formula_graph.hpp"

namespace qto::embedded {

/// True when it can be told from the shapes of the formulas alone that no cell reads itself: groups
/// of cells read each other in one direction only, or read what lies before them. What is only
/// watched counts as read. False means nothing: the cells have to be looked at.
bool proven_acyclic(FormulaGraph& graph);

}  // namespace qto::embedded
