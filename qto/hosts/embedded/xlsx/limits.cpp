#include "qto/hosts/embedded/xlsx/limits.hpp"

namespace qto::embedded {
namespace {

constexpr LimitName names[] = {
    {"part-bytes", &Limits::part_bytes, "inflated bytes of one part"},
    {"inflated-bytes", &Limits::inflated_bytes, "inflated bytes of all parts, small files"},
    {"inflate-ratio", &Limits::inflate_ratio, "inflated bytes per byte of the file beyond that"},
    {"parts", &Limits::parts, "parts of the package"},
    {"encrypted-bytes", &Limits::encrypted_bytes, "bytes of an encrypted file"},
    {"xml-tag-bytes", &Limits::xml_tag_bytes, "bytes of one tag or comment"},
    {"xml-depth", &Limits::xml_depth, "elements inside one another"},
    {"xml-attributes", &Limits::xml_attributes, "attributes of one element"},
    {"sheets", &Limits::sheets, "sheets"},
    {"strings", &Limits::strings, "shared strings"},
    {"text-length", &Limits::text_length, "UTF-16 units of a text; longer ones are cut"},
    {"formula-length", &Limits::formula_length, "bytes of a formula"},
    {"cells", &Limits::cells, "stored cells"},
    {"cell-bytes", &Limits::cell_bytes, "memory for cells"},
    {"array-cells", &Limits::array_cells, "cells with the formula of an array or data table"},
    {"large-arrays", &Limits::large_arrays, "arrays of more than 65,536 cells on a sheet"},
};

}  // namespace

std::span<const LimitName> limit_names() noexcept { return names; }

}  // namespace qto::embedded
