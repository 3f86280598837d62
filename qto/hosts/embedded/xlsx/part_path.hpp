#pragma once

#include <string>
#include <string_view>

/// Names of the parts of a package (ECMA-376 Part 2). No leading separator, "/" between segments.
namespace qto::embedded {

/// The form under which a part is looked up: letter case, backslashes, percent-encoding and a
/// leading separator make no difference.
std::string part_key(std::string_view name);

/// The part that a relationship target names, seen from the part that owns the relationship. ".."
/// never climbs out of the package.
std::string resolve_part(std::string_view owner, std::string_view target);

/// Where the relationships of a part stand: "xl/workbook.xml" has "xl/_rels/workbook.xml.rels".
std::string relationships_part_of(std::string_view part);

/// "%20" and the like replaced by the bytes that they stand for; malformed ones stay.
std::string percent_decoded(std::string_view text);

}  // namespace qto::embedded
