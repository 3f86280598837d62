#include <algorithm>

#include "qto/server/description/describe.hpp"

namespace qto::server {
namespace {

class IdlWriter {
 public:
  explicit IdlWriter(const LibraryTable& library) : library_(library) {}

  std::string text() {
    line("import \"oaidl.idl\";");
    line("import \"ocidl.idl\";");
    line("[uuid(" + bare(library_.id) + "), version(1.0), lcid(0x409), helpstring(\"" +
         std::string(library_.description) + "\")]");
    line("library " + std::string(library_.name) + " {");
    line("importlib(\"stdole2.tlb\");");
    for (const ClassTable* table : library_.classes) line("interface _" + name_of(*table) + ";");
    for (const EnumerationTable* table : library_.enumerations) enumeration(*table);
    for (const ClassTable* table : library_.classes) interfaces(*table);
    for (const ClassTable* table : library_.classes) coclass(*table);
    line("};");
    return std::move(out_);
  }

 private:
  static std::string bare(const Guid& guid) { return guid_text(guid).substr(1, 36); }
  static std::string name_of(const ClassTable& table) { return std::string(table.name); }
  void line(const std::string& text) { out_ += text + "\n"; }

  std::string spelling(const Type& type) const {
    static constexpr std::string_view names[] = {"void", "VARIANT_BOOL", "long", "BSTR", "VARIANT"};
    if (type.shape == Shape::enumeration) return std::string(type.name);
    if (type.shape != Shape::object) return std::string(names[static_cast<int>(type.shape)]);
    const bool own = std::ranges::any_of(
        library_.classes, [&](const ClassTable* table) { return table->name == type.name; });
    return own ? "_" + std::string(type.name) + "*" : "IDispatch*";
  }

  /// What may be left out is a variant, or a text that is empty then.
  std::string parameter(const Argument& argument, const Type& type) const {
    const bool is_text = type.shape == Shape::text;
    std::string out = argument.by_reference ? "[in, out" : "[in";
    if (argument.optional) out += is_text ? ", defaultvalue(\"\")" : ", optional";
    return out + "] " + (argument.optional && !is_text ? "VARIANT" : spelling(type)) +
           (argument.by_reference ? "* " : " ") + std::string(argument.name);
  }

  std::string parameters(std::string_view names, std::span<const Type> types) const {
    std::string out;
    for (std::size_t i = 0; i < types.size(); ++i)
      out += (i ? ", " : "") + parameter(argument_at(names, i), types[i]);
    return out;
  }

  void member(const Member& m) {
    static constexpr std::string_view kinds[] = {"propget, ", "propput, ", "propputref, ", "", ""};
    std::string list = parameters(m.arguments, m.types);
    if (m.kind == Kind::enumerator)
      list = "[out, retval] IUnknown** Result";
    else if (m.result.shape != Shape::none)
      list += (list.empty() ? "" : ", ") + ("[out, retval] " + spelling(m.result)) + "* Result";
    line("  [" + std::string(kinds[static_cast<int>(m.kind)]) + "id(" + std::to_string(m.id) + ")" +
         (m.kind == Kind::enumerator ? ", hidden" : "") + "] HRESULT " + std::string(m.name) + "(" +
         list + ");");
  }

  void interfaces(const ClassTable& table) {
    line("[odl, uuid(" + bare(table.interface_id) + "), dual, oleautomation, hidden]");
    line("interface _" + name_of(table) + " : IDispatch {");
    for (const Member& m : table.members) member(m);
    line("};");
    if (table.events.empty()) return;
    line("[uuid(" + bare(table.event_interface_id) + "), hidden]");
    line("dispinterface __" + name_of(table) + " {\nproperties:\nmethods:");
    int id = 0;
    for (const EventMember& event : table.events)
      line("  [id(" + std::to_string(++id) + ")] void " + std::string(event.name) + "(" +
           parameters(event.arguments, event.types) + ");");
    line("};");
  }

  void coclass(const ClassTable& table) {
    line("[uuid(" + bare(table.class_id) + "), helpstring(\"" + std::string(table.role) + "\")]");
    line("coclass " + name_of(table) + " {");
    line("  [default] interface _" + name_of(table) + ";");
    if (!table.events.empty()) line("  [default, source] dispinterface __" + name_of(table) + ";");
    line("};");
  }

  void enumeration(const EnumerationTable& table) {
    line("typedef [uuid(" + bare(table.id) + ")] enum " + std::string(table.name) + " {");
    for (const EnumerationItem& item : table.items)
      line("  " + std::string(item.name) + " = " + std::to_string(item.value) +
           (&item == &table.items.back() ? "" : ","));
    line("} " + std::string(table.name) + ";");
  }

  const LibraryTable& library_;
  std::string out_;
};

}  // namespace

std::string idl_text(const LibraryTable& library) { return IdlWriter(library).text(); }

}  // namespace qto::server
