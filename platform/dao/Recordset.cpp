#include "platform/dao/Recordset.h"

#include <array>
#include <utility>
#include <vector>

#include "jet/recordset.h"
#include "platform/dao/Convert.h"

namespace dao {

namespace {

jet::Comparison ToComparison(std::string_view sign) {
    static constexpr std::array<std::pair<std::string_view, jet::Comparison>, 5> kSigns{{
        {"=", jet::Comparison::kEqual},
        {">=", jet::Comparison::kGreaterOrEqual},
        {">", jet::Comparison::kGreater},
        {"<", jet::Comparison::kLess},
        {"<=", jet::Comparison::kLessOrEqual},
    }};
    for (const auto& [text, comparison] : kSigns) {
        if (text == sign) {
            return comparison;
        }
    }
    throw platform::RuntimeError(platform::kInvalidArgument,
                                 QStringLiteral("Not a comparison: %1")
                                     .arg(QString::fromUtf8(sign.data(), qsizetype(sign.size()))));
}

}  // namespace

Recordset::Recordset(std::unique_ptr<jet::Recordset> records) : records_(std::move(records)) {}

Recordset::~Recordset() = default;

jet::FieldId Recordset::Find(const QString& name) const {
    if (const auto known = fields_.constFind(name); known != fields_.constEnd()) {
        return jet::FieldId{known.value()};
    }
    const jet::FieldId field = records_->Field(ToUtf8(name));
    fields_.insert(name, field.position);
    return field;
}

void Recordset::Close() {
    Mapped([this] { records_->Close(); });
}

void Recordset::SetIndex(const QString& name) {
    Mapped([&] { records_->SetIndex(ToUtf8(name)); });
}

QString Recordset::Index() const {
    return Mapped([this] { return QString::fromStdString(records_->Index()); });
}

void Recordset::MoveFirst() {
    Mapped([this] { records_->MoveFirst(); });
}

void Recordset::MoveLast() {
    Mapped([this] { records_->MoveLast(); });
}

void Recordset::MoveNext() {
    Mapped([this] { records_->MoveNext(); });
}

void Recordset::MovePrevious() {
    Mapped([this] { records_->MovePrevious(); });
}

bool Recordset::EndOfFile() const {
    return Mapped([this] { return records_->IsEof(); });
}

bool Recordset::BeginOfFile() const {
    return Mapped([this] { return records_->IsBof(); });
}

std::int32_t Recordset::RecordCount() const {
    return Mapped([this] { return records_->RecordCount(); });
}

void Recordset::Seek(std::string_view comparison, std::initializer_list<QVariant> key) {
    const jet::Comparison sign = ToComparison(comparison);
    std::vector<jet::Value> values;
    values.reserve(key.size());
    for (const QVariant& part : key) {
        values.push_back(ToValue(part));
    }
    Mapped([&] { records_->Seek(sign, values); });
}

bool Recordset::NoMatch() const {
    return Mapped([this] { return records_->NoMatch(); });
}

QVariant Recordset::Field(const QString& name) const {
    return Mapped([&] { return ToVariant(records_->Get(Find(name))); });
}

bool Recordset::IsNull(const QString& name) const {
    return Mapped([&] { return records_->Get(Find(name)).IsNull(); });
}

QString Recordset::Text(const QString& name) const {
    return Mapped([&] {
        const jet::Value value = records_->Get(Find(name));
        return value.IsNull() ? QString() : ToText(value.AsText());
    });
}

std::int32_t Recordset::Long(const QString& name) const {
    return Mapped([&] {
        std::int32_t value = 0;
        return records_->ReadLong(Find(name), value) ? value : 0;
    });
}

float Recordset::Single(const QString& name) const {
    return Mapped([&] {
        float value = 0;
        return records_->ReadSingle(Find(name), value) ? value : 0.0F;
    });
}

void Recordset::AddNew() {
    Mapped([this] { records_->AddNew(); });
}

void Recordset::Edit() {
    Mapped([this] { records_->Edit(); });
}

void Recordset::SetField(const QString& name, const QVariant& value) {
    Mapped([&] { records_->Set(Find(name), ToValue(value)); });
}

void Recordset::Update() {
    Mapped([this] { records_->Update(); });
}

void Recordset::CancelUpdate() {
    Mapped([this] { records_->CancelUpdate(); });
}

void Recordset::Delete() {
    Mapped([this] { records_->Delete(); });
}

}  // namespace dao
