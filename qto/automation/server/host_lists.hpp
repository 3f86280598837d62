#pragma once

#include <string_view>
#include <utility>

#include "qto/host/host.hpp"

namespace qto::server {

/// The sheets of a workbook as a collection that clients hold: all of them or worksheets alone.
class SheetList final : public Object {
 public:
  SheetList(Ref<host::Workbook> book, bool worksheets)
      : book_(std::move(book)), worksheets_(worksheets) {}
  std::string_view TypeName() const noexcept override {
    return worksheets_ ? "Worksheets" : "Sheets";
  }
  std::int32_t Count() const;
  /// By name or position from 1; throws HostFailure when there is none.
  Ref<Object> Item(const Variant& index) const;
  Ref<host::Workbook> Parent() const { return book_; }
  Ref<host::Worksheet> Add() const { return book_->AddWorksheet(); }

 private:
  Ref<host::Workbook> book_;
  bool worksheets_;
};

/// The names of a workbook.
class NameList final : public Object {
 public:
  explicit NameList(Ref<host::Workbook> book) : book_(std::move(book)) {}
  std::string_view TypeName() const noexcept override { return "Names"; }
  std::int32_t Count() const { return static_cast<std::int32_t>(book_->AllNames().size()); }
  Ref<host::DefinedName> Item(const Variant& index) const;
  Ref<host::DefinedName> Add(std::string_view name, std::string_view refers_to) const {
    return book_->AddName(name, refers_to);
  }

 private:
  Ref<host::Workbook> book_;
};

}  // namespace qto::server
