#pragma once

#include <deque>
#include <string>
#include <string_view>
#include <vector>

#include "qto/options/drill_options.hpp"
#include "qto/parser/exact/choice.hpp"
#include "qto/parser/exact/evaluation.hpp"
#include "qto/parser/exact/functions.hpp"
#include "qto/parser/exact/read_formula.hpp"
#include "qto/parser/exact/scope.hpp"

namespace qto::exact {

/// Goes through a formula and hands its precedents to the surroundings, in the order in which they
/// stand. Recursion follows true nesting, which the formula's parser limits.
class Walk {
 public:
  /// `choosing`: calls that choose among their arguments are followed as the options ask; otherwise
  /// every reference is followed.
  Walk(ReadFormula& formula, const Site& site, Surroundings& surroundings,
       const DrillOptions::Settings& options, KnownFunctions& functions, bool choosing)
      : formula_(formula),
        site_(site),
        surroundings_(surroundings),
        options_(options),
        functions_(functions),
        evaluation_(formula, site, surroundings),
        choosing_(choosing) {}

  void run() { follow(formula_.tree().root, nullptr); }
  /// Some call is one that the options ask to follow where it chooses.
  bool met_choice() const noexcept { return met_choice_; }
  /// The host was asked, so a copy of the formula may lead elsewhere.
  bool asked_host() const noexcept { return asked_host_; }

 private:
  void follow(formula::NodeIndex index, const Scope* scope);
  void follow_leaf(const formula::Node& node, formula::NodeIndex index, const Scope* scope);
  void follow_written_area(const formula::Node& node);
  void follow_name(const formula::Node& node, formula::NodeIndex index, const Scope* scope);
  void follow_undefined(const formula::Node& node, formula::NodeIndex index, const Scope* scope);
  void follow_joined(formula::NodeIndex index, const Scope* scope);
  void follow_end(formula::NodeIndex index, const Scope* scope);
  void follow_call(formula::NodeIndex index, const Scope* scope);
  void follow_function(const formula::Node& node, const Scope* scope);
  void follow_arguments(formula::NodeIndex first, const Scope* scope);
  void follow_let(formula::NodeIndex index, const Scope* scope);
  void follow_lambda(formula::NodeIndex index, const Scope* scope,
                     const std::vector<formula::NodeIndex>& values, const Scope* value_scope);
  void follow_invocation(formula::NodeIndex index, const Scope* scope);
  void follow_choice(const Choice& choice, formula::NodeIndex index, const Scope* scope);
  void follow_deciders(formula::NodeIndex index, const Scope* scope);
  void follow_summed_block(formula::NodeIndex index, const Scope* scope);
  void follow_part(const Part& part);
  void follow_areas(const Areas& areas);
  bool follow_local(const formula::Node& node, const Scope* scope);
  Ref<host::DefinedName> find_name(const formula::Node& node);
  void flag_constant(const Variant& value);

  const Scope* bind(const Scope* outer, std::string_view name, formula::NodeIndex value,
                    const Scope* value_scope);

  ReadFormula& formula_;
  const Site& site_;
  Surroundings& surroundings_;
  const DrillOptions::Settings& options_;
  KnownFunctions& functions_;
  Evaluation evaluation_;
  const bool choosing_;
  bool met_choice_ = false;
  bool asked_host_ = false;
  int over_elements_ = 0;  // calls around that run their arguments over all elements
  std::deque<Scope> scopes_;
};

}  // namespace qto::exact
