#include "values/collation.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <vector>

namespace jet {

namespace {

constexpr std::size_t kMostCharacters = 255;

// A character with more weights than a weight word can hold.
struct RareWeights {
    std::uint8_t primary[4];
    std::uint8_t primarySize;
    std::uint8_t secondary[2];
    std::uint8_t secondarySize;
    std::uint8_t weights;
};

// Neighboring code units of one kind whose primary weights rise evenly.
struct WeightRun {
    std::uint16_t first;
    std::uint16_t count;
    std::uint32_t word;
    std::uint32_t step;
};

// Weight words, from the lowest bit: kind (3 bits), number of primary bytes (2), number of weights
// or, in General 97, of bases (2), nothing (1), secondary weight or accent or special code (8),
// primary weight (16).
#include "values/collation_tables.inc"

enum class Kind : std::uint8_t {
    kIgnored,
    kPlain,
    kAccented,
    kModifier,
    kSpecial,
    kKanaSmall,
    kKana,
    kRare
};

enum class Kind97 : std::uint8_t { kPlain = 1, kBase, kAccented };

constexpr std::uint32_t KindBits(std::uint32_t word) {
    return word & 7U;
}
constexpr std::uint32_t PrimarySize(std::uint32_t word) {
    return word >> 3 & 3U;
}
constexpr std::uint32_t WeightCount(std::uint32_t word) {
    return word >> 5 & 3U;
}
constexpr std::uint8_t Secondary(std::uint32_t word) {
    return static_cast<std::uint8_t>(word >> 8 & 0xFFU);
}

using WordTable = std::vector<std::uint32_t>;

WordTable ExpandRuns() {
    WordTable words(0x10000, 0);
    for (const WeightRun& run : kWeightRuns) {
        for (std::uint32_t i = 0; i < run.count; ++i) {
            words[run.first + i] = run.word + (run.step * i << 16);
        }
    }
    return words;
}

const WordTable& LegacyWords() {
    static const WordTable kWords = ExpandRuns();
    return kWords;
}

template <typename Text>
Text Prepare(Text text) {
    text = text.substr(0, kMostCharacters);
    while (!text.empty() && text.back() == ' ') {
        text.remove_suffix(1);
    }
    return text;
}

void Complement(Key& key, std::size_t from) {
    for (std::size_t i = from; i < key.size(); ++i) {
        key[i] = ~key[i];
    }
}

void AppendPrimary(Key& bytes, std::uint32_t word) {
    const std::uint32_t primary = word >> 16;
    if (PrimarySize(word) == 2) {
        bytes.push_back(static_cast<std::byte>(primary >> 8));
    }
    if (PrimarySize(word) != 0) {
        bytes.push_back(static_cast<std::byte>(primary & 0xFFU));
    }
}

// Half bytes, packed high half first.
class Digits {
public:
    [[nodiscard]] bool IsEmpty() const { return count_ == 0; }

    void Append(std::uint8_t digit) {
        if (count_++ % 2 == 0) {
            packed_.push_back(static_cast<std::byte>(digit << 4));
        } else {
            packed_.back() |= static_cast<std::byte>(digit);
        }
    }

    void AppendTo(Key& key) const { key.insert(key.end(), packed_.begin(), packed_.end()); }

private:
    Key packed_;
    std::size_t count_ = 0;
};

// The weights of one character, whichever way they are stored.
struct Weights {
    Kind kind = Kind::kIgnored;
    std::uint32_t word = 0;
    const RareWeights* rare = nullptr;
    std::uint32_t count = 0;  // primary weights
};

// Halves of surrogate pairs have no line in the table: their weights are computed.
std::uint32_t SurrogateWord(char16_t unit) {
    constexpr std::uint32_t kSecondary = 0x3F;
    std::uint32_t primary = unit - 10238U;
    if (unit >= 0xDC00) {
        const std::uint32_t place = unit - 0xDC00U;
        const std::uint32_t below = place < 8     ? 9992
                                    : place < 262 ? 9990
                                    : place < 516 ? 9988
                                    : place < 770 ? 9986
                                                  : 9984;
        primary = unit - below;
    }
    return static_cast<std::uint32_t>(Kind::kAccented) | 2U << 3 | 1U << 5 | kSecondary << 8 |
           primary << 16;
}

Weights WeightsOf(char16_t unit) {
    Weights weights;
    weights.word = unit >= 0xD800 && unit <= 0xDFFF ? SurrogateWord(unit) : LegacyWords()[unit];
    weights.kind = static_cast<Kind>(KindBits(weights.word));
    weights.count = WeightCount(weights.word);
    if (weights.kind == Kind::kRare) {
        weights.rare = &kRareWeights[weights.word >> 16];
        weights.count = weights.rare->weights;
        weights.kind = weights.rare->secondarySize == 0 ? Kind::kPlain : Kind::kAccented;
    }
    return weights;
}

// Goes through the characters of a text and keeps the parts of its General Legacy key apart.
class LegacyKey {
public:
    explicit LegacyKey(LetterCount letters) : letters_(letters) {}

    void Add(char16_t unit) {
        Weights weights = WeightsOf(unit);
        if (letters_ == LetterCount::kCharacters) {
            weights.count = std::min(weights.count, 1U);
        }
        if (weights.kind == Kind::kIgnored) {
            return;
        }
        const std::size_t before = primaries_;
        AddPrimary(weights);
        AddSecondary(weights, before);
        if (weights.kind == Kind::kSpecial) {
            AddSpecial(Secondary(weights.word), before);
        } else if (weights.kind == Kind::kKana || weights.kind == Kind::kKanaSmall) {
            kana_.push_back(weights.kind == Kind::kKana ? 3 : 2);
        }
    }

    void AppendStartTo(Key& key) const {
        key.insert(key.end(), primary_.begin(), primary_.end());
        key.push_back(std::byte{1});
    }

    void AppendTo(Key& key) {
        AppendStartTo(key);
        while (!secondary_.empty() && secondary_.back() <= std::byte{2}) {
            secondary_.pop_back();
        }
        key.insert(key.end(), secondary_.begin(), secondary_.end());
        if (!kana_.empty() || !special_.empty()) {
            key.insert(key.end(), 2, std::byte{1});
        }
        AppendKana(key);
        if (!special_.empty()) {
            key.push_back(std::byte{1});
            key.insert(key.end(), special_.begin(), special_.end());
        }
        key.push_back(std::byte{0});
    }

private:
    void AddPrimary(const Weights& weights) {
        if (weights.rare != nullptr) {
            for (std::size_t i = 0; i < weights.rare->primarySize; ++i) {
                primary_.push_back(std::byte{weights.rare->primary[i]});
            }
        } else {
            AppendPrimary(primary_, weights.word);
        }
        primaries_ += weights.count;
    }

    void AddSecondary(const Weights& weights, std::size_t before) {
        const bool modifier = weights.kind == Kind::kModifier;
        const bool carries = modifier || weights.kind == Kind::kAccented ||
                             weights.kind == Kind::kKana || weights.kind == Kind::kKanaSmall;
        const bool none = weights.rare == nullptr && Secondary(weights.word) == 0;
        if (!carries || none) {
            return;
        }
        open_ = true;
        for (; represented_ < before; ++represented_) {
            secondary_.push_back(std::byte{2});
        }
        if (modifier) {
            Modify(Secondary(weights.word));
            return;
        }
        if (weights.rare != nullptr) {
            for (std::size_t i = 0; i < weights.rare->secondarySize; ++i) {
                secondary_.push_back(std::byte{weights.rare->secondary[i]});
            }
        } else {
            secondary_.push_back(std::byte{Secondary(weights.word)});
        }
        represented_ += weights.count;
    }

    // A combining mark raises the secondary weight of the character before it.
    void Modify(std::uint8_t amount) {
        if (secondary_.empty()) {
            secondary_.push_back(std::byte{amount});
            lead_ = 1;
        } else {
            secondary_.back() =
                static_cast<std::byte>(std::to_integer<unsigned>(secondary_.back()) + amount);
        }
    }

    void AddSpecial(std::uint8_t code, std::size_t before) {
        const std::size_t place =
            open_ ? secondary_.size() + (before - represented_) - lead_ : before;
        const std::size_t stored = (7 + 4 * place) | 0x8000U;
        special_.push_back(static_cast<std::byte>(stored >> 8 & 0xFFU));
        special_.push_back(static_cast<std::byte>(stored & 0xFFU));
        special_.push_back(std::byte{6});
        special_.push_back(std::byte{code});
    }

    void AppendKana(Key& key) {
        if (kana_.empty()) {
            return;
        }
        while (!kana_.empty() && kana_.back() == 3) {
            kana_.pop_back();
        }
        for (std::size_t i = 0; i < kana_.size(); i += 3) {
            const auto flag = [&](std::size_t at) { return at < kana_.size() ? kana_[at] : 0U; };
            key.push_back(
                static_cast<std::byte>(0x80U + 16 * flag(i) + 4 * flag(i + 1) + flag(i + 2)));
        }
        for (const unsigned end : {0xFFU, 0x02U, 0x80U, 0xFFU, 0x80U}) {
            key.push_back(static_cast<std::byte>(end));
        }
        if (!special_.empty()) {
            key.push_back(std::byte{0xFF});
        }
    }

    LetterCount letters_;
    Key primary_;
    Key secondary_;
    Key special_;
    std::vector<unsigned> kana_;
    std::size_t primaries_ = 0;    // primary weights so far
    std::size_t represented_ = 0;  // of these, in `secondary_`
    std::size_t lead_ = 0;
    bool open_ = false;  // a secondary weight has occurred
};

}  // namespace

void AppendGeneral97(Key& key, std::string_view text, bool ascending) {
    const std::size_t start = key.size();
    Digits accents;
    std::uint32_t bases = 0;
    for (const char c : Prepare(text)) {
        const std::uint32_t word = kGeneral97[static_cast<unsigned char>(c)];
        AppendPrimary(key, word);
        const auto kind = static_cast<Kind97>(KindBits(word));
        if (kind == Kind97::kBase) {
            bases += WeightCount(word);
        } else if (kind == Kind97::kAccented) {
            if (accents.IsEmpty()) {
                accents.Append(0);
            }
            for (; bases > 0; --bases) {
                accents.Append(2);
            }
            accents.Append(Secondary(word));
        }
    }
    if (!accents.IsEmpty()) {
        accents.Append(0);  // ends the list; the other half of a last byte is 0 by itself
        accents.AppendTo(key);
    } else {
        key.push_back(std::byte{0});
    }
    if (!ascending) {
        Complement(key, start);
    }
}

void AppendGeneralLegacy(Key& key, std::u16string_view text, bool ascending, LetterCount letters) {
    const std::size_t start = key.size();
    LegacyKey parts(letters);
    for (const char16_t unit : Prepare(text)) {
        parts.Add(unit);
    }
    parts.AppendTo(key);
    if (!ascending) {
        Complement(key, start);
        key.push_back(std::byte{0});
    }
}

void AppendGeneralLegacyStart(Key& key, std::u16string_view text, bool ascending) {
    const std::size_t start = key.size();
    LegacyKey parts(LetterCount::kWeights);
    for (const char16_t unit : Prepare(text)) {
        parts.Add(unit);
    }
    parts.AppendStartTo(key);
    if (!ascending) {
        Complement(key, start);
    }
}

}  // namespace jet
