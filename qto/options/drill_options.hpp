#pragma once

#include <cstdint>

#include "qto/automation/enumerations.hpp"
#include "qto/automation/object.hpp"

namespace qto {

/// What to show and how to drill special worksheet functions. A client shares one object with a
/// drill; changes take effect at the next formula that is parsed.
class DrillOptions : public Object {
 public:
  /// Begins with ShowNormal.
  DrillOptions();
  std::string_view TypeName() const noexcept override { return "DrillOptions"; }

  /// When False, precedents that hold a blank, a zero or a date are left out.
  bool ShowBlanks() const;
  void put_ShowBlanks(bool show);
  bool ShowZeros() const;
  void put_ShowZeros(bool show);
  bool ShowDates() const;
  void put_ShowDates(bool show);

  /// Every reference written in a formula.
  void ShowNormal();
  /// These and the real targets of INDIRECT and OFFSET.
  void ShowAll();
  /// Only what produces each result; blanks, zeros and dates left out.
  void ShowMinimal();

  /// How each special function is drilled. A setter takes the values named; any other raises
  /// 80040004 and changes nothing.
  qtoDrillType ParseIf() const;
  void put_ParseIf(qtoDrillType type);  ///< 0, 1, 2
  qtoDrillType ParseLookup() const;
  void put_ParseLookup(qtoDrillType type);  ///< 0, 1, 2
  qtoDrillType ParseSumif() const;
  void put_ParseSumif(qtoDrillType type);  ///< 0, 1, 2
  qtoDrillType ParseIndirect() const;
  void put_ParseIndirect(qtoDrillType type);  ///< 3, 4, 5
  qtoDrillType ParseOffset() const;
  void put_ParseOffset(qtoDrillType type);  ///< 3, 4, 5
  qtoDrillType ParseIndex() const;
  void put_ParseIndex(qtoDrillType type);  ///< 0, 1
  qtoDrillType ParseMatch() const;
  void put_ParseMatch(qtoDrillType type);  ///< 0, 6
  /// How formulas are read; at first as written. The three sets above leave it as it is. A value
  /// other than 0 and 1 raises 80040004.
  qtoReading Reading() const;
  void put_Reading(qtoReading reading);

  // Inside the engine only

  /// Everything at once; a parse reads it several times.
  struct Settings {
    qtoDrillType parse_if, parse_indirect, parse_offset, parse_lookup, parse_match, parse_index,
        parse_sumif;
    bool show_blanks, show_zeros, show_dates;
    qtoReading reading = qtoReadAsWritten;
  };
  const Settings& settings() const noexcept { return settings_; }

 private:
  Settings settings_{};
};

}  // namespace qto
