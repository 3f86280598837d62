#include "qto/server/engine_names.hpp"
#include "qto/server/engine_tables.hpp"

namespace qto::server {
namespace {

constexpr Member model_parts_members[] = {
    method<&ModelParts::AddExisting>(1, "AddExisting", "&mpart"),
    get<&ModelParts::Count>(2, "Count"),
    get<&ModelParts::Item>(3, "Item", "vitem"),
    method<&ModelParts::Remove>(4, "Remove", "vitem"),
    new_enum<ModelParts>(),
};
static_assert(identifiers_fit(model_parts_members));

constexpr EventMember model_parts_events[] = {
    event<&ModelParts::BeforeItemAdded>("BeforeItemAdded", "&NewItem"),
};

}  // namespace

constinit const ClassTable model_parts_table{
    "ModelParts",       "Parts in order, each under its UniqueKey.",
    own_guid(0x61),     own_guid(0x62),
    own_guid(0x63),     model_parts_members,
    model_parts_events, create_object<ModelParts>};

}  // namespace qto::server
