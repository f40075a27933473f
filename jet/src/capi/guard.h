// What the functions of the C interface have in common: no exception leaves them.
#pragma once

#include <cstring>
#include <memory>
#include <string_view>

#include "jet/database.h"
#include "jet/error.h"
#include "jet/jet.h"
#include "jet/recordset.h"
#include "jet/transaction.h"
#include "os/out_of_memory.h"

struct jet_database {
    std::unique_ptr<jet::Database> opened;
};

// A long value that is read part by part: where the next part would begin.
struct jet_part_reader {
    std::unique_ptr<jet::ValueReader> reader;
    size_t field = 0;
    uint32_t record = 0;
    uint64_t next = 0;
};

struct jet_recordset {
    std::unique_ptr<jet::Recordset> rows;
    std::string text;  // memory that is used again
    jet_part_reader parts;
};

struct jet_transaction {
    jet::Transaction begun;
};

namespace jet::capi {

static_assert(JET_NO_RELATED_RECORD == static_cast<int>(ErrorKind::kNoRelatedRecord) + 1);

// Fills the error and gives its kind.
int Report(int kind, int number, std::string_view message, jet_error* error) noexcept;
int Report(ErrorKind kind, std::string_view message, jet_error* error) noexcept;
[[noreturn]] void ThrowBadArgument();

struct BadArgument {};

template <typename Call>
int Guarded(jet_error* error, const Call& call) noexcept {
    try {
        jet::Guarded(call);
        return JET_OK;
    } catch (const Error& thrown) {
        return Report(thrown.Kind(), thrown.what(), error);
    } catch (const BadArgument&) {
        return Report(JET_BAD_ARGUMENT, 0, "An argument is missing or has no meaning.", error);
    }
}

// What must not be a null pointer.
template <typename Object>
Object& Require(Object* object) {
    if (object == nullptr) ThrowBadArgument();
    return *object;
}

Value ValueOf(const jet_value& value);
std::vector<Value> ValuesOf(const jet_value* values, std::size_t count);
// Copies what fits, text with its zero byte.
void GiveText(std::string_view text, char* to, std::size_t capacity, std::size_t* size);
void GiveBytes(const void* bytes, std::size_t count, void* to, std::size_t capacity,
               std::size_t* size);

}  // namespace jet::capi
