#include "worksheets/goals/GoalList.h"

#include <algorithm>

#include "datafile/FieldNames.h"
#include "datafile/FieldReaders.h"
#include "datafile/PrepDatatables.h"
#include "platform/RuntimeError.h"
#include "worksheets/Subjects.h"

namespace worksheets {

using PrepDatatables::tblManagementGoals;

namespace {

void SetTexts(const QString& heading, const QString& body) {
    tblManagementGoals->SetField(FieldNames::kManagementArea, heading);
    tblManagementGoals->SetField(FieldNames::kExplanation, body);
}

void Store(const GoalList::Goal& goal, const QString& body) {
    auto transaction = PrepDatatables::Begin();
    tblManagementGoals->Seek("=", {goal.key});
    tblManagementGoals->Edit();
    SetTexts(goal.heading, body);
    tblManagementGoals->Update();
    transaction.Commit();
}

void Remove(const GoalList::Goal& goal) {
    auto transaction = PrepDatatables::Begin();
    tblManagementGoals->Seek("=", {goal.key});
    tblManagementGoals->Delete();
    transaction.Commit();
}

void PutBack(const GoalList::Goal& goal) {
    auto transaction = PrepDatatables::Begin();
    tblManagementGoals->AddNew();
    tblManagementGoals->SetField(FieldNames::kKey, goal.key);
    SetTexts(goal.heading, goal.body.value_or(QString()));
    tblManagementGoals->Update();
    transaction.Commit();
}

QString StoredBody(std::int32_t key) {
    tblManagementGoals->Seek("=", {key});
    return FieldReaders::TextField(*tblManagementGoals, FieldNames::kExplanation);
}

const QString kEmpty = QStringLiteral("");

}  // namespace

void GoalList::Load() {
    entries_.clear();
    if (tblManagementGoals->RecordCount() == 0) {
        return;
    }
    for (tblManagementGoals->MoveFirst(); !tblManagementGoals->EndOfFile();
         tblManagementGoals->MoveNext()) {
        entries_.push_back(
            {.goal = {.key = tblManagementGoals->Long(FieldNames::kKey),
                      .heading = tblManagementGoals->Text(FieldNames::kManagementArea),
                      .body = std::nullopt}});
    }
}

QString GoalList::Body(int row) const {
    const Goal& goal = At(row).goal;
    return goal.body ? *goal.body : StoredBody(goal.key);
}

std::optional<int> GoalList::RowOf(std::int32_t key) const {
    const auto entry = std::find_if(entries_.begin(), entries_.end(),
                                    [key](const Entry& one) { return one.goal.key == key; });
    return entry == entries_.end() ? std::nullopt
                                   : std::optional(static_cast<int>(entry - entries_.begin()));
}

void GoalList::SetHeading(int row, const QString& heading) {
    At(row).goal.heading = heading;
    At(row).changed = true;
}

void GoalList::SetBody(int row, const QString& body) {
    At(row).goal.body = body;
    At(row).changed = true;
}

void GoalList::Save(int row) {
    Entry& entry = At(row);
    if (!entry.changed) {
        return;
    }
    platform::Concerning([&entry] { return Subjects::Shown(entry.goal.heading); },
                         [&] { Store(entry.goal, Body(row)); });
    entry.changed = false;
    entry.goal.body.reset();
}

int GoalList::Add() {
    auto transaction = PrepDatatables::Begin();
    const std::int32_t key = FieldReaders::BeginNew(*tblManagementGoals);
    SetTexts(kEmpty, kEmpty);
    tblManagementGoals->Update();
    transaction.Commit();
    entries_.push_back({.goal = {.key = key, .heading = QString(), .body = std::nullopt}});
    return Count() - 1;
}

GoalList::Goal GoalList::Delete(int row) {
    Goal goal = At(row).goal;
    platform::Concerning([&goal] { return Subjects::Shown(goal.heading); },
                         [&] {
                             goal.body = Body(row);
                             Remove(goal);
                         });
    entries_.erase(entries_.begin() + row);
    return goal;
}

int GoalList::Restore(const Goal& goal) {
    platform::Concerning([&goal] { return Subjects::Shown(goal.heading); },
                         [&goal] { PutBack(goal); });
    const auto after = std::find_if(entries_.begin(), entries_.end(),
                                    [&goal](const Entry& one) { return one.goal.key > goal.key; });
    const auto place = entries_.insert(
        after, {.goal = {.key = goal.key, .heading = goal.heading, .body = std::nullopt}});
    return static_cast<int>(place - entries_.begin());
}

}  // namespace worksheets
