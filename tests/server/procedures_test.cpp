#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "qto/diagnostics/procedures.hpp"
#include "qto/server/engine_tables/library.hpp"

namespace qto::server {
namespace {

/// The member's name as the call trace shows it.
std::string traced_name(const Member& member) {
  const std::string name(member.name);
  switch (member.kind) {
    case Kind::get:
      return name + "[Get]";
    case Kind::put:
      return name + "[Let]";
    case Kind::put_ref:
      return name + "[Set]";
    default:
      return name;
  }
}

/// Whatever a client calls can be told from the trace.
TEST(Procedures, EveryMemberOfTheSurfaceRegisters) {
  const auto listed = diagnostics::procedures();
  for (const ClassTable* table : engine_library().classes) {
    for (const Member& member : table->members) {
      const std::string name = traced_name(member);
      EXPECT_TRUE(std::ranges::find(listed, diagnostics::QualifiedName{table->name, name}) !=
                  listed.end())
          << table->name << "." << name;
    }
  }
}

}  // namespace
}  // namespace qto::server
