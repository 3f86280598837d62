#include <algorithm>

#include "qto/server/description/describe.hpp"

namespace qto::server {
namespace {

class StubWriter {
 public:
  explicit StubWriter(const LibraryTable& library) : library_(library) {}

  std::string text() {
    out_ = "from typing import Any, Iterator, Optional, Protocol, Tuple\n\n";
    for (const EnumerationTable* table : library_.enumerations)
      for (const EnumerationItem& item : table->items)
        out_ += std::string(item.name) + ": int  # " + std::to_string(item.value) + "\n";
    for (const ClassTable* table : library_.classes) class_of(*table);
    for (const ClassTable* table : library_.classes) events_of(*table);
    return std::move(out_);
  }

 private:
  std::string hint(const Type& type) const {
    switch (type.shape) {
      case Shape::none:
        return "None";
      case Shape::boolean:
        return "bool";
      case Shape::number:
      case Shape::enumeration:
        return "int";
      case Shape::text:
        return "str";
      default:
        break;
    }
    const bool own = std::ranges::any_of(
        library_.classes, [&](const ClassTable* table) { return table->name == type.name; });
    return own ? std::string(type.name) : "Any";
  }

  std::string parameters(std::string_view names, std::span<const Type> types) const {
    std::string out = "self";
    for (std::size_t i = 0; i < types.size(); ++i) {
      const Argument argument = argument_at(names, i);
      out += ", " + std::string(argument.name) + ": " + hint(types[i]);
      if (argument.optional) out += " = ...";
    }
    return out;
  }

  static const Member* other_accessor(const ClassTable& table, const Member& member, bool getter) {
    for (const Member& other : table.members)
      if (other.name == member.name && (other.kind == Kind::get) == getter) return &other;
    return nullptr;
  }

  void property(const ClassTable& table, const Member& member) {
    const std::string name(member.name);
    const Member* getter = other_accessor(table, member, true);
    const Member* setter = other_accessor(table, member, false);
    if (&member != (getter ? getter : setter)) return;
    if (getter && !getter->types.empty()) return method(*getter);
    const std::string type = hint(getter ? getter->result : setter->types.back());
    out_ += "    @property\n    def " + name + "(self) -> " + type + ": ...\n";
    if (!setter) return;
    out_ += "    @" + name + ".setter\n    def " + name +
            "(self, value: " + hint(setter->types.back()) + ") -> None: ...\n";
  }

  void method(const Member& member) {
    out_ += "    def " + std::string(member.name) + "(" +
            parameters(member.arguments, member.types) + ") -> " + hint(member.result) + ": ...\n";
  }

  void class_of(const ClassTable& table) {
    out_ += "\nclass " + std::string(table.name) + ":\n    \"\"\"" + std::string(table.role) +
            "\"\"\"\n";
    for (const Member& member : table.members) {
      if (member.kind == Kind::method)
        method(member);
      else if (member.kind == Kind::enumerator)
        out_ += "    def __iter__(self) -> Iterator[Any]: ...\n";
      else
        property(table, member);
    }
  }

  void events_of(const ClassTable& table) {
    if (table.events.empty()) return;
    out_ += "\nclass " + std::string(table.name) + "Events(Protocol):\n";
    for (const EventMember& event : table.events) {
      std::string answers;
      for (std::size_t i = 0; i < event.types.size(); ++i)
        if (argument_at(event.arguments, i).by_reference)
          answers += (answers.empty() ? "" : ", ") + hint(event.types[i]);
      const bool several = answers.find(", ") != std::string::npos;
      out_ += "    def On" + std::string(event.name) + "(" +
              parameters(event.arguments, event.types) + ") -> " +
              (answers.empty() ? "None"
               : several       ? "Optional[Tuple[" + answers + "]]"
                               : "Optional[" + answers + "]") +
              ": ...\n";
    }
  }

  const LibraryTable& library_;
  std::string out_;
};

}  // namespace

std::string python_stubs(const LibraryTable& library) { return StubWriter(library).text(); }

}  // namespace qto::server
