#include "jet/query.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <utility>

#include "jet/error.h"
#include "os/out_of_memory.h"
#include "values/decimal.h"
#include "values/text.h"

namespace jet {

namespace {

enum class TokenKind { kName, kText, kNumber, kSymbol, kEnd };

struct Token {
    TokenKind kind = TokenKind::kEnd;
    std::string text;  // of a text literal: what it stands for; of a name: without brackets
    std::size_t at = 0;
    bool bracketed = false;
};

[[noreturn]] void Fail(std::size_t at, const std::string& what) {
    throw Error(ErrorKind::kSyntax, "Syntax error in the query at character " +
                                        std::to_string(at + 1) + ": " + what + ".");
}

bool IsBlank(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}
bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}
bool IsNameCharacter(char c) {
    return IsDigit(c) || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' ||
           static_cast<unsigned char>(c) >= 0x80;
}

bool IsWord(const Token& token, std::string_view word) {
    return token.kind == TokenKind::kName && !token.bracketed &&
           std::equal(token.text.begin(), token.text.end(), word.begin(), word.end(),
                      [](char left, char right) {
                          return (left >= 'a' && left <= 'z' ? left - 'a' + 'A' : left) == right;
                      });
}

class Scanner {
public:
    explicit Scanner(std::string_view sql) : sql_(sql) {}

    Token Next() {
        while (at_ < sql_.size() && IsBlank(sql_[at_])) {
            ++at_;
        }
        Token token;
        token.at = at_;
        if (at_ == sql_.size()) {
            return token;
        }
        const char c = sql_[at_];
        if (c == '[') {
            ReadBracketedName(token);
        } else if (c == '\'' || c == '"') {
            ReadText(token, c);
        } else if (IsDigit(c) || (c == '.' && IsDigit(Ahead(1))) ||
                   ((c == '-' || c == '+') && (IsDigit(Ahead(1)) || Ahead(1) == '.'))) {
            ReadNumber(token);
        } else if (IsNameCharacter(c)) {
            token.kind = TokenKind::kName;
            while (at_ < sql_.size() && IsNameCharacter(sql_[at_])) {
                token.text += sql_[at_++];
            }
        } else {
            ReadSymbol(token);
        }
        return token;
    }

private:
    [[nodiscard]] char Ahead(std::size_t by) const {
        return at_ + by < sql_.size() ? sql_[at_ + by] : '\0';
    }

    void ReadBracketedName(Token& token) {
        const std::size_t end = sql_.find(']', at_);
        if (end == std::string_view::npos) {
            Fail(at_, "a bracket is not closed");
        }
        token.kind = TokenKind::kName;
        token.bracketed = true;
        token.text = sql_.substr(at_ + 1, end - at_ - 1);
        at_ = end + 1;
        if (token.text.empty()) {
            Fail(token.at, "a name is empty");
        }
    }

    void ReadText(Token& token, char quote) {
        token.kind = TokenKind::kText;
        for (++at_; at_ < sql_.size(); ++at_) {
            if (sql_[at_] == quote) {
                if (Ahead(1) != quote) {
                    ++at_;
                    return;
                }
                ++at_;
            }
            token.text += sql_[at_];
        }
        Fail(token.at, "a text has no closing quote");
    }

    void ReadNumber(Token& token) {
        token.kind = TokenKind::kNumber;
        token.text += sql_[at_++];
        while (at_ < sql_.size()) {
            const char c = sql_[at_];
            const bool exponentSign =
                (c == '-' || c == '+') && (token.text.back() == 'e' || token.text.back() == 'E');
            if (!IsDigit(c) && c != '.' && c != 'e' && c != 'E' && !exponentSign) {
                break;
            }
            token.text += c;
            ++at_;
        }
        if (at_ < sql_.size() && IsNameCharacter(sql_[at_])) {
            Fail(token.at, "a number is followed by a letter");
        }
    }

    void ReadSymbol(Token& token) {
        constexpr std::array<std::string_view, 10> kSymbols = {"<>", "<=", ">=", "=", "<",
                                                               ">",  "*",  ",",  ";", "?"};
        token.kind = TokenKind::kSymbol;
        for (const std::string_view symbol : kSymbols) {
            if (sql_.substr(at_, symbol.size()) == symbol) {
                token.text = symbol;
                at_ += symbol.size();
                return;
            }
        }
        Fail(at_, std::string("unexpected character \"") + sql_[at_] + "\"");
    }

    std::string_view sql_;
    std::size_t at_ = 0;
};

class Parser {
public:
    explicit Parser(std::string_view sql) : scanner_(sql) { Advance(); }

    Query Parse() {
        Query query;
        Expect("SELECT");
        if (!TakeSymbol("*")) {
            do {
                query.fields.push_back(Name("a field"));
            } while (TakeSymbol(","));
        }
        Expect("FROM");
        query.table = Name("a table");
        if (TakeWord("WHERE")) {
            do {
                query.conditions.push_back(ParseCondition());
            } while (TakeWord("AND"));
        }
        if (TakeWord("ORDER")) {
            Expect("BY");
            do {
                query.order.push_back(ParseOrderTerm());
            } while (TakeSymbol(","));
        }
        TakeSymbol(";");
        if (token_.kind != TokenKind::kEnd) {
            Fail(token_.at, "something follows the end of the query");
        }
        return query;
    }

private:
    void Advance() { token_ = scanner_.Next(); }

    bool TakeWord(std::string_view word) {
        const bool found = IsWord(token_, word);
        if (found) {
            Advance();
        }
        return found;
    }

    bool TakeSymbol(std::string_view symbol) {
        const bool found = token_.kind == TokenKind::kSymbol && token_.text == symbol;
        if (found) {
            Advance();
        }
        return found;
    }

    void Expect(std::string_view word) {
        if (!TakeWord(word)) {
            Fail(token_.at, std::string(word) + " is expected");
        }
    }

    std::string Name(const std::string& what) {
        constexpr std::array<std::string_view, 12> kReserved = {"SELECT", "FROM",  "WHERE", "AND",
                                                                "OR",     "ORDER", "BY",    "IS",
                                                                "NOT",    "ASC",   "DESC",  "NULL"};
        const bool reserved =
            std::any_of(kReserved.begin(), kReserved.end(),
                        [&](std::string_view word) { return IsWord(token_, word); });
        if (token_.kind != TokenKind::kName || reserved) {
            Fail(token_.at, "the name of " + what + " is expected");
        }
        std::string name = std::move(token_.text);
        Advance();
        return name;
    }

    Condition ParseCondition() {
        constexpr std::array<std::pair<std::string_view, Operator>, 6> kOperators = {
            {{"=", Operator::kEqual},
             {"<>", Operator::kNotEqual},
             {"<", Operator::kLess},
             {"<=", Operator::kLessOrEqual},
             {">", Operator::kGreater},
             {">=", Operator::kGreaterOrEqual}}};
        Condition condition;
        condition.field = Name("a field");
        if (TakeWord("IS")) {
            condition.comparison = TakeWord("NOT") ? Operator::kIsNotNull : Operator::kIsNull;
            Expect("NULL");
            return condition;
        }
        for (const auto& [symbol, comparison] : kOperators) {
            if (TakeSymbol(symbol)) {
                condition.comparison = comparison;
                if (TakeSymbol("?")) {
                    condition.parameter = parameters_++;
                } else {
                    condition.literal = Literal();
                }
                return condition;
            }
        }
        Fail(token_.at, "a comparison is expected");
    }

    Value Literal() {
        const Token token = token_;
        if (token.kind == TokenKind::kText) {
            Advance();
            return WidenName(token.text);
        }
        if (token.kind != TokenKind::kNumber) {
            Fail(token.at, "a text in quotes or a number is expected");
        }
        Advance();
        return Number(token);
    }

    static Value Number(const Token& token) {
        const char* first = token.text.data();
        const char* const last = first + token.text.size();
        first += *first == '+' ? 1 : 0;
        std::int32_t whole = 0;
        if (const auto [end, error] = std::from_chars(first, last, whole);
            end == last && error == std::errc()) {
            return whole;
        }
        // More digits than a double keeps.
        constexpr int kDoubleDigits = 15;
        const bool hasExponent = token.text.find_first_of("eE") != std::string::npos;
        const auto exact = ParseDecimal(WidenName({first, last}));
        if (exact && !hasExponent && DigitCount(*exact) > kDoubleDigits) return *exact;
        double number = 0;
        const auto [end, error] = std::from_chars(first, last, number);
        if (end != last || error != std::errc()) {
            Fail(token.at, "this is no number");
        }
        return number;
    }

    OrderTerm ParseOrderTerm() {
        OrderTerm term{Name("a field"), true};
        if (TakeWord("DESC")) {
            term.ascending = false;
        } else {
            TakeWord("ASC");
        }
        return term;
    }

    Scanner scanner_;
    Token token_;
    int parameters_ = 0;
};

}  // namespace

Query ParseQuery(std::string_view sql) {
    return Guarded([&] { return Parser(sql).Parse(); });
}

}  // namespace jet
