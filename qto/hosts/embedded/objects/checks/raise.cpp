#include "qto/hosts/embedded/objects/checks/raise.hpp"

#include <string_view>

#include "qto/host/failure.hpp"

namespace qto::embedded {
namespace {

/// "Workbook.Worksheets" of "… qto::embedded::WorkbookObject::Worksheets(int) const"; "" for a
/// function that is no member of a host object.
std::string call_at(const CalledFrom& at) {
  constexpr std::string_view scope = "Object::";
  const std::string_view function = at.function_name();
  const std::size_t end = function.find(scope);
  if (end == std::string_view::npos) return "";
  const std::size_t before = function.rfind(':', end);
  const std::size_t begin = before == std::string_view::npos ? 0 : before + 1;
  const std::size_t member = end + scope.size();
  const std::string_view called = function.substr(member, function.find('(', member) - member);
  return std::string(function.substr(begin, end - begin)) + "." + std::string(called);
}

}  // namespace

void fail(const std::string& text, const CalledFrom& at) {
  throw host::HostFailure(host::general_failure, text, call_at(at));
}

void no_member(const std::string& text, const CalledFrom& at) {
  throw host::HostFailure(host::no_such_member, text, call_at(at));
}

void fail_gone(const CalledFrom& at) {
  fail("The object no longer exists: its sheet was deleted or its book closed", at);
}

}  // namespace qto::embedded
