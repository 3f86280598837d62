#include "qto/hosts/embedded/formulas/compiled_formula.hpp"

#include <functional>

#include "qto/formula/formula_pieces.hpp"
#include "qto/formula/parser.hpp"
#include "qto/hosts/embedded/book/book.hpp"
#include "qto/hosts/embedded/formulas/formula_text.hpp"

namespace qto::embedded {

struct CompiledFormula::Impl {
  std::string source;
  CellPos base;
  std::string key;
  formula::FormulaPieces pieces;
  // Most formulas of a file are never evaluated, so parsing waits until somebody asks.
  mutable bool parsed = false;
  mutable formula::ParsedFormula result;

  const formula::ParsedFormula& parse() const {
    if (!parsed) {
      result = formula::parse_formula(source, base);
      parsed = true;
    }
    return result;
  }
};

CompiledFormula::CompiledFormula() : impl_(std::make_unique<Impl>()) {}
CompiledFormula::~CompiledFormula() = default;

std::string_view CompiledFormula::without_equals(std::string_view text) noexcept {
  const std::size_t start = text.find_first_not_of(" \t\r\n");
  if (start != std::string_view::npos && text[start] == '=') text.remove_prefix(start + 1);
  return text;
}

void CompiledFormula::append_key(std::string& key, std::string_view text, CellPos base) {
  formula::append_formula_key(key, without_equals(text), base);
}

std::shared_ptr<const CompiledFormula> CompiledFormula::compile(std::string_view text,
                                                                CellPos base) {
  auto formula = std::make_shared<CompiledFormula>();
  Impl& impl = *formula->impl_;
  impl.source = without_equals(text);
  impl.base = base;
  formula::append_formula_key(impl.key, impl.source, base);
  impl.pieces = formula::cut_formula(impl.source, base);
  return formula;
}

void CompiledFormula::append_formula(std::string& out, const RenderContext& context) const {
  append_pieces(out, impl_->pieces, context, TextForm::formula);
}

void CompiledFormula::append_local(std::string& out, const RenderContext& context) const {
  append_pieces(out, impl_->pieces, context, TextForm::local);
}

void CompiledFormula::append_r1c1(std::string& out, const RenderContext& context) const {
  append_pieces(out, impl_->pieces, context, TextForm::r1c1);
}

const formula::SyntaxTree* CompiledFormula::tree() const {
  const formula::ParsedFormula& parsed = impl_->parse();
  return parsed.tree.root == formula::no_node ? nullptr : &parsed.tree;
}

const std::string& CompiledFormula::why_broken() const { return impl_->parse().why_broken; }

std::optional<std::int32_t> CompiledFormula::moving_references(const Book& book) const {
  std::int32_t count = 0;
  for (const formula::Piece& piece : impl_->pieces.pieces) switch (piece.kind) {
      case formula::PieceKind::area:
        ++count;
        break;
      case formula::PieceKind::literal:
      case formula::PieceKind::local_literal:
        break;
      case formula::PieceKind::name:
        if (piece.qualifier != 0 || book.find_table(impl_->pieces.literal(piece)))
          return std::nullopt;
        break;
      default:
        return std::nullopt;
    }
  return count;
}

bool CompiledFormula::same_as(const CompiledFormula& other) const noexcept {
  return impl_->key == other.impl_->key;
}

bool CompiledFormula::has_key(std::string_view key) const noexcept { return impl_->key == key; }

std::uint64_t CompiledFormula::hash() const noexcept { return hash_key(impl_->key); }

std::uint64_t CompiledFormula::hash_key(std::string_view key) noexcept {
  return std::hash<std::string_view>()(key);
}

}  // namespace qto::embedded
