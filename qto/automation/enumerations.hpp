#pragma once

#include <cstdint>

/// The public enumerations. Names and values are fixed, uneven letter case included.
namespace qto {

/// How a special worksheet function is drilled.
enum qtoDrillType : std::int32_t {
  qtoDrillAll = 0,
  qtodrillusedsection = 1,
  qtodrillconditionandused = 2,
  qtoDrillIndirectReal = 3,
  qtoDrillIndirectApparent = 4,
  qtodrillindirectboth = 5,
  qtoDrillMatchCondition = 6,
};

/// Outcome of an attempt to open a linked workbook.
enum qtoReasonNotOpened : std::int32_t {
  qtoWNOOK = 0,
  qtownoUserDecision = 1,
  qtoWNOCircularReference = 2,
  qtownoNotFound = 3,
  qtownoDuplicateName = 4,
  qtownoOther = 5,
};

/// Qualifier of a long address; it counts from 1.
enum qtoAddressType : std::int32_t {
  qtoaddressSheet = 1,
  qtoaddressBook = 2,
  qtoaddressPath = 3,
  qtoAddressChart = 4,
};

/// Outcome of selecting a part in the host.
enum qtoReasonNotSelect : std::int32_t {
  qtoSelectOK = 0,
  qtoBookNotOpen = 1,
  qtoItemHidden = 2,
  qtoCouldNotUnhide = 3,
  qtoNotSelectableObject = 4,
};

/// Whether a formula holds a literal constant.
enum qtoContainsConstant : std::int32_t {
  qtoNoConstantInFormula = 0,
  qtoFormulaContainsConstant = 1,
  qtoFormulaContainsConstZeroOrOne = 2,
};

/// How formulas are read.
enum qtoReading : std::int32_t {
  qtoReadAsWritten = 0,  ///< as text, token by token
  qtoReadExact = 1,      ///< as structure: no precedent is missed, no wrong cell followed
};

}  // namespace qto
