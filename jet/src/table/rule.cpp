#include "table/rule.h"

#include <algorithm>
#include <array>
#include <utility>

#include "values/decimal.h"
#include "values/key.h"
#include "values/text.h"

namespace jet {

namespace {

// What is thrown within the parser for a rule that it does not understand.
struct NotUnderstood {};

enum class TokenKind { kWord, kField, kText, kNumber, kSymbol, kEnd };

struct Token {
    TokenKind kind = TokenKind::kEnd;
    std::u16string text;
};

bool IsDigit(char16_t c) {
    return c >= u'0' && c <= u'9';
}

bool IsWordCharacter(char16_t c) {
    return IsDigit(c) || (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || c == u'_' ||
           c >= 0x80;
}

std::u16string Raised(std::u16string text) {
    std::transform(text.begin(), text.end(), text.begin(), [](char16_t c) {
        return c >= u'a' && c <= u'z' ? static_cast<char16_t>(c - 32) : c;
    });
    return text;
}

class RuleScanner {
public:
    explicit RuleScanner(std::u16string_view text) : rest_(text) {}

    Token Next() {
        while (!rest_.empty() && rest_.front() <= u' ') rest_.remove_prefix(1);
        if (rest_.empty()) return {};
        const char16_t c = rest_.front();
        if (c == u'[') return Bracketed();
        if (c == u'"' || c == u'\'') return Quoted(c);
        if (IsDigit(c) || c == u'.') {
            return {TokenKind::kNumber, Taken([](char16_t d) { return IsDigit(d) || d == u'.'; })};
        }
        if (IsWordCharacter(c)) return {TokenKind::kWord, Taken(IsWordCharacter)};
        for (const std::u16string_view symbol :
             {u"<>", u"<=", u">=", u"=", u"<", u">", u"(", u")", u",", u"-"}) {
            if (!rest_.starts_with(symbol)) continue;
            rest_.remove_prefix(symbol.size());
            return {TokenKind::kSymbol, std::u16string(symbol)};
        }
        throw NotUnderstood();
    }

private:
    template <typename Belongs>
    std::u16string Taken(const Belongs& belongs) {
        const auto* const end = std::find_if_not(rest_.begin(), rest_.end(), belongs);
        const std::u16string taken(rest_.begin(), end);
        rest_.remove_prefix(taken.size());
        return taken;
    }
    Token Bracketed() {
        const std::size_t end = rest_.find(u']');
        if (end == std::u16string_view::npos) throw NotUnderstood();
        const std::u16string name(rest_.substr(1, end - 1));
        rest_.remove_prefix(end + 1);
        return {TokenKind::kField, name};
    }
    // A doubled quote stands for one.
    Token Quoted(char16_t quote) {
        std::u16string text;
        for (rest_.remove_prefix(1); !rest_.empty(); rest_.remove_prefix(1)) {
            if (rest_.front() == quote) {
                rest_.remove_prefix(1);
                if (!rest_.starts_with(quote)) return {TokenKind::kText, text};
            }
            text.push_back(rest_.front());
        }
        throw NotUnderstood();
    }

    std::u16string_view rest_;
};

enum class Type { kNumber, kText, kNull, kOther };

Type TypeOf(ColumnType type) {
    switch (type) {
        case ColumnType::kText:
        case ColumnType::kMemo:
            return Type::kText;
        case ColumnType::kOle:
        case ColumnType::kBinary:
        case ColumnType::kFixedBinary:
        case ColumnType::kGuid:
            return Type::kOther;
        default:
            return Type::kNumber;
    }
}

}  // namespace

class RuleParser {
public:
    RuleParser(std::u16string_view text, const Definition& definition,
               std::optional<std::size_t> own)
        : scanner_(text), definition_(definition), own_(own) {
        Advance();
    }

    Rule::Node Parse() {
        Rule::Node node = Any();
        if (token_.kind != TokenKind::kEnd) throw NotUnderstood();
        return node;
    }

private:
    using Node = Rule::Node;
    using Operand = Rule::Operand;
    using Kind = Rule::Kind;
    using Comparison = Rule::Comparison;

    void Advance() { token_ = scanner_.Next(); }

    [[nodiscard]] bool IsWord(std::u16string_view word) const {
        return token_.kind == TokenKind::kWord && Raised(token_.text) == word;
    }
    bool TakeWord(std::u16string_view word) {
        const bool found = IsWord(word);
        if (found) Advance();
        return found;
    }
    bool TakeSymbol(std::u16string_view symbol) {
        const bool found = token_.kind == TokenKind::kSymbol && token_.text == symbol;
        if (found) Advance();
        return found;
    }
    void Expect(bool taken) const {
        if (!taken) throw NotUnderstood();
    }

    static Node Joined(Kind kind, std::vector<Node> parts) {
        if (parts.size() == 1) return std::move(parts.front());
        Node node;
        node.kind = kind;
        node.parts = std::move(parts);
        return node;
    }

    Node Any() {
        std::vector<Node> parts;
        do {
            parts.push_back(All());
        } while (TakeWord(u"OR"));
        return Joined(Kind::kOr, std::move(parts));
    }

    Node All() {
        std::vector<Node> parts;
        do {
            parts.push_back(Negatable());
        } while (TakeWord(u"AND"));
        return Joined(Kind::kAnd, std::move(parts));
    }

    // The depth is bounded, since a rule comes from the file.
    Node Negatable() {
        constexpr int kDeepest = 50;
        if (++depth_ > kDeepest) throw NotUnderstood();
        Node node;
        if (TakeWord(u"NOT")) {
            node = Negated(Negatable());
        } else if (TakeSymbol(u"(")) {
            node = Any();
            Expect(TakeSymbol(u")"));
        } else {
            node = Test();
        }
        --depth_;
        return node;
    }

    static Node Negated(Node node) {
        Node negation;
        negation.kind = Kind::kNot;
        negation.parts.push_back(std::move(node));
        return negation;
    }

    [[nodiscard]] bool BeginsWithoutOperand() const {
        if (token_.kind == TokenKind::kSymbol) return token_.text != u"-" && token_.text != u")";
        return IsWord(u"BETWEEN") || IsWord(u"IN") || IsWord(u"IS") || IsWord(u"LIKE");
    }

    Node Test() {
        Operand left;
        if (BeginsWithoutOperand()) {
            Expect(own_.has_value());
            left.column = own_;
        } else {
            left = ReadOperand();
            if (const auto node = TestOf(left)) return *node;
            // An operand alone.
            Expect(own_.has_value());
            return Compared(Operand{own_, {}}, Comparison::kEqual, left);
        }
        auto node = TestOf(left);
        Expect(node.has_value());
        return *node;
    }

    std::optional<Node> TestOf(const Operand& left) {
        if (TakeWord(u"IS")) return IsNull(left);
        if (TakeWord(u"NOT")) {
            if (TakeWord(u"BETWEEN")) return Negated(Between(left));
            Expect(TakeWord(u"IN"));
            return Negated(In(left));
        }
        if (TakeWord(u"BETWEEN")) return Between(left);
        if (TakeWord(u"IN")) return In(left);
        constexpr std::array<std::pair<std::u16string_view, Comparison>, 6> kComparisons = {
            {{u"=", Comparison::kEqual},
             {u"<>", Comparison::kNotEqual},
             {u"<", Comparison::kLess},
             {u"<=", Comparison::kLessOrEqual},
             {u">", Comparison::kGreater},
             {u">=", Comparison::kGreaterOrEqual}}};
        for (const auto& [symbol, comparison] : kComparisons) {
            if (TakeSymbol(symbol)) return Compared(left, comparison, ReadOperand());
        }
        return std::nullopt;
    }

    Node IsNull(const Operand& operand) {
        const bool negated = TakeWord(u"NOT");
        Expect(TakeWord(u"NULL"));
        Node node;
        node.kind = Kind::kIsNull;
        node.operands.push_back(operand);
        return negated ? Negated(std::move(node)) : node;
    }

    Node Between(const Operand& operand) {
        std::vector<Node> parts;
        parts.push_back(Compared(operand, Comparison::kGreaterOrEqual, ReadOperand()));
        Expect(TakeWord(u"AND"));
        parts.push_back(Compared(operand, Comparison::kLessOrEqual, ReadOperand()));
        return Joined(Kind::kAnd, std::move(parts));
    }

    Node In(const Operand& operand) {
        Expect(TakeSymbol(u"("));
        std::vector<Node> parts;
        do {
            parts.push_back(Compared(operand, Comparison::kEqual, ReadOperand()));
        } while (TakeSymbol(u","));
        Expect(TakeSymbol(u")"));
        return Joined(Kind::kOr, std::move(parts));
    }

    [[nodiscard]] Type TypeOfOperand(const Operand& operand) const {
        if (operand.column) return TypeOf(definition_.columns[*operand.column].type);
        if (operand.literal.IsNull()) return Type::kNull;
        return std::holds_alternative<std::u16string>(operand.literal.Get()) ? Type::kText
                                                                             : Type::kNumber;
    }

    Node Compared(const Operand& left, Comparison comparison, const Operand& right) const {
        const Type type = TypeOfOperand(left);
        const Type other = TypeOfOperand(right);
        Expect(type != Type::kOther && other != Type::kOther);
        Expect(type == other || type == Type::kNull || other == Type::kNull);
        Node node;
        node.kind = Kind::kCompare;
        node.comparison = comparison;
        node.operands = {left, right};
        return node;
    }

    Operand ReadOperand() {
        const Token token = token_;
        Operand operand;
        const bool negative = TakeSymbol(u"-");
        if (negative || token.kind == TokenKind::kNumber) {
            Expect(token_.kind == TokenKind::kNumber);
            const auto number = ParseDecimal((negative ? u"-" : u"") + token_.text);
            Expect(number.has_value());
            operand.literal = *number;
        } else if (token.kind == TokenKind::kText) {
            operand.literal = token.text;
        } else if (token.kind == TokenKind::kField) {
            operand.column = definition_.FindColumn(token.text);
            Expect(operand.column.has_value());
        } else {
            operand.literal = Constant();
        }
        Advance();
        return operand;
    }

    [[nodiscard]] Value Constant() const {
        if (IsWord(u"TRUE") || IsWord(u"YES") || IsWord(u"ON")) return true;
        if (IsWord(u"FALSE") || IsWord(u"NO") || IsWord(u"OFF")) return false;
        Expect(IsWord(u"NULL"));
        return {};
    }

    RuleScanner scanner_;
    const Definition& definition_;
    std::optional<std::size_t> own_;
    Token token_;
    int depth_ = 0;
};

namespace {

std::optional<Decimal> Exact(const Value& value) {
    if (const auto* decimal = std::get_if<Decimal>(&value.Get())) return *decimal;
    if (const bool* truth = std::get_if<bool>(&value.Get())) {
        return ParseDecimal(*truth ? u"-1" : u"0");
    }
    return ParseDecimal(value.AsText());
}

int CompareValues(const Value& left, const Value& right, Version version) {
    const auto* leftText = std::get_if<std::u16string>(&left.Get());
    const auto* rightText = std::get_if<std::u16string>(&right.Get());
    if (leftText != nullptr && rightText != nullptr) {
        return CompareText(*leftText, *rightText, version);
    }
    const auto exactLeft = Exact(left);
    const auto exactRight = Exact(right);
    if (exactLeft && exactRight) return CompareDecimals(*exactLeft, *exactRight);
    const double leftNumber = left.AsDouble();
    const double rightNumber = right.AsDouble();
    return leftNumber < rightNumber ? -1 : leftNumber > rightNumber ? 1 : 0;
}

}  // namespace

std::optional<Rule> Rule::Parse(std::u16string_view text, const Definition& definition,
                                std::optional<std::size_t> own) try {
    Rule rule;
    rule.version_ = definition.version;
    rule.root_ = RuleParser(text, definition, own).Parse();
    return rule;
} catch (const NotUnderstood&) {
    return std::nullopt;
}

bool Rule::Allows(const ColumnValue& value) const {
    return Evaluate(root_, value) == Truth::kTrue;
}

Rule::Truth Rule::Evaluate(const Node& node, const ColumnValue& value) const {
    switch (node.kind) {
        case Kind::kAnd:
        case Kind::kOr: {
            const bool all = node.kind == Kind::kAnd;
            Truth truth = all ? Truth::kTrue : Truth::kFalse;
            for (const Node& part : node.parts) {
                const Truth one = Evaluate(part, value);
                truth = all ? std::min(truth, one) : std::max(truth, one);
            }
            return truth;
        }
        case Kind::kNot: {
            const Truth truth = Evaluate(node.parts.front(), value);
            if (truth == Truth::kUnknown) return truth;
            return truth == Truth::kTrue ? Truth::kFalse : Truth::kTrue;
        }
        case Kind::kIsNull: {
            const Operand& operand = node.operands.front();
            const bool null =
                operand.column ? value(*operand.column).IsNull() : operand.literal.IsNull();
            return null ? Truth::kTrue : Truth::kFalse;
        }
        case Kind::kCompare:
            return Compare(node, value);
    }
    return Truth::kUnknown;  // unreachable: every kind is listed
}

Rule::Truth Rule::Compare(const Node& node, const ColumnValue& value) const {
    const auto valueOf = [&value](const Operand& operand) {
        return operand.column ? value(*operand.column) : operand.literal;
    };
    const Value left = valueOf(node.operands.front());
    const Value right = valueOf(node.operands.back());
    if (left.IsNull() || right.IsNull()) return Truth::kUnknown;
    const int order = CompareValues(left, right, version_);
    const auto holds = [&] {
        switch (node.comparison) {
            case Comparison::kEqual:
                return order == 0;
            case Comparison::kNotEqual:
                return order != 0;
            case Comparison::kLess:
                return order < 0;
            case Comparison::kLessOrEqual:
                return order <= 0;
            case Comparison::kGreater:
                return order > 0;
            case Comparison::kGreaterOrEqual:
                return order >= 0;
        }
        return false;
    };
    return holds() ? Truth::kTrue : Truth::kFalse;
}

}  // namespace jet
