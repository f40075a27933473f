#include "worksheets/resources/ResourceList.h"

#include <QCoreApplication>

#include <algorithm>
#include <array>

#include "datafile/PrepDatatables.h"
#include "platform/FirstError.h"
#include "platform/RuntimeError.h"
#include "platform/text/Numbers.h"
#include "worksheets/Subjects.h"
#include "worksheets/resources/RowOrder.h"

using platform::GridTable;

namespace worksheets {

namespace {

// The last column cannot be typed into.
constexpr std::array<int, ResourceList::kColumns> kLengths{4, 50, 20, 10, 5, 0};
constexpr int kMostRows = 9999;  // a place has four digits

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(ResourceList)
};

}  // namespace

void ResourceList::Load() {
    rows_ = ResourceRecords::All();
    unsaved_.clear();
}

QString ResourceList::Text(int row, int col) const {
    const Resource& resource = At(row);
    switch (col) {
        case kNumber:
            return resource.sequence ? platform::Str(*resource.sequence) : QString();
        case kName:
            return resource.longName;
        case kShortName:
            return resource.shortName;
        case kUnits:
            return resource.units;
        case kCost:
            return resource.cost ? platform::Str(*resource.cost) : QString();
        default:
            return platform::Str(resource.key);
    }
}

GridTable::Takes ResourceList::CellTakes(int /*row*/, int col) const {
    if (col == kKey) {
        return Takes::kNothing;
    }
    return col == kNumber || col == kCost ? Takes::kNumber : Takes::kText;
}

int ResourceList::MaxLength(int col) const {
    return kLengths.at(static_cast<std::size_t>(col));
}

GridTable::Answer ResourceList::Offer(int row, int col, const QString& typed) {
    switch (col) {
        case kNumber:
            return OfferNumber(row, typed);
        case kCost:
            return OfferCost(Row(row), typed);
        default:
            return OfferText(row, col, typed);
    }
}

GridTable::Answer ResourceList::OfferText(int row, int col, const QString& typed) {
    Resource& resource = Row(row);
    QString& text = col == kName        ? resource.longName
                    : col == kShortName ? resource.shortName
                                        : resource.units;
    text = typed;
    unsaved_.insert(resource.key);
    return {};
}

// A number that is cleared, alone or in a block of cells, is put back without a word.
GridTable::Answer ResourceList::OfferNumber(int row, const QString& typed) {
    if (typed.isEmpty()) {
        return {Answer::Kind::kChanged, Text(row, kNumber)};
    }
    const std::optional<int> place = RowOrder::Place(typed, RowCount());
    if (!place) {
        return {Answer::Kind::kRefused,
                Texts::tr("\"%1\" is no number; the resource keeps its place.").arg(typed)};
    }
    moves_.emplace_back(At(row).key, *place);
    const QString text = QString::number(*place);
    return {text == typed ? Answer::Kind::kStored : Answer::Kind::kChanged, text};
}

GridTable::Answer ResourceList::OfferCost(Resource& resource, const QString& typed) {
    try {
        resource.cost = platform::ToSingle(platform::Val(typed));
    } catch (const platform::RuntimeError&) {
        return {Answer::Kind::kRefused, platform::TooLarge(typed)};
    }
    unsaved_.insert(resource.key);
    const QString stored = platform::Str(*resource.cost);
    return {stored == typed ? Answer::Kind::kStored : Answer::Kind::kChanged, stored};
}

int ResourceList::RoomForRows() const {
    return std::max(kMostRows - RowCount(), 0);
}

// They get their records, and with these their keys, when the action ends and their values are
// known.
void ResourceList::AppendRows(int count) {
    for (int i = 0; i < count; ++i) {
        ++appended_;
        Resource resource;
        resource.key = -appended_;
        resource.unitType = QStringLiteral("time");
        rows_.push_back(std::move(resource));
    }
}

void ResourceList::BeginAction(const QString& name) {
    actionName_ = name;
    before_ = rows_;
    moves_.clear();
    appended_ = 0;
}

void ResourceList::EndAction() {
    if (appended_ > 0) {
        AddAppended();
    }
    CarryOutMoves();
    const auto change = std::make_shared<Change>(Change::Between(before_, rows_));
    before_.clear();
    if (listener_ && !change->IsEmpty()) {
        listener_(actionName_, change);
    }
}

// Where the file does not take them, the whole action is dropped.
void ResourceList::AddAppended() {
    try {
        auto transaction = PrepDatatables::Begin();
        for (auto row = rows_.end() - appended_; row != rows_.end(); ++row) {
            const std::int32_t temporary = row->key;
            unsaved_.erase(temporary);
            row->key = ResourceRecords::Add(*row);
            for (auto& [key, place] : moves_) {
                key = key == temporary ? row->key : key;
            }
        }
        NumberRows();
        std::for_each(rows_.begin(), rows_.end(), ResourceRecords::SaveSequence);
        transaction.Commit();
    } catch (...) {
        rows_ = std::move(before_);
        moves_.clear();
        if (dropListener_) {
            dropListener_();
        }
        throw;
    }
}

void ResourceList::CarryOutMoves() {
    if (!moves_.empty()) {
        NumberRows();
    }
    for (const auto& [key, to] : std::exchange(moves_, {})) {
        const int from = *RowOf(key);
        if (from == to) {
            continue;
        }
        if (mover_) {
            mover_(from, to);
        } else {
            MoveRow(from, to);
        }
    }
}

void ResourceList::MoveRow(int from, int to) {
    const auto at = [this](int row) { return rows_.begin() + (row - 1); };
    if (from < to) {
        std::rotate(at(from), at(from) + 1, at(to) + 1);
    } else {
        std::rotate(at(to), at(from), at(from) + 1);
    }
    NumberRows();
}

void ResourceList::NumberRows() {
    std::int32_t number = 0;
    for (Resource& resource : rows_) {
        if (resource.sequence != ++number) {
            resource.sequence = number;
            unsaved_.insert(resource.key);
        }
    }
}

// A change of the list that is in the file at once, with the numbers of all rows.
void ResourceList::InFile(const QString& actionName, const std::function<void()>& body) {
    BeginAction(actionName);
    try {
        auto transaction = PrepDatatables::Begin();
        body();
        NumberRows();
        std::for_each(rows_.begin(), rows_.end(), ResourceRecords::SaveSequence);
        transaction.Commit();
    } catch (...) {
        rows_ = std::move(before_);
        throw;
    }
    EndAction();
}

void ResourceList::Insert(const QString& actionName, Resource resource, int row) {
    platform::Concerning([name = resource.longName] { return Subjects::Shown(name); },
                         [&] {
                             InFile(actionName, [&] {
                                 resource.key = ResourceRecords::Add(resource);
                                 rows_.insert(rows_.begin() + (row - 1), std::move(resource));
                             });
                         });
}

bool ResourceList::Delete(const QString& actionName, int row) {
    if (!ResourceRecords::Exists(At(row).key)) {
        return false;
    }
    platform::Concerning([name = At(row).longName] { return Subjects::Shown(name); },
                         [&] {
                             InFile(actionName, [&] {
                                 ResourceRecords::Delete(At(row).key);
                                 rows_.erase(rows_.begin() + (row - 1));
                             });
                         });
    return true;
}

QStringList ResourceList::ChangedNames() const {
    QStringList names;
    for (const Resource& resource : rows_) {
        if (unsaved_.count(resource.key) > 0) {
            names += resource.longName;
        }
    }
    return names;
}

void ResourceList::Save(const std::function<void(int row)>& saveRow) {
    platform::Concerning([this] { return Subjects::Of(ChangedNames()); },
                         [&] { SaveAll(saveRow); });
}

void ResourceList::SaveAll(const std::function<void(int row)>& saveRow) {
    auto transaction = PrepDatatables::Begin();
    platform::FirstError missing;
    saved_.clear();
    for (int row = 1; row <= RowCount(); ++row) {
        try {
            saveRow(row);
        } catch (const platform::RuntimeError& error) {
            if (error.Number() != platform::kNoCurrentRecord) {
                throw;
            }
            missing.Try([] { throw; });
        }
    }
    transaction.Commit();
    for (const std::int32_t key : saved_) {
        unsaved_.erase(key);
    }
    missing.Rethrow();
}

void ResourceList::SaveRow(int row) {
    const Resource& resource = At(row);
    if (unsaved_.count(resource.key) > 0) {
        platform::Concerning([&resource] { return Subjects::Shown(resource.longName); },
                             [&resource] { ResourceRecords::Save(resource); });
        saved_.push_back(resource.key);
    }
}

void ResourceList::Carry(const Change& change) {
    auto transaction = PrepDatatables::Begin();
    for (const Change::Step& step : change.steps) {
        platform::Concerning(
            [&step] {
                return Subjects::Shown((step.after ? step.after : step.before)->row.longName);
            },
            [&step] { CarryStep(step); });
    }
    transaction.Commit();
    rows_ = change.AppliedTo(rows_);
    for (const Change::Step& step : change.steps) {
        unsaved_.erase(step.Key());
    }
}

void ResourceList::CarryStep(const Change::Step& step) {
    if (!step.after) {
        ResourceRecords::Delete(step.Key());
    } else if (!step.before) {
        ResourceRecords::Restore(step.after->row);
    } else if (step.before->row != step.after->row) {
        ResourceRecords::Save(step.after->row);
    }
}

}  // namespace worksheets
