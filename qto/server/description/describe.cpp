#include "qto/server/description/describe.hpp"

namespace qto::server {

std::string_view kind_name(Kind kind) {
  static constexpr std::string_view names[] = {"get", "let", "set", "method", "enum"};
  return names[static_cast<int>(kind)];
}

std::string type_name(const Type& type) {
  static constexpr std::string_view names[] = {"",       "Boolean", "Long",
                                               "String", "Variant", "Object"};
  if (!type.name.empty()) return std::string(type.name);
  return std::string(names[static_cast<int>(type.shape)]);
}

namespace {

std::string argument_list(std::string_view names, std::span<const Type> types) {
  std::string out;
  for (std::size_t i = 0; i < types.size(); ++i) {
    const Argument argument = argument_at(names, i);
    if (i > 0) out += ", ";
    if (argument.optional) out += "optional ";
    if (argument.by_reference) out += "by reference ";
    out += std::string(argument.name) + " As " + type_name(types[i]);
  }
  return out;
}

std::string signature(const Member& member) {
  std::string out = std::string(member.name) + "(" + argument_list(member.arguments, member.types);
  out += ")";
  if (member.result.shape != Shape::none) out += " As " + type_name(member.result);
  return out;
}

std::string member_lines(const ClassTable& table) {
  std::string out;
  for (const Member& member : table.members)
    out += "  " + std::string(kind_name(member.kind)) + " " + std::to_string(member.id) + " " +
           signature(member) + "\n";
  int id = 0;
  for (const EventMember& event : table.events)
    out += "  event " + std::to_string(++id) + " " + std::string(event.name) + "(" +
           argument_list(event.arguments, event.types) + ")\n";
  return out;
}

std::string call_cell(std::string_view name, std::string_view arguments,
                      std::span<const Type> types) {
  return "`" + std::string(name) + "` | " + argument_list(arguments, types);
}

std::string class_section(const ClassTable& table) {
  std::string out = "\n## " + std::string(table.name) + "\n\n" + std::string(table.role) + "\n\n";
  out += "| id | kind | member | arguments | result |\n|---|---|---|---|---|\n";
  for (const Member& member : table.members)
    out += "| " + std::to_string(member.id) + " | " + std::string(kind_name(member.kind)) + " | " +
           call_cell(member.name, member.arguments, member.types) + " | " +
           type_name(member.result) + " |\n";
  if (table.events.empty()) return out;
  out += "\n| id | event | arguments |\n|---|---|---|\n";
  int id = 0;
  for (const EventMember& event : table.events)
    out += "| " + std::to_string(++id) + " | " +
           call_cell(event.name, event.arguments, event.types) + " |\n";
  return out;
}

}  // namespace

std::string snapshot_text(const LibraryTable& library) {
  std::string out = std::string(library.name) + " " + guid_text(library.id) + "\n";
  for (const ClassTable* table : library.classes) {
    out += "class " + std::string(table->name) + " " + guid_text(table->class_id) + " " +
           guid_text(table->interface_id);
    if (!table->events.empty()) out += " " + guid_text(table->event_interface_id);
    out += "\n" + member_lines(*table);
  }
  for (const EnumerationTable* table : library.enumerations) {
    out += "enum " + std::string(table->name) + " " + guid_text(table->id) + "\n";
    for (const EnumerationItem& item : table->items)
      out += "  " + std::to_string(item.value) + " " + std::string(item.name) + "\n";
  }
  return out;
}

std::string interface_page(const LibraryTable& library) {
  std::string out = "# " + std::string(library.name) + "\n\n";
  out += "Written by `describe_surface markdown` from the tables in `qto/server`.\n";
  out += "Members stand in interface order; accessors of one property share an identifier.\n";
  for (const ClassTable* table : library.classes) out += class_section(*table);
  for (const EnumerationTable* table : library.enumerations) {
    out += "\n## " + std::string(table->name) + "\n\n" + std::string(table->role) + "\n\n";
    out += "| value | name |\n|---|---|\n";
    for (const EnumerationItem& item : table->items)
      out += "| " + std::to_string(item.value) + " | `" + std::string(item.name) + "` |\n";
  }
  return out;
}

}  // namespace qto::server
