#pragma once

#include <set>
#include <string_view>
#include <utility>
#include <vector>

#include "qto/hosts/embedded/recalc/argument_use.hpp"
#include "qto/hosts/embedded/recalc/precedents.hpp"

namespace qto::embedded {

class FunctionTable;
struct FunctionSpec;

/// Goes through a formula and collects what it reads. Work is kept on an explicit stack, so names
/// that refer to names cost no machine stack.
class PrecedentWalk {
 public:
  PrecedentWalk(const Book& book, const Sheet& sheet, const OpenBooks* open);
  PrecedentList run(const FormulaRecord& record);

 private:
  /// A part of a tree that is to be gone through.
  struct Part {
    const formula::SyntaxTree* tree = nullptr;
    formula::NodeIndex node = formula::no_node;
    const Book* book = nullptr;  ///< where the tree belongs
    Sheet* sheet = nullptr;      ///< of references without a sheet; null: the formula's own
    Use use = Use::single;
    bool array = false;  ///< operations run over all elements

    const formula::Node& at() const { return tree->at(node); }
    Part child(formula::NodeIndex index, Use child_use) const;
    /// What an operand of a value operator or a scalar argument is used for.
    Use value_use() const { return array ? Use::full : Use::single; }
  };
  /// A reference that is written out, or named.
  struct Leaf {
    formula::AreaRef area;
    Sheet* sheet = nullptr;
  };

  void visit(const Part& part);
  void visit_area(const Part& part);
  void visit_structured(const Part& part);
  void visit_name(const Part& part);
  void visit_unary(const Part& part);
  void visit_binary(const Part& part);
  void visit_range(const Part& part);
  void visit_intersection(const Part& part);
  void visit_call(const Part& part);
  void visit_called_name(const Part& call);
  void visit_invocation(const Part& part);
  Part argument(const Part& call, formula::NodeIndex node, int position, SpecialFunction function,
                const FunctionSpec* spec) const;
  Use special_use(const Part& call, int position, SpecialFunction function) const;
  bool visit_fixed_index(const Part& call);
  void visit_table(const Part& call, SpecialFunction function);
  void visit_sum_range(const Part& call);
  void push(const Part& part) { work_.push_back(part); }

  void add(const formula::AreaRef& area, Sheet* sheet, Use use);
  void add_span(const Part& part, const formula::SheetQualifier& qualifier, const Book& book);
  const Book* book_of(const Part& part, const formula::SheetQualifier& qualifier) const;
  /// For a qualifier whose book is not open.
  void note_unreachable(const Part& part, const formula::SheetQualifier& qualifier);
  const DefinedName* find_name(const Part& part, Part& target) const;
  std::optional<Leaf> leaf(Part part) const;
  bool is_local(const Part& part, std::string_view name) const;
  void bind_locals(const Part& call);

  const Book& book_;
  const Sheet& sheet_;
  const OpenBooks* open_;
  const FunctionTable& functions_;
  std::vector<Part> work_;
  std::vector<std::pair<const formula::SyntaxTree*, std::string_view>> locals_;
  std::set<std::pair<const DefinedName*, Use>> names_seen_;
  PrecedentList list_;
};

}  // namespace qto::embedded
