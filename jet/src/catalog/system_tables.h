// The four tables that every file begins with, and what their rows mean.
#pragma once

#include <array>
#include <cstdint>

#include "jet/value.h"
#include "page/operation.h"
#include "page/pager.h"
#include "table/table.h"

namespace jet {

// Ids of the catalog's containers and of the database itself.
inline constexpr std::uint32_t kRootId = 0x0F000000;
inline constexpr std::uint32_t kTablesId = 0x0F000001;
inline constexpr std::uint32_t kDatabasesId = 0x0F000002;
inline constexpr std::uint32_t kRelationshipsId = 0x0F000003;
inline constexpr std::uint32_t kDatabaseId = 0x10000000;
inline constexpr std::uint32_t kSystemObject = 0x80000000;
// Made by the program around the engine; hidden from a list of tables like the engine's own.
inline constexpr std::uint32_t kSystemObjectOfProgram = 0x00000002;

enum class ObjectType : std::int16_t { kTable = 1, kDatabase = 2, kContainer = 3 };

// Built-in security ids; as stored they are XOR-ed with a mask that goes with the file.
using SecurityId = std::array<std::uint8_t, 2>;
inline constexpr SecurityId kEngineId = {0x02, 0x03};
inline constexpr SecurityId kAdminId = {0x03, 0x01};
inline constexpr SecurityId kUsersId = {0x02, 0x01};
inline constexpr SecurityId kCreatorId = {0x02, 0x04};

Binary MaskedId(const SecurityId& id, const SecurityId& mask);

// A row of a system table, by the names of its columns.
class SystemRow {
public:
    explicit SystemRow(const Table& table);
    SystemRow& Set(std::u16string_view column, const Value& value);
    [[nodiscard]] const RowValues& Values() const { return row_; }

private:
    const Table* table_;
    RowValues row_;
};

SystemRow ObjectRow(const Table& objects, std::uint32_t id, std::uint32_t parent,
                    std::u16string_view name, ObjectType type, const Binary& owner,
                    std::uint32_t flags);
SystemRow PermissionRow(const Table& permissions, std::uint32_t object, const Binary& owner,
                        std::uint32_t mask, bool inheritable);

// Fills a file that has only the header and the global maps.
void CreateSystemTables(Operation& operation);

}  // namespace jet
