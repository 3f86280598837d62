#pragma once

#include <com/sun/star/table/XCell.hpp>
#include <string>

#include "qto/automation/variant.hpp"
#include "qto/hosts/libreoffice/document/document.hpp"

namespace qto::libreoffice {

/// A cell at the end of the grid in which texts for the suite's parser are evaluated. It is empty
/// again when the object goes.
class Scratch {
 public:
  Scratch(Document& document, const SheetSlot& sheet, CellPos pos);
  ~Scratch();
  Scratch(const Scratch&) = delete;
  Scratch& operator=(const Scratch&) = delete;

  /// Calculates a text without "=".
  void calculate(const std::string& text);
  /// The result: a number, a text, an error value.
  Variant result() const;
  /// calculate() and result().
  Variant operator()(const std::string& text) {
    calculate(text);
    return result();
  }
  /// The same as a number, `otherwise` when it is none.
  double number(const std::string& text, double otherwise);

 private:
  Document& document_;
  com::sun::star::table::CellAddress address_;
  uno::Reference<com::sun::star::table::XCell> cell_;
};

}  // namespace qto::libreoffice
