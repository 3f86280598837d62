#include "qto/parser/exact/reader.hpp"

#include "qto/parser/exact/walk.hpp"

namespace qto::exact {

Reader::Shared Reader::find(std::string_view text, const host::FormulaPattern& pattern,
                            const Site& site) {
  const bool shared = pattern.id != 0 && site.sheet && site.sheet->stamp != 0;
  text.remove_prefix(1);
  if (!shared) return std::make_shared<ReadFormula>(text, site.cell);
  Shared& formula = formulas_[{site.sheet->stamp, pattern.id}];
  if (!formula) formula = std::make_shared<ReadFormula>(text, site.cell);
  return formula;
}

namespace {

/// Notes what a walk finds of constants and remarks, which a plan keeps too.
class Noting final : public Surroundings {
 public:
  Noting(Surroundings& inner, ReadFormula::Plan& plan) : inner_(inner), plan_(plan) {}
  Ref<host::Workbook> find_book(std::string_view path, std::string_view book) override {
    return inner_.find_book(path, book);
  }
  Ref<SheetRecord> record_of(const Ref<host::Worksheet>& sheet) override {
    return inner_.record_of(sheet);
  }
  void add_area(const Ref<SheetRecord>& sheet, const Rect& rect) override {
    inner_.add_area(sheet, rect);
  }
  void add_name(const Ref<host::DefinedName>& name, std::string_view text) override {
    inner_.add_name(name, text);
  }
  void add_unknown_area(const ClosedPlace& place, std::string_view address) override {
    inner_.add_unknown_area(place, address);
  }
  void add_unknown_name(const ClosedPlace& place, std::string_view name) override {
    inner_.add_unknown_name(place, name);
  }
  void add_link(std::string_view application, std::string_view document,
                std::string_view item) override {
    inner_.add_link(application, document, item);
  }
  void add_constant(qtoContainsConstant kind) override {
    if (kind == qtoFormulaContainsConstant || plan_.constants == qtoNoConstantInFormula)
      plan_.constants = kind;
    inner_.add_constant(kind);
  }
  void remark(std::string_view text) override {
    plan_.remarks.emplace_back(text);
    inner_.remark(text);
  }
  void opaque_call(std::string_view function) override {
    plan_.opaque_calls.emplace_back(function);
    inner_.opaque_call(function);
  }

 private:
  Surroundings& inner_;
  ReadFormula::Plan& plan_;
};

void follow(const ReadFormula::Plan& plan, const Site& site, Surroundings& surroundings) {
  for (const ReadFormula::Step& step : plan.steps) {
    if (step.name)
      surroundings.add_name(step.name, step.name_text);
    else
      surroundings.add_area(step.sheet, step.area.resolve(site.cell));
  }
  if (plan.constants != qtoNoConstantInFormula) surroundings.add_constant(plan.constants);
  for (const std::string& remark : plan.remarks) surroundings.remark(remark);
  for (const std::string& function : plan.opaque_calls) surroundings.opaque_call(function);
}

}  // namespace

Reader::Answer Reader::follow_all(std::string_view text, const host::FormulaPattern& pattern,
                                  const Site& site, const DrillOptions::Settings& options,
                                  Surroundings& surroundings) {
  const Shared formula = find(text, pattern, site);
  if (!formula->why_broken().empty()) return {formula->why_broken(), false};
  if (formula->plan) {
    follow(*formula->plan, site, surroundings);
    return {"", formula->plan->chooses};
  }
  ReadFormula::Plan& plan = formula->plan.emplace(ReadFormula::Plan{});
  Noting noting(surroundings, plan);
  Walk walk(*formula, site, noting, options, functions_, false);
  walk.run();
  plan.chooses = walk.met_choice();
  const bool chooses = plan.chooses;
  if (walk.asked_host()) formula->plan.reset();
  return {"", chooses};
}

void Reader::follow_chosen(std::string_view text, const host::FormulaPattern& pattern,
                           const Site& site, const DrillOptions::Settings& options,
                           Surroundings& surroundings) {
  Walk(*find(text, pattern, site), site, surroundings, options, functions_, true).run();
}

}  // namespace qto::exact
