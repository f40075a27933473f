// Relationships for tests.
#pragma once

#include <cstddef>
#include <cstdint>

#include "catalog/table_maker.h"
#include "jet/database.h"
#include "recordset/open_file.h"

namespace jet {

struct Cascades {
    bool updates = false;
    bool deletes = false;
    bool nulls = false;  // on deletion
};

// Makes an index of each of two tables the side of a relationship. The engine itself makes none.
inline void Relate(Database& database, const char16_t* parent, const char16_t* parentIndex,
                   const char16_t* child, const char16_t* childIndex, const Cascades& cascades) {
    OpenFile& file = *database.Internals().file;
    const auto definitionOf = [&](const char16_t* name) {
        return file.Tables().Open(*file.Tables().Find(name)).Def();
    };
    Definition definitions[] = {definitionOf(parent), definitionOf(child)};
    const bool self = definitions[0].page == definitions[1].page;
    const std::uint32_t numbers[] = {
        static_cast<std::uint32_t>(definitions[0].logicalIndexes.size()),
        static_cast<std::uint32_t>(definitions[1].logicalIndexes.size()) + (self ? 1 : 0)};
    const char16_t* indexes[] = {parentIndex, childIndex};
    for (std::size_t side = 0; side < 2; ++side) {
        LogicalIndex index;
        index.wide = side == 0 ? u".made" : u"Made";
        index.name = side == 0 ? ".made" : "Made";
        index.wide += static_cast<char16_t>(u'A' + numbers[side]);
        index.name += static_cast<char>('A' + numbers[side]);
        index.number = numbers[side];
        index.real = definitions[side].FindIndex(indexes[side])->real;
        index.role = IndexRole::kRelation;
        index.side = static_cast<std::uint8_t>(side + 1);
        index.partner = numbers[1 - side];
        index.partnerTable = definitions[1 - side].page;
        index.cascadeUpdates = cascades.updates ? 1 : 0;
        index.cascadeDeletes =
            static_cast<std::uint8_t>((cascades.deletes ? 1 : 0) + (cascades.nulls ? 2 : 0));
        definitions[self ? 0 : side].logicalIndexes.push_back(index);
    }
    Operation operation(file.Pages());
    for (std::size_t side = 0; side < (self ? 1U : 2U); ++side) {
        SortIndexNames(definitions[side]);
        WriteDefinition(operation, definitions[side]);
    }
    operation.Commit();
}

}  // namespace jet
