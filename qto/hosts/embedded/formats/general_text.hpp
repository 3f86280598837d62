#pragma once

#include <string>

namespace qto::embedded::formats {

/// Characters a number in General takes at most, its sign not counted.
inline constexpr int kGeneralWidth = 11;

/// Appends what General shows for a finite `magnitude` >= 0 within `width` characters (at most
/// kGeneralWidth): rounded, or scientific. False, appending nothing, when even that is too long.
bool append_general(double magnitude, int width, std::string& out);

}  // namespace qto::embedded::formats
