#include "rollup/amounts.h"

#include <set>

#include "rollup/destination.h"
#include "rollup/reader.h"

namespace rollup {

template <typename Take>
void Amounts::EachAmount(const ValueRow& row, const Take& take) {
    for (int fil = 1; fil <= season::kFilLevels; ++fil) {
        const double value = row.values[static_cast<std::size_t>(fil - 1)];
        if (const std::optional<Amount> amount = AmountOf(value)) {
            take(KindOf(fil, value < 0), *amount);
        }
    }
}

Amounts::Amounts(const std::string& destination) : source_(OpenValues(destination)) {
    source_->EachRow([this](const ValueRow& row) {
        auto& counts = counts_[row.resource];
        EachAmount(row, [&counts](std::size_t kind, Amount amount) { counts[kind].Add(amount); });
    });
}

std::unique_ptr<Amounts::Own> Amounts::OwnOf(const std::filesystem::path& file) {
    std::error_code failed;
    std::filesystem::path path = std::filesystem::canonical(file, failed);
    path = failed ? file : path;
    std::set<std::string> contents{FileIdOf(path)};
    if (const auto known = source_->ContentsOf(PathText(path))) {
        contents.insert(*known);
    }
    auto own = std::make_unique<Own>();
    for (const std::string& id : contents) {
        source_->EachRowOf(id, [&own](const ValueRow& row) {
            auto& amounts = own->amounts_[row.resource];
            EachAmount(row, [&amounts](std::size_t kind, Amount amount) {
                amounts[kind].push_back(amount);
            });
        });
    }
    return own;
}

const std::vector<Amount>& Amounts::Own::Of(std::int64_t resource, std::size_t kind) const {
    static const std::vector<Amount> kNone;
    const auto found = amounts_.find(resource);
    return found == amounts_.end() ? kNone : found->second[kind];
}

// For all kinds at once, since it takes as long for one.
void Amounts::LookAgain(const Own& own) {
    for (auto& [resource, counts] : counts_) {
        for (std::size_t kind = 0; kind < kKinds; ++kind) {
            counts[kind].Want(own.Of(resource, kind));
        }
    }
    source_->EachRow([this](const ValueRow& row) {
        auto& counts = counts_[row.resource];
        EachAmount(row,
                   [&counts](std::size_t kind, Amount amount) { counts[kind].AddWanted(amount); });
    });
    for (auto& [resource, counts] : counts_) {
        for (AmountCounts& each : counts) {
            if (!each.EndLook()) {
                throw DestinationError("The roll-up changed while it was read. Ask again.");
            }
        }
    }
}

Usual Amounts::UsualWithout(const Own& own, std::int32_t resource, int fil, bool negative) {
    const auto found = counts_.find(resource);
    if (found == counts_.end()) {
        return {};
    }
    const std::size_t kind = KindOf(fil, negative);
    const AmountCounts& counts = found->second[kind];
    std::optional<Usual> usual = counts.Find(own.Of(resource, kind));
    if (!usual) {
        LookAgain(own);
        usual = counts.Find(own.Of(resource, kind));
    }
    return usual.value_or(Usual());
}

}  // namespace rollup
